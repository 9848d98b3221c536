// Replaces the library's reallocation function (base/allocation.h) while
// it lives: every request's size is recorded, and the first `failures`
// requests fail (all of them with kEvery). One at a time, on one thread.
#ifndef IDXBASE_TESTS_SUPPORT_ALLOCATION_FAULTS_H_
#define IDXBASE_TESTS_SUPPORT_ALLOCATION_FAULTS_H_

#include <cstdlib>
#include <vector>

#include "base/allocation.h"

namespace idxbase_test {

class AllocationFaults {
 public:
  static constexpr int kEvery = -1;

  explicit AllocationFaults(int failures = kEvery)
      : previous_(idxbase::detail::ReplaceReallocator(Reallocate)) {
    Reset(failures);
  }
  ~AllocationFaults() { idxbase::detail::ReplaceReallocator(previous_); }

  // Forgets the requests so far; the next `failures` fail.
  void Reset(int failures) {
    failures_ = failures;
    sizes_.clear();
  }
  const std::vector<std::size_t>& sizes() const { return sizes_; }

 private:
  static void* Reallocate(void* storage, std::size_t bytes) {
    sizes_.push_back(bytes);
    if (failures_ == 0) return std::realloc(storage, bytes);
    if (failures_ > 0) --failures_;
    return nullptr;
  }

  static inline int failures_ = 0;
  static inline std::vector<std::size_t> sizes_;
  idxbase::detail::Reallocator previous_;
};

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_SUPPORT_ALLOCATION_FAULTS_H_
