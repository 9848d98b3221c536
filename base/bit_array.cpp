#include "idxbase/bit_array.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

constexpr std::int64_t kRows = PLMIdxBitArray::ROW_COUNT;

// Whole bytes for the bits, rounded down to a multiple of 4, plus 4: at
// least one spare byte, and 4 bytes for 0 bits. Computed in 64 bits so
// that the largest lengths do not overflow.
std::int64_t RowBytes(std::int32_t lengthInBits) {
  const std::int64_t bytes = ((std::int64_t{lengthInBits} - 1) >> 3) + 1;
  return (bytes & ~std::int64_t{3}) + 4;
}

bool Accepted(std::int32_t lengthInBits) {
  return lengthInBits >= 0 &&
         kRows * RowBytes(lengthInBits) <= std::numeric_limits<std::int32_t>::max();
}

}  // namespace

PLMIdxBitArray::PLMIdxBitArray(int lengthInBits) {
  if (!Accepted(lengthInBits)) return;
  m_LengthInBits = lengthInBits;
  m_LengthInBytes = static_cast<std::int32_t>(RowBytes(lengthInBits));
  m_TotalBytes = static_cast<std::int32_t>(kRows) * m_LengthInBytes;
  for (unsigned int row = 0; row < ROW_COUNT; ++row) {
    m_RowOffsets[row] = static_cast<std::int32_t>(row) * m_LengthInBytes;
  }
  m_Storage = static_cast<unsigned char*>(std::malloc(static_cast<std::size_t>(m_TotalBytes)));
  if (m_Storage != nullptr) std::memset(m_Storage, 0xFF, static_cast<std::size_t>(m_TotalBytes));
}

PLMIdxBitArray::~PLMIdxBitArray() {
  std::free(m_Storage);
  m_Storage = nullptr;
  m_LengthInBits = 0;
  m_LengthInBytes = 0;
}

KORStatus PLMIdxBitArray::GetBitValue(unsigned int row, unsigned int bit, bool& value) {
  if (!Holds(row, bit)) return KOR_E_FAIL;
  const unsigned char byte = m_Storage[m_RowOffsets[row] + GetByteIndex(bit)];
  value = ((byte >> GetBitIndexInByte(bit)) & 1u) != 0;
  return KOR_S_OK;
}

KORStatus PLMIdxBitArray::SetBitValue(unsigned int row, unsigned int bit, bool value) {
  if (!Holds(row, bit)) return KOR_E_FAIL;
  unsigned char& byte = m_Storage[m_RowOffsets[row] + GetByteIndex(bit)];
  const auto mask = static_cast<unsigned char>(1u << GetBitIndexInByte(bit));
  byte = static_cast<unsigned char>(value ? byte | mask : byte & ~mask);
  return KOR_S_OK;
}

void* PLMIdxBitArray::GetBitArray(unsigned int row) {
  return m_Storage == nullptr ? nullptr : m_Storage + m_RowOffsets[row];
}

int PLMIdxBitArray::GetLengthInBits() const { return m_LengthInBits; }

int PLMIdxBitArray::GetLengthInBytes() const { return m_LengthInBytes; }
