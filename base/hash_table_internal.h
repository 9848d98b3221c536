// Internals of BBDVerySimpleHashTable that its tests reach directly.
#ifndef IDXBASE_BASE_HASH_TABLE_INTERNAL_H_
#define IDXBASE_BASE_HASH_TABLE_INTERNAL_H_

#include <cstdint>

namespace idxbase::detail {

// The bucket count of a table asked to hold `requestedSize` keys: the
// smallest power of two not below requestedSize / 2, where sizes whose
// half is 0 count as 10 and negative sizes as 0. Always 1 to 2^30.
std::int32_t HashTableBucketCount(int requestedSize);

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_HASH_TABLE_INTERNAL_H_
