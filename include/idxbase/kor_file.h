// File descriptors of the foundation layer: thin wrappers of the operating
// system's calls that retry a call a signal interrupted (never close) and
// report failure through errno, a descriptor that closes itself, and the
// safe replacement of a file's content. The library writes its checksum
// files with them, and the idxbase tool reads and writes its files with
// the same code.
//
// These names live in namespace idxbase: they are our own additions to the
// interface, kept apart from the fixed global names of the families.
//
// Every function may be called from any thread; a Descriptor or a
// FileReplacement object is used by one thread at a time, and distinct
// objects are independent.
#ifndef IDXBASE_KOR_FILE_H_
#define IDXBASE_KOR_FILE_H_

#include <cstddef>
#include <string>

#include "idxbase/export.h"

namespace idxbase {

// open(2) with O_CLOEXEC added, so that no descriptor leaks into a program
// the process runs: the descriptor, or -1 with errno set. `flags` and
// `mode` are open's.
IDXBASE_API int OpenDescriptor(const char* path, int flags, unsigned int mode = 0666);
// read(2): the count read (at most `capacity`), 0 at the end, -1 with
// errno set.
IDXBASE_API long ReadSome(int fd, void* buffer, std::size_t capacity);
// Writes all `size` bytes, going on after short writes: 0, or the errno of
// the write that failed (EIO for a write that makes no progress).
IDXBASE_API int WriteAll(int fd, const void* data, std::size_t size);
// close(2), not retried (the descriptor is gone whatever it reports): 0,
// or its errno.
IDXBASE_API int CloseDescriptor(int fd);

// Owns one descriptor (or none, -1) and closes it when it goes away,
// ignoring the error: call Close to see it. Movable (the source is left
// owning none), not copyable.
class IDXBASE_API Descriptor {
 public:
  explicit Descriptor(int fd = -1) : m_Fd(fd) {}
  ~Descriptor() { static_cast<void>(Close()); }
  Descriptor(Descriptor&& other) noexcept : m_Fd(other.Release()) {}
  // Closes the descriptor owned so far, then takes over `other`'s.
  Descriptor& operator=(Descriptor&& other) noexcept;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return m_Fd; }
  bool valid() const { return m_Fd >= 0; }
  // Gives up ownership: the descriptor, which the caller now closes.
  int Release();
  // Closes now: 0 (also when none is owned), or close's errno.
  int Close();

 private:
  int m_Fd;
};

// Replaces the content of a file so that the old content stays whole until
// the new one is complete: the bytes go to a new file in the same
// directory, which is flushed to the disk and renamed over the old one.
// A run that is killed or fails halfway leaves the old file as it was (and
// at worst a hidden ".<name>.<pid>-<n>.tmp" beside it). Where no file can
// be created beside it (a directory without write permission) but the old
// file itself may be written, it is overwritten in place and cut to the
// new length at Commit: the old content is then at risk only while the
// new bytes are written.
//
// The replacement happens where the name resolves: a symbolic link is
// followed to its final target, and the new file is made beside that
// target. A target that exists and is not a regular file (a device such as
// /dev/full, a FIFO) is written in place instead, and every write and the
// close are checked. A replaced file keeps its permission bits, and its
// owner and group where the caller may give them (as root); a new one gets
// 0666 less the umask, as fopen gives. After the rename the directory is
// flushed to the disk as well, where the file system allows.
//
// Owns the descriptor of the file being written and, until Commit, that
// file itself: destroying the object without a successful Commit removes
// it. Each method returns 0 or the errno of the operation that failed. One
// thread at a time; distinct objects are independent, also on the same
// target (the last Commit wins). Not copyable, not movable.
class IDXBASE_API FileReplacement {
 public:
  FileReplacement() = default;
  // Discards what was not committed.
  ~FileReplacement() { Discard(); }
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  // Prepares to replace `path` (discarding a replacement in progress):
  // fails when the target cannot be written (a directory, a file without
  // write permission, a directory where no file can be created) or the
  // links cannot be followed (ELOOP after 40).
  [[nodiscard]] int Open(const char* path);
  // Requires: a successful Open, and no Commit or Discard since.
  [[nodiscard]] int Write(const void* data, std::size_t size);
  // Makes the written bytes the file's content. After a failure the old
  // file is untouched (except in place, where what was written stays).
  // Requires: a successful Open.
  [[nodiscard]] int Commit();
  // Forgets what was written; the old file stays.
  void Discard();
  // The file being written until Commit, "" when writing in place or when
  // nothing is open: the name a caller removes if the process is killed
  // before Commit.
  const std::string& temporary() const { return m_Temporary; }

 private:
  Descriptor m_File;
  std::string m_Temporary;  // empty when writing in place
  std::string m_Target;
  bool m_CutAtCommit = false;  // a regular file written in place
  long long m_Written = 0;
};

}  // namespace idxbase

#endif  // IDXBASE_KOR_FILE_H_
