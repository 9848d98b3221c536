// The file operations of the operating system that the library's checksum
// files and the idxbase tool use: thin wrappers that retry a call a signal
// interrupted (never close) and report failure through errno, a descriptor
// that closes itself, and the safe replacement of a file's content.
#ifndef IDXBASE_PLATFORM_KOR_FILE_H_
#define IDXBASE_PLATFORM_KOR_FILE_H_

#include <cstddef>
#include <string>

namespace idxbase::detail {

// open(2) with O_CLOEXEC added; the descriptor, or -1 with errno set.
int OpenDescriptor(const char* path, int flags, unsigned int mode = 0666);
// read(2): the count read, 0 at the end, -1 with errno set.
long ReadSome(int fd, void* buffer, std::size_t capacity);
// Writes all `size` bytes, going on after short writes: 0, or the errno of
// the write that failed.
int WriteAll(int fd, const void* data, std::size_t size);
// close(2), not retried (the descriptor is gone whatever it reports): 0,
// or its errno.
int CloseDescriptor(int fd);

// Owns a descriptor and closes it when it goes away (errors ignored; call
// Close to see them). Movable, not copyable.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() { static_cast<void>(Close()); }
  Descriptor(Descriptor&& other) noexcept : fd_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }
  // Gives up ownership.
  int Release();
  // Closes now: 0, or close's errno.
  int Close();

 private:
  int fd_;
};

// Replaces the content of a file so that the old content stays whole until
// the new one is complete: the bytes go to a new file in the same
// directory, which is flushed to the disk and renamed over the old one.
// A run that is killed or fails halfway leaves the old file as it was (and
// at worst a hidden ".<name>.<n>.tmp" beside it). Where no file can be
// created beside it (a directory without write permission) but the old
// file itself may be written, it is overwritten in place and cut to the
// new length at Commit: the old content is then at risk only while the
// new bytes are written.
//
// The replacement happens where the name resolves: a symbolic link is
// followed to its final target, and the new file is made beside that
// target. A target that exists and is not a regular file (a device such as
// /dev/full, a FIFO) is written in place instead, and every write and the
// close are checked. A replaced file keeps its permission bits; a new one
// gets 0666 less the umask, as fopen gives.
//
// Each method returns 0 or the errno of the operation that failed. One
// thread at a time; distinct objects are independent. Not copyable.
class FileReplacement {
 public:
  FileReplacement() = default;
  // Discards what was not committed.
  ~FileReplacement() { Discard(); }
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  // Prepares to replace `path`: fails when the target cannot be written
  // (a directory, a file without write permission, a directory where no
  // file can be created) or the links cannot be followed.
  [[nodiscard]] int Open(const char* path);
  // Requires: a successful Open.
  [[nodiscard]] int Write(const void* data, std::size_t size);
  // Makes the written bytes the file's content. After a failure the old
  // file is untouched (except in place, where what was written stays).
  [[nodiscard]] int Commit();
  // Forgets what was written; the old file stays.
  void Discard();
  // The file being written until Commit, "" when writing in place.
  const std::string& temporary() const { return temporary_; }

 private:
  Descriptor file_;
  std::string temporary_;  // empty when writing in place
  std::string target_;
  bool cutAtCommit_ = false;  // a regular file written in place
  long long written_ = 0;
};

}  // namespace idxbase::detail

#endif  // IDXBASE_PLATFORM_KOR_FILE_H_
