// Helpers shared by the tests of the byte runs, strings and hashing, with
// the capture of standard output and traces.
#ifndef IDXBASE_TESTS_BASE_BYTE_RUN_TEST_SUPPORT_H_
#define IDXBASE_TESTS_BASE_BYTE_RUN_TEST_SUPPORT_H_

#include <string>

#include "support/stdout_capture.h"

namespace idxbase_test {

inline const unsigned char* Bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

inline unsigned int Size(const std::string& text) { return static_cast<unsigned int>(text.size()); }

// The `size` bytes at `data` as a string ("" for none).
inline std::string Text(const void* data, unsigned int size) {
  return size == 0 ? std::string() : std::string(static_cast<const char*>(data), size);
}

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_BASE_BYTE_RUN_TEST_SUPPORT_H_
