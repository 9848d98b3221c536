#include "base/host_byte_order.h"
#include "idxbase/hashing.h"

namespace {

// The bytes of `value`, null when the reference is bound at the null
// address, which the swaps accept and ignore. The compiler takes a
// reference's address to be non-null and would drop the null test of
// _swapAt; the empty asm statement hides where the address comes from, so
// the test stays, at no cost in instructions.
template <typename T>
unsigned char* BytesOf(T& value) {
  auto* bytes = reinterpret_cast<unsigned char*>(&value);
  asm("" : "+r"(bytes));
  return bytes;
}

}  // namespace

const IDX_Bool IDX_Base_Endian::littleEndian =
    idxbase::detail::kLittleEndianHost ? IDX_True : IDX_False;
const IDX_Bool IDX_Base_Endian::bigEndian =
    idxbase::detail::kLittleEndianHost ? IDX_False : IDX_True;

const unsigned short& IDX_Base_Endian::one() {
  static const unsigned short kOne = 1;
  return kOne;
}

void IDX_Base_Endian::swap(unsigned short& value) { _swapAt(BytesOf(value), 0, 1); }

void IDX_Base_Endian::swap(unsigned int& value) {
  static_assert(sizeof(unsigned int) == 4, "four-byte swap");
  unsigned char* bytes = BytesOf(value);
  _swapAt(bytes, 0, 3);
  _swapAt(bytes, 1, 2);
}

void IDX_Base_Endian::swap(float& value) {
  static_assert(sizeof(float) == 4, "four-byte swap");
  unsigned char* bytes = BytesOf(value);
  _swapAt(bytes, 0, 3);
  _swapAt(bytes, 1, 2);
}

void IDX_Base_Endian::_swapAt(unsigned char* bytes, const unsigned long long& i,
                              const unsigned long long& j) {
  if (bytes == nullptr) return;
  const unsigned char kept = bytes[i];
  bytes[i] = bytes[j];
  bytes[j] = kept;
}
