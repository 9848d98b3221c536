// A temporary directory for one test, removed with everything in it when
// the object goes away.
#ifndef IDXBASE_TESTS_SUPPORT_TEMP_DIR_H_
#define IDXBASE_TESTS_SUPPORT_TEMP_DIR_H_

#include <string>

namespace idxbase_test {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  // `path()` joined with `name`.
  std::string Join(const std::string& name) const;

 private:
  std::string path_;
};

// Whole-file helpers; ReadFile gives "" for a missing file.
void WriteFile(const std::string& path, const std::string& content);
std::string ReadFile(const std::string& path);
bool FileExists(const std::string& path);

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_SUPPORT_TEMP_DIR_H_
