#include "base/allocation.h"

#include <atomic>
#include <cstdlib>

namespace idxbase::detail {
namespace {

void* SystemReallocate(void* storage, std::size_t bytes) { return std::realloc(storage, bytes); }

// Atomic so that a test's replacement is no data race with a thread that
// allocates; the order of other memory does not depend on it.
std::atomic<Reallocator> current{SystemReallocate};

}  // namespace

void* Reallocate(void* storage, std::size_t bytes) {
  return current.load(std::memory_order_relaxed)(storage, bytes);
}

Reallocator ReplaceReallocator(Reallocator reallocator) {
  return current.exchange(reallocator != nullptr ? reallocator : SystemReallocate,
                          std::memory_order_relaxed);
}

}  // namespace idxbase::detail
