// A file opened for reading by the tool: a regular file, or standard input
// named "-"; its size and its bytes, with the operating system's reason
// when something fails. Closes the file when it goes away.
#ifndef IDXBASE_TOOLS_INPUT_FILE_H_
#define IDXBASE_TOOLS_INPUT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace idxbase_tool {

class InputFile {
 public:
  InputFile() = default;
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Opens `path`, or takes standard input for "-"; false (with error()
  // set) when it cannot be opened or is not a regular file. Never blocks:
  // a FIFO or a device is refused before anything is read from it.
  [[nodiscard]] bool Open(const char* path);
  // The descriptor to read from (standard input stays open afterwards).
  int fd() const;
  // The size when opened (0 for standard input).
  std::uint64_t size() const { return size_; }
  // Reads up to `capacity` bytes (retrying when interrupted): the count,
  // 0 at the end, or -1 with errno set.
  long Read(char* buffer, std::size_t capacity);
  // Reads at most `limit` bytes into `text`; false on a read error.
  [[nodiscard]] bool ReadAll(std::size_t limit, std::string& text);
  const std::string& error() const { return error_; }
  // Sets error() to the text of errno value `error`.
  void SetError(int error);

 private:
  int descriptor_ = -1;  // owned, unless standard input
  bool standardInput_ = false;
  std::uint64_t size_ = 0;
  std::string error_;
};

// False when `path` names nothing (not even a dangling link); true when it
// exists or cannot be told.
bool PathExists(const char* path);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_INPUT_FILE_H_
