// The one byte order of the library's byte runs: unsigned bytes in
// lexicographic order, a proper prefix first.
#ifndef IDXBASE_BASE_RUN_COMPARE_H_
#define IDXBASE_BASE_RUN_COMPARE_H_

#include <cstdint>

namespace idxbase::detail {

// -1, 0 or 1 as the `leftSize` bytes at `left` sort before, with or after
// the `rightSize` bytes at `right`. Equal sizes at one address compare
// equal without reading. Requires: each pointer valid for its size (may be
// null when the size is 0).
short CompareRuns(const unsigned char* left, std::uint32_t leftSize, const unsigned char* right,
                  std::uint32_t rightSize);

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_RUN_COMPARE_H_
