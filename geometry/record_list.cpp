// Growth of the record lists: the capacity rule and the repeated
// reallocation.
#include "geometry/record_list.h"

#include <limits>

namespace idxbase::detail {

std::uint32_t GrownListCapacity(std::uint32_t capacity) {
  if (capacity < kListDoublingLimit) return capacity * 2;
  if (capacity > std::numeric_limits<std::uint32_t>::max() - kListGrowthStep) return 0;
  return capacity + kListGrowthStep;
}

void* ReallocateWithRetries(void* storage, std::size_t bytes) {
  for (int attempt = 0; attempt < kListGrowthAttempts; ++attempt) {
    if (void* grown = Reallocate(storage, bytes)) return grown;
  }
  return nullptr;
}

}  // namespace idxbase::detail
