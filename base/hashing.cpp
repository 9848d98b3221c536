#include "idxbase/hashing.h"

#include <cstdint>

#include "base/byte_fold.h"
#include "base/host_byte_order.h"
#include "base/integer_mix.h"

unsigned int IDX_IntegerHash(unsigned int key) { return idxbase::detail::IntegerMix(key); }

int IDX_IntegerCompare(void* a, void* b) { return a == b ? 1 : 0; }

// The fold is computed with little-endian groups; a big-endian platform
// reads its groups as big-endian words, which reverses the fold's bytes.
unsigned int IDX_StringHash(const char* text, int length) {
  if (length <= 0) return IDX_IntegerHash(0);
  const std::uint32_t folded = idxbase::detail::FoldLittleEndian(
      reinterpret_cast<const unsigned char*>(text), static_cast<std::size_t>(length));
  return IDX_IntegerHash(idxbase::detail::kLittleEndianHost ? folded : __builtin_bswap32(folded));
}
