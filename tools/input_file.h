// A regular file opened for reading by the tool: its size and its bytes,
// with the operating system's reason when something fails. Closes the file
// when it goes away.
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

  // Opens `path`; false (with error() set) when it cannot be opened or is
  // not a regular file.
  [[nodiscard]] bool Open(const char* path);
  std::uint64_t size() const { return size_; }
  // Reads up to `capacity` bytes: the count read, 0 at the end, -1 on a
  // read error (with error() set).
  long Read(unsigned char* buffer, std::size_t capacity);
  // Reads at most `limit` bytes into `text`; false on a read error.
  [[nodiscard]] bool ReadAll(std::size_t limit, std::string& text);
  const std::string& error() const { return error_; }

 private:
  int fd_ = -1;
  std::uint64_t size_ = 0;
  std::string error_;
};

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_INPUT_FILE_H_
