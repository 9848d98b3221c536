// Status codes and fixed-width types shared by every idxbase interface.
//
// A status is a signed 32-bit integer on every platform, spelt
// std::int32_t rather than `long` (64 bits on LP64 systems), so that the
// values and their comparisons are the same everywhere:
//   KOR_S_OK       0           success
//   KOR_S_FALSE    1           the condition does not hold / nothing to do /
//                              another owner holds the lock
//   KOR_E_FAIL     0x80004005  failure; in filter evaluation, undecidable
//   KOR_E_NOTIMPL  0x80004001  the operation is not implemented here
#ifndef IDXBASE_KOR_TYPES_H_
#define IDXBASE_KOR_TYPES_H_

#include <cstdint>

using KORStatus = std::int32_t;

constexpr KORStatus KOR_S_OK = 0;
constexpr KORStatus KOR_S_FALSE = 1;
constexpr KORStatus KOR_E_FAIL = -2147467259;     // 0x80004005
constexpr KORStatus KOR_E_NOTIMPL = -2147467263;  // 0x80004001

#endif  // IDXBASE_KOR_TYPES_H_
