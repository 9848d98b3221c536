#include "input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace idxbase_tool {

InputFile::~InputFile() {
  if (fd_ >= 0) close(fd_);
}

bool InputFile::Open(const char* path) {
  do {
    fd_ = open(path, O_RDONLY | O_CLOEXEC);
  } while (fd_ < 0 && errno == EINTR);
  if (fd_ < 0) {
    error_ = std::strerror(errno);
    return false;
  }
  struct stat status {};
  if (fstat(fd_, &status) != 0) {
    error_ = std::strerror(errno);
    return false;
  }
  if (!S_ISREG(status.st_mode)) {
    error_ = S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : "not a regular file";
    return false;
  }
  size_ = static_cast<std::uint64_t>(status.st_size);
  return true;
}

long InputFile::Read(unsigned char* buffer, std::size_t capacity) {
  ssize_t count;
  do {
    count = read(fd_, buffer, capacity);
  } while (count < 0 && errno == EINTR);
  if (count < 0) error_ = std::strerror(errno);
  return static_cast<long>(count);
}

bool InputFile::ReadAll(std::size_t limit, std::string& text) {
  text.clear();
  unsigned char buffer[512];
  while (text.size() < limit) {
    const long count = Read(buffer, sizeof buffer);
    if (count < 0) return false;
    if (count == 0) break;
    text.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(count));
  }
  if (text.size() > limit) text.resize(limit);
  return true;
}

}  // namespace idxbase_tool
