#include "base/run_compare.h"

#include <algorithm>
#include <cstring>

namespace idxbase::detail {

// memcmp results are reduced to their sign: only the sign is meaningful,
// and a 16-bit result must not lose it.
short CompareRuns(const unsigned char* left, std::uint32_t leftSize, const unsigned char* right,
                  std::uint32_t rightSize) {
  if (leftSize == rightSize && left == right) return 0;
  const std::uint32_t common = std::min(leftSize, rightSize);
  const int bytes = common == 0 ? 0 : std::memcmp(left, right, common);
  if (bytes != 0) return bytes < 0 ? -1 : 1;
  if (leftSize == rightSize) return 0;
  return leftSize < rightSize ? -1 : 1;
}

}  // namespace idxbase::detail
