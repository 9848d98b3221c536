#include "idxbase/kor_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>

namespace idxbase {
namespace {

// As many links as Linux follows in one path.
constexpr int kMaxLinks = 40;
// Tries before giving up on finding a free temporary name.
constexpr int kNameTries = 100;

std::atomic<unsigned int> g_temporaryCount{0};

// The part of `path` before its last separator, with the separator ("" for
// a name in the current directory).
std::string DirectoryPart(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// Follows `path` through symbolic links to the name they end at (which
// need not exist). 0 or errno.
int FollowLinks(const std::string& path, std::string& target) {
  target = path;
  for (int hops = 0; hops <= kMaxLinks; ++hops) {
    struct stat status {};
    if (lstat(target.c_str(), &status) != 0) return errno == ENOENT ? 0 : errno;
    if (!S_ISLNK(status.st_mode)) return 0;
    char link[PATH_MAX];
    const ssize_t length = readlink(target.c_str(), link, sizeof link - 1);
    if (length < 0) return errno;
    link[length] = '\0';
    target = link[0] == '/' ? std::string(link) : DirectoryPart(target) + link;
  }
  return ELOOP;
}

// Creates a new file ".<name>.<pid>-<n>.tmp" beside `target`.
int CreateTemporary(const std::string& target, unsigned int mode, Descriptor& file,
                    std::string& name) {
  const std::size_t slash = target.rfind('/');
  const std::string base = slash == std::string::npos ? target : target.substr(slash + 1);
  for (int attempt = 0; attempt < kNameTries; ++attempt) {
    name = DirectoryPart(target) + "." + base + "." + std::to_string(getpid()) + "-" +
           std::to_string(g_temporaryCount++) + ".tmp";
    file = Descriptor(OpenDescriptor(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, mode));
    if (file.valid()) return 0;
    if (errno != EEXIST) break;
  }
  const int error = errno;
  name.clear();
  return error;
}

// Flushes the entries of the directory holding `path` to the disk, so that
// a rename there survives a crash. Best effort: the content is already in
// place, and some file systems cannot sync a directory.
void SyncDirectoryOf(const std::string& path) {
  const std::string directory = DirectoryPart(path);
  Descriptor entries(
      OpenDescriptor(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY));
  if (entries.valid()) static_cast<void>(fsync(entries.get()));
}

int ClearNonBlocking(int fd) {
  const int flags = fcntl(fd, F_GETFL);
  if (flags < 0 || fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) return errno;
  return 0;
}

}  // namespace

int OpenDescriptor(const char* path, int flags, unsigned int mode) {
  int fd;
  do {
    fd = open(path, flags | O_CLOEXEC, static_cast<mode_t>(mode));
  } while (fd < 0 && errno == EINTR);
  return fd;
}

long ReadSome(int fd, void* buffer, std::size_t capacity) {
  ssize_t count;
  do {
    count = read(fd, buffer, capacity);
  } while (count < 0 && errno == EINTR);
  return static_cast<long>(count);
}

int WriteAll(int fd, const void* data, std::size_t size) {
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t count = write(fd, next, size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) return EIO;  // no progress: never loop forever
    next += count;
    size -= static_cast<std::size_t>(count);
  }
  return 0;
}

int CloseDescriptor(int fd) { return close(fd) == 0 ? 0 : errno; }

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    static_cast<void>(Close());
    m_Fd = other.Release();
  }
  return *this;
}

int Descriptor::Release() {
  const int fd = m_Fd;
  m_Fd = -1;
  return fd;
}

int Descriptor::Close() {
  if (m_Fd < 0) return 0;
  return CloseDescriptor(Release());
}

int FileReplacement::Open(const char* path) {
  Discard();
  if (const int error = FollowLinks(path, m_Target); error != 0) return error;
  // Opening the target for writing, without truncating it, asks whether
  // it may be written at all, and finds what it is. O_NONBLOCK keeps a
  // FIFO without a reader from hanging the caller (it fails with ENXIO).
  Descriptor existing(OpenDescriptor(m_Target.c_str(), O_WRONLY | O_NONBLOCK));
  unsigned int mode = 0666;
  struct stat status {};
  if (existing.valid()) {
    if (fstat(existing.get(), &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) {
      if (const int error = ClearNonBlocking(existing.get()); error != 0) return error;
      m_File = std::move(existing);  // written in place
      return 0;
    }
    mode = status.st_mode & 07777;
  } else if (errno != ENOENT) {
    return errno;
  }
  if (const int error = CreateTemporary(m_Target, mode, m_File, m_Temporary); error != 0) {
    if (!existing.valid() || (error != EACCES && error != EPERM)) return error;
    m_File = std::move(existing);
    m_CutAtCommit = true;
    return 0;
  }
  if (!existing.valid()) return 0;
  // A replaced file keeps its owner and group where we may give them (as
  // root, or a group we belong to); otherwise it is ours, as an edited copy
  // would be. Giving them first keeps the mode's set-id bits, which a
  // change of owner clears.
  if (status.st_uid != geteuid() || status.st_gid != getegid()) {
    static_cast<void>(fchown(m_File.get(), status.st_uid, status.st_gid) == 0 ||
                      fchown(m_File.get(), static_cast<uid_t>(-1), status.st_gid) == 0);
  }
  // The umask narrowed a new file's mode; a replaced file keeps its own.
  if (fchmod(m_File.get(), static_cast<mode_t>(mode)) != 0) {
    const int error = errno;
    Discard();
    return error;
  }
  return 0;
}

int FileReplacement::Write(const void* data, std::size_t size) {
  const int error = WriteAll(m_File.get(), data, size);
  if (error == 0) m_Written += static_cast<long long>(size);
  return error;
}

int FileReplacement::Commit() {
  if (m_CutAtCommit && ftruncate(m_File.get(), static_cast<off_t>(m_Written)) != 0) {
    const int error = errno;
    Discard();
    return error;
  }
  if (m_Temporary.empty()) return m_File.Close();
  int error = fsync(m_File.get()) == 0 ? 0 : errno;
  if (const int closeError = m_File.Close(); error == 0) error = closeError;
  if (error == 0 && rename(m_Temporary.c_str(), m_Target.c_str()) != 0) error = errno;
  if (error != 0) {
    Discard();
    return error;
  }
  m_Temporary.clear();
  SyncDirectoryOf(m_Target);
  return 0;
}

void FileReplacement::Discard() {
  static_cast<void>(m_File.Close());
  m_CutAtCommit = false;
  m_Written = 0;
  if (!m_Temporary.empty()) unlink(m_Temporary.c_str());
  m_Temporary.clear();
}

}  // namespace idxbase
