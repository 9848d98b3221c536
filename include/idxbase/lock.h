// Inter-process lock files kept alive by a heartbeat thread, and the
// process-liveness query.
#ifndef IDXBASE_LOCK_H_
#define IDXBASE_LOCK_H_

#include <atomic>

#include "idxbase/export.h"
#include "idxbase/kor_string.h"
#include "idxbase/kor_threads.h"
#include "idxbase/kor_types.h"

// A lock on a directory that one living process at a time may hold.
//
// The holder keeps one empty file, "lock.<owner>.<counter>" ("%d" each,
// so lock.-1.0 keeps its minus sign), in the subdirectory "lock" of the
// directory. Every 1.5 seconds its heartbeat thread creates the file of
// counter + 1, then deletes the file of counter, then increments the
// counter; so the owner's sequence holds one file, and two for a moment.
// Another process recognises a living holder by that sequence moving on:
// IsLocked waits 2 seconds for each foreign lock file it meets, and deletes
// the file of a sequence that has not moved (a dead holder). Processes
// coordinate through the file system only; no process identifier and no
// file content is written.
//
// The liveness test compares names only, so two things defeat it: an
// owner that releases the lock and takes it again within another
// process's 2-second wait recreates the very name (lock.<owner>.0) that
// the other process waits on, which then passes for a dead sequence and
// is deleted; and a heartbeat delayed past the wait makes a living holder
// look dead. Take the lock again under a fresh owner identifier, or after
// more than 2 seconds.
//
// Owns its heartbeat thread (the KORThreads base) and a copy of the
// directory path; the caller keeps nothing alive. The directory must
// exist; Lock creates its "lock" subdirectory when missing.
//
// Statuses: Lock gives KOR_S_OK (0) when the lock is taken, KOR_S_FALSE
// (1) when another living owner holds it, KOR_E_FAIL (0x80004005) when the
// first lock file cannot be created or the heartbeat cannot be started.
//
// Threads: Lock, Unlock, assignment and destruction are for one
// controlling thread at a time. The heartbeat thread reads the owner and
// the directory and advances the counter; the counter is atomic and the
// controlling operations stop the heartbeat (Kill joins it, and no step is
// cut in the middle) before they change the configuration or delete
// files. IsLocked is static and may run on any thread.
//
// Copies: copying takes the owner, the directory and the counter (and the
// thread base's configuration); the copy's thread is idle. Both objects
// then name the same lock files, so the copy's Unlock, which its
// destructor also performs, deletes the files its counter names: keep one
// object responsible for a held lock. Assigning to an object that holds a
// lock releases that lock first, so its heartbeat never runs on another
// object's configuration.
//
// Details and their reasons:
// - Statuses are KORStatus (std::int32_t): a 32-bit status on every
//   platform, where `long` may have 64 bits.
// - Files are deleted with _KORDeleteFile on the UTF-8 path: POSIX has no
//   wide-path deletion.
// - Every path is joined with KORMakePath: directory + "lock", then the
//   lock directory + the file name. One join makes the listing of the lock
//   directory and the files looked up in it the same place for every
//   spelling of the directory: "" is the current directory ("lock/...";
//   a lock taken there keeps "." as its directory, since an empty one
//   means that the object never locked), and a trailing separator adds
//   none.
// - The thread base is built as KORThreads(nullptr, nullptr, -1, 0, 0).
// - A directory entry that begins with "lock." but does not hold two
//   decimal integers within int's range ("lock.x.y", "lock.5") is not a
//   lock file and is skipped. Numbers of a foreign sequence wrap around
//   when the successors of counter INT_MAX are computed.
// - A heartbeat step is never cut by Kill, so the failed-race path of Lock
//   finds at most the current file; it still deletes the current file and
//   both neighbours, as Unlock does, so no file of the owner can remain.
// - Lock on an object that already holds a lock begins, like any Lock,
//   by asking IsLocked with owner -1, which finds the object's own living
//   files: the answer is KOR_S_FALSE and the held lock goes on unchanged.
//   When the object holds a lock on another directory that is free, that
//   lock is released before the new one is taken.
// - Unlock (and destruction) of an object that never locked deletes
//   nothing: it has no directory to name files in.
class IDXBASE_API BBDLock : public KORThreads {
 public:
  // Idle: owner -1, empty directory, counter 0. Nothing is started.
  BBDLock();
  BBDLock(const BBDLock& other);
  BBDLock& operator=(const BBDLock& other);
  // Unlock, then destruction of the members and of the thread base.
  ~BBDLock() override;

  // Takes the lock on `directory` for `owner`. When any lock file there
  // belongs to a living process (this object included), returns
  // KOR_S_FALSE and creates nothing.
  // Otherwise creates directory/lock if needed, creates the file number 0
  // and starts the heartbeat; if another owner's living lock appeared
  // meanwhile (both took it at once), stops, deletes its files and returns
  // KOR_S_FALSE. May sleep 2 seconds per foreign lock file examined.
  KORStatus Lock(const KORUnicodeString& directory, int owner);
  // Stops the heartbeat (returning once its current step has ended), then
  // deletes the owner's files number counter, counter + 1 and counter - 1,
  // ignoring failures.
  void Unlock();
  // True when a living owner other than `owner` (-1: any owner) holds a
  // lock on `directory`. Foreign files of dead owners are deleted on the
  // way. Unless `quiet`, writes for each foreign file examined
  // "Found a lock, waiting to see if it corresponds to a dead process... "
  // and then "yes\n" (dead, deleted) or "no\n" (alive) to standard output,
  // flushing each. False at once when the lock directory is missing or
  // holds no foreign lock file.
  static bool IsLocked(const KORUnicodeString& directory, int owner, bool quiet);

  // The heartbeat body (the argument is ignored): a step every 1.5 seconds
  // until the thread is asked to stop. Returns 0 only then.
  int Begin(void* argument) override;

 private:
  // Creates the empty lock file number `n` of this owner: KOR_S_OK, or
  // KOR_E_FAIL when it cannot be opened.
  KORStatus WriteLFile(int n);
  // Deletes the lock file number `n` of this owner: KOR_S_OK, or
  // KOR_E_FAIL when it was not deleted.
  KORStatus DeleteLFile(int n);
  // directory + "/lock/lock.<owner>.<n>", joined with KORMakePath.
  static void GetFullPath(const KORSysTSUnicodeString& directory, int owner, int n,
                          KORSysTSUnicodeString& result);
  // Deletes the files counter, counter + 1 and counter - 1 of a stopped
  // heartbeat.
  IDXBASE_LOCAL void DeleteSequenceFiles();

  int m_Owner = -1;
  KORSysTSUnicodeString m_Directory;
  std::atomic<int> m_Counter{0};
};

// The platform's answer, unchanged, to whether process `processId` is
// alive: KORSysIsProcessAlive(processId, 4), 1 when it is, 0 when not.
// The access argument 4 is passed as it is; this platform ignores it.
IDXBASE_API int RealIsProcessAlive(unsigned int processId);

#endif  // IDXBASE_LOCK_H_
