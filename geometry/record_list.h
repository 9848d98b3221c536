// The growable list of fixed-size records behind IDX_Base_ListOf_Point and
// IDX_Base_ListOf_Triangle, written once for both.
//
// The public lists keep their three fields (storage, capacity, size)
// themselves; a RecordList is a short-lived view that works on them.
// Storage comes from Reallocate (allocation.h).
#ifndef IDXBASE_GEOMETRY_RECORD_LIST_H_
#define IDXBASE_GEOMETRY_RECORD_LIST_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "base/allocation.h"
#include "idxbase/base_types.h"

namespace idxbase::detail {

// Doubling stops at this capacity (a doubled array would pass 100 MiB of
// 12-byte records); beyond it each growth adds kListGrowthStep records.
inline constexpr std::uint32_t kListDoublingLimit = 4369050;
inline constexpr std::uint32_t kListGrowthStep = 1000000;
// Reallocation attempts of one growth before the list gives up.
inline constexpr int kListGrowthAttempts = 11;

// The capacity after one growth of a full list of `capacity` records, or 0
// when the result cannot be counted in 32 bits.
std::uint32_t GrownListCapacity(std::uint32_t capacity);

// Reallocate(storage, bytes) tried up to kListGrowthAttempts times in a
// row; the first success, or null when all fail (`storage` untouched).
void* ReallocateWithRetries(void* storage, std::size_t bytes);

template <typename Record>
class RecordList {
  static_assert(std::is_trivially_copyable_v<Record>, "records are moved by realloc");

 public:
  RecordList(Record*& array, std::uint32_t& capacity, std::uint32_t& size)
      : array_(array), capacity_(capacity), size_(size) {}

  // Room for `initialSize` + 1 records and size 0; a failed list
  // (capacity 0, no storage) when the storage cannot be obtained or the
  // capacity cannot be counted.
  void Create(unsigned int initialSize) {
    array_ = nullptr;
    capacity_ = 0;
    size_ = 0;
    if (initialSize == std::numeric_limits<std::uint32_t>::max()) return;
    const std::uint32_t capacity = initialSize + 1;
    array_ = static_cast<Record*>(Allocate(Bytes(capacity)));
    if (array_ != nullptr) capacity_ = capacity;
  }

  // Releases the storage, if any, and leaves a failed list.
  void Destroy() {
    std::free(array_);
    array_ = nullptr;
    capacity_ = 0;
    size_ = 0;
  }

  IDX_Bool Append(const Record& record) {
    if (capacity_ == 0) return IDX_False;
    if (size_ == capacity_ && !Grow()) return IDX_False;
    array_[size_] = record;
    ++size_;
    return IDX_True;
  }

 private:
  static std::size_t Bytes(std::uint32_t records) { return records * sizeof(Record); }

  // Grows a full list; on failure releases the storage and leaves a failed
  // list.
  bool Grow() {
    const std::uint32_t capacity = GrownListCapacity(capacity_);
    void* grown = capacity == 0 ? nullptr : ReallocateWithRetries(array_, Bytes(capacity));
    if (grown == nullptr) {
      Destroy();
      return false;
    }
    array_ = static_cast<Record*>(grown);
    capacity_ = capacity;
    return true;
  }

  Record*& array_;
  std::uint32_t& capacity_;
  std::uint32_t& size_;
};

}  // namespace idxbase::detail

#endif  // IDXBASE_GEOMETRY_RECORD_LIST_H_
