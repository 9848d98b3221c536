// What the fuzz targets share: a check that stops the run with a message
// (libFuzzer then saves the input that broke it), and heap copies of
// exactly the bytes under test, so that the address sanitizer catches a
// read past either end.
#ifndef IDXBASE_FUZZ_FUZZ_CHECK_H_
#define IDXBASE_FUZZ_FUZZ_CHECK_H_

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace idxbase_fuzz {

inline void Check(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "MISMATCH: %s\n", what);
  std::abort();
}

// `size` bytes copied into a heap block of exactly that size, or null when
// there are none.
class ExactBytes {
 public:
  ExactBytes(const void* bytes, std::size_t size)
      : block_(size == 0 ? nullptr : new unsigned char[size]) {
    if (size != 0) std::memcpy(block_.get(), bytes, size);
  }
  explicit ExactBytes(const std::string& text) : ExactBytes(text.data(), text.size()) {}

  const unsigned char* bytes() const { return block_.get(); }
  const char* chars() const { return reinterpret_cast<const char*>(block_.get()); }

 private:
  std::unique_ptr<unsigned char[]> block_;
};

}  // namespace idxbase_fuzz

#endif  // IDXBASE_FUZZ_FUZZ_CHECK_H_
