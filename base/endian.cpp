#include "base/host_byte_order.h"
#include "idxbase/hashing.h"

namespace {

template <typename T>
unsigned char* BytesOf(T& value) {
  return reinterpret_cast<unsigned char*>(&value);
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
  _swapAt(BytesOf(value), 0, 3);
  _swapAt(BytesOf(value), 1, 2);
}

void IDX_Base_Endian::swap(float& value) {
  static_assert(sizeof(float) == 4, "four-byte swap");
  _swapAt(BytesOf(value), 0, 3);
  _swapAt(BytesOf(value), 1, 2);
}

void IDX_Base_Endian::_swapAt(unsigned char* bytes, const unsigned long long& i,
                              const unsigned long long& j) {
  if (bytes == nullptr) return;
  const unsigned char kept = bytes[i];
  bytes[i] = bytes[j];
  bytes[j] = kept;
}
