#include "input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "idxbase/kor_file.h"

namespace idxbase_tool {

InputFile::~InputFile() {
  if (descriptor_ >= 0) static_cast<void>(idxbase::Descriptor(descriptor_).Close());
}

bool InputFile::Open(const char* path) {
  if (std::strcmp(path, "-") == 0) {
    standardInput_ = true;
    return true;
  }
  // O_NONBLOCK: opening a FIFO without a writer would wait for one. It
  // is cleared again once the file is known to be a regular one.
  descriptor_ = idxbase::OpenDescriptor(path, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) {
    SetError(errno);
    return false;
  }
  if (!S_ISREG(status.st_mode)) {
    error_ = S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : "not a regular file";
    return false;
  }
  const int flags = fcntl(descriptor_, F_GETFL);
  if (flags < 0 || fcntl(descriptor_, F_SETFL, flags & ~O_NONBLOCK) != 0) {
    SetError(errno);
    return false;
  }
  size_ = static_cast<std::uint64_t>(status.st_size);
  return true;
}

int InputFile::fd() const { return standardInput_ ? STDIN_FILENO : descriptor_; }

long InputFile::Read(char* buffer, std::size_t capacity) {
  return idxbase::ReadSome(fd(), buffer, capacity);
}

void InputFile::SetError(int error) { error_ = std::strerror(error); }

bool InputFile::ReadAll(std::size_t limit, std::string& text) {
  text.clear();
  char buffer[4096];
  while (text.size() < limit) {
    const long count = Read(buffer, sizeof buffer);
    if (count < 0) {
      SetError(errno);
      return false;
    }
    if (count == 0) break;
    text.append(buffer, static_cast<std::size_t>(count));
  }
  if (text.size() > limit) text.resize(limit);
  return true;
}

bool PathExists(const char* path) {
  struct stat status {};
  return lstat(path, &status) == 0 || errno != ENOENT;
}

}  // namespace idxbase_tool
