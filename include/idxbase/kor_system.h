// Operating-system services of the foundation layer: environment, files
// and directories, sleeping, process liveness, fatal errors, CPU times,
// tick count and version information.
//
// Every function here may be called from any thread.
#ifndef IDXBASE_KOR_SYSTEM_H_
#define IDXBASE_KOR_SYSTEM_H_

#include <cstdint>

#include "idxbase/export.h"
#include "idxbase/kor_string.h"
#include "idxbase/kor_types.h"

// ---- Environment ---------------------------------------------------------

// The text of environment variable `name`, or null when it is not defined
// (a variable defined with an empty value gives ""). The text belongs to
// the environment: do not free it; it stays valid until the variable is
// changed. A null `name` gives null.
IDXBASE_API const char* KORGetEnv(const char* name);

// ---- Files and directories -----------------------------------------------

// The platform's directory separator.
constexpr char KOR_PATH_SEPARATOR = '/';

// Appends `name` to `path` in place, with one separator between them
// (none is added when `path` is empty or already ends with one).
IDXBASE_API void KORMakePath(KORUnicodeString& path, const KORUnicodeString& name);

// Creates the directory `path` (permissions 0777 less the umask).
// KOR_S_OK when it was created, KOR_E_FAIL otherwise (also when it exists).
IDXBASE_API KORStatus _KORCreateDirectory(const KORUnicodeString& path);
// Deletes the file `path`. KOR_S_OK when it was deleted, else KOR_E_FAIL.
IDXBASE_API KORStatus _KORDeleteFile(const KORUnicodeString& path);

// An open directory listing. Zero-initialise it (`KORDIR dir{};`), open it
// with KOROpenDirectory, close it with KORCloseDirectory. Owns the
// operating system's listing handle between the two.
struct KORDIR {
  void* handle = nullptr;
  KORUnicodeString path;
};

// One entry of a listing: its name and its full path (directory joined
// with the name).
struct KORDirEnt {
  KORUnicodeString name;
  KORUnicodeString fullPath;
};

// Opens `path` for listing into `dir` (which must not be open already).
// KOR_S_OK, or KOR_E_FAIL when the directory cannot be read or `dir` is
// null.
IDXBASE_API KORStatus KOROpenDirectory(const KORUnicodeString& path, KORDIR* dir);
// Reads the next entry, skipping "." and "..". On an entry: fills `entry`,
// sets `*end` to 0, returns KOR_S_OK. At the end of the listing: sets
// `*end` to 1 and returns KOR_S_OK. On failure (null arguments, a closed
// `dir`, a read error): sets `*end` to 1 when `end` is not null and returns
// KOR_E_FAIL. `flags` is reserved and must be 0.
IDXBASE_API KORStatus KORReadDirectory(KORDIR* dir, KORDirEnt* entry, int* end, int flags);
// Closes the listing; `dir` can be opened again. Closing a closed or null
// `dir` does nothing and returns KOR_S_OK.
IDXBASE_API KORStatus KORCloseDirectory(KORDIR* dir);

// ---- Time and processes --------------------------------------------------

// Suspends the calling thread for `milliseconds`.
IDXBASE_API void KORSleep(unsigned int milliseconds);

// 1 when process `processId` exists (also when it belongs to another user),
// 0 when it does not or `processId` is 0 or not a valid process number.
// `access` is accepted for compatibility and does not change the answer.
IDXBASE_API int KORSysIsProcessAlive(unsigned int processId, int access);

// Writes "<sourceName>(<line>): <message>" and a line end to standard
// error, then aborts the process. The three context texts, when not null,
// are written after the message, each preceded by a blank. Null `message`
// or `sourceName` print as "(null)".
[[noreturn]] IDXBASE_API void KORFatalError(const char* message, const char* context1,
                                            const char* context2, const char* context3,
                                            const char* sourceName, int line);

// CPU times of the whole process (all threads) since it started, in units
// of 100 nanoseconds.
IDXBASE_API void KORGetProcessTimes(std::uint64_t& kernelTime, std::uint64_t& userTime);

// Milliseconds from an arbitrary fixed start (the system's monotonic
// clock), truncated to 32 bits: it wraps after about 49.7 days, so compare
// two readings by unsigned subtraction.
IDXBASE_API std::uint32_t KORGetTickCount();

// ---- Version information -------------------------------------------------

// Level information of this build of the library: the version numbers and
// the build stamp. `level` points to static text of the form
// "%d-%d-%d.%d.%d": year-month-day.hour.minute of the build.
struct KORLevelInfo {
  int version = 0;      // major version
  int release = 0;      // minor version
  int servicePack = 0;  // patch level
  int hotFix = 0;       // always 0 in this build
  const char* level = nullptr;
};

// Fills `info` with the level information of this build.
IDXBASE_API void KORGetMERLOLevelInfo(KORLevelInfo& info);

// ---- Descriptors ---------------------------------------------------------

// Makes descriptor `target` refer to the same open file as `source`
// (dup2, retried when interrupted). Returns `target`, or -1 on failure.
IDXBASE_API int KORDuplicateDescriptor(int source, int target);

#endif  // IDXBASE_KOR_SYSTEM_H_
