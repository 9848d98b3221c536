// Helpers shared by the tests of the byte runs, strings and hashing.
#ifndef IDXBASE_TESTS_BASE_BYTE_RUN_TEST_SUPPORT_H_
#define IDXBASE_TESTS_BASE_BYTE_RUN_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <cstdint>
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

// What `action` writes on standard output.
template <typename Action>
std::string OutputOf(Action action) {
  StdoutCapture capture;
  action();
  return capture.Finish();
}

// The output of one trace line with its time stamp "[2026 Nov 16 18:20:05]"
// removed.
template <typename Action>
std::string TraceOf(Action action) {
  const std::string output = OutputOf(action);
  constexpr std::size_t kStamp = 22;
  if (output.size() < kStamp || output[0] != '[' || output[kStamp - 1] != ']') {
    ADD_FAILURE() << "no time stamp: " << output;
    return output;
  }
  return output.substr(kStamp);
}

// The fold of the string hash, byte by byte: byte i shifted left by
// 8 * (i mod 4) (a little-endian platform).
inline std::uint32_t ByteWiseFold(const unsigned char* bytes, std::size_t count) {
  std::uint32_t fold = 0;
  for (std::size_t i = 0; i < count; ++i) fold ^= std::uint32_t{bytes[i]} << (8 * (i % 4));
  return fold;
}

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_BASE_BYTE_RUN_TEST_SUPPORT_H_
