// The one allocation function behind the storage that the library manages
// with malloc-style calls and that reports its own failure: the buckets and
// nodes of BBDVerySimpleHashTable, the records of the point and triangle
// lists, and the bytes of the copy-on-write records of the byte runs. It is
// std::realloc; tests replace it, process-wide, to drive each of those
// failure paths. Storage obtained through it is released with std::free.
#ifndef IDXBASE_BASE_ALLOCATION_H_
#define IDXBASE_BASE_ALLOCATION_H_

#include <cstddef>

namespace idxbase::detail {

// As realloc: null `storage` allocates, a null result is failure
// (the old storage is then untouched).
using Reallocator = void* (*)(void* storage, std::size_t bytes);

// The current reallocation function's answer.
void* Reallocate(void* storage, std::size_t bytes);
inline void* Allocate(std::size_t bytes) { return Reallocate(nullptr, bytes); }

// For tests: installs `reallocator` (null: std::realloc again) and returns
// the one it replaces. Not to be called while other threads allocate.
Reallocator ReplaceReallocator(Reallocator reallocator);

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_ALLOCATION_H_
