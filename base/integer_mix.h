// Thomas Wang's 32-bit integer mix, behind IDX_IntegerHash and inlined
// into the hash table's lookups.
#ifndef IDXBASE_BASE_INTEGER_MIX_H_
#define IDXBASE_BASE_INTEGER_MIX_H_

#include <cstdint>

namespace idxbase::detail {

// Unsigned 32-bit arithmetic throughout: overflow wraps.
inline std::uint32_t IntegerMix(std::uint32_t key) {
  std::uint32_t hash = (key << 15) + ~key;
  hash = (hash ^ (hash >> 12)) * 5;
  hash = (hash ^ (hash >> 4)) * 2057;
  return hash ^ (hash >> 16);
}

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_INTEGER_MIX_H_
