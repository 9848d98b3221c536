// The XOR fold of a byte run into one 32-bit word, shared by the string
// hash and the hash keys of byte arrays and identifiers.
#ifndef IDXBASE_BASE_BYTE_FOLD_H_
#define IDXBASE_BASE_BYTE_FOLD_H_

#include <cstddef>
#include <cstdint>

namespace idxbase::detail {

// The XOR of the bytes with byte i shifted left by 8 * (i mod 4): the
// consecutive 4-byte groups read as little-endian words, the last one
// completed with zeros. Reads whole aligned words where it can and never
// reads outside the `count` bytes. Requires: `bytes` valid for `count`
// bytes (may be null when `count` is 0).
std::uint32_t FoldLittleEndian(const unsigned char* bytes, std::size_t count);

// The hash key of byte arrays and identifiers: byte k XORed into
// accumulator byte (k + 1) mod 4, the accumulator read as a little-endian
// signed 32-bit integer, and its absolute value in 32-bit two's complement
// (0x80000000 stays).
std::uint32_t XorFoldHashKey(const unsigned char* bytes, std::uint32_t count);

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_BYTE_FOLD_H_
