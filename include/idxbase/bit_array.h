// A fixed block of 62 equal rows of bits.
#ifndef IDXBASE_BIT_ARRAY_H_
#define IDXBASE_BIT_ARRAY_H_

#include <cstdint>

#include "idxbase/export.h"
#include "idxbase/kor_types.h"

// 62 rows of the same number of bits, in one block that the array owns.
// Every bit, including the spare bits past the length of a row, starts
// set.
//
// Row layout: a row takes ((bits - 1) / 8 + 1) bytes rounded down to a
// multiple of 4, plus 4 (4 bytes for up to 24 bits, 8 for 25 to 56, 12 for
// 57 to 88, ...), so it always has at least one spare byte. Rows follow one
// another: row r starts r times the row length after row 0. Bit b of a row
// is bit b % 8, counted from the least significant, of the row's byte
// b / 8.
//
// Statuses of GetBitValue and SetBitValue: KOR_S_OK, or KOR_E_FAIL, with
// nothing read or changed, when the array has no storage, the row is 62 or
// more or the bit is not below the length in bits.
//
// Lengths the array refuses: a negative length, or one whose 62 rows would
// take more than 2^31 - 1 bytes, gives an array without storage whose
// lengths read 0 and whose every access fails. When the allocation itself
// fails the lengths are kept but the array has no storage either.
//
// Not copyable. One thread at a time: bits share bytes, so concurrent
// writes to one row can lose updates.
class IDXBASE_API PLMIdxBitArray {
 public:
  // The number of rows.
  static constexpr unsigned int ROW_COUNT = 62;

  explicit PLMIdxBitArray(int lengthInBits);
  PLMIdxBitArray(const PLMIdxBitArray&) = delete;
  PLMIdxBitArray& operator=(const PLMIdxBitArray&) = delete;
  // Frees the storage; the lengths then read 0.
  virtual ~PLMIdxBitArray();

  // Sets `value` to bit `bit` of row `row`; `value` is untouched on
  // failure.
  KORStatus GetBitValue(unsigned int row, unsigned int bit, bool& value);
  // Sets (`value` true) or clears bit `bit` of row `row`, and no other.
  KORStatus SetBitValue(unsigned int row, unsigned int bit, bool value);
  // The first byte of row `row`, valid for GetLengthInBytes() bytes; null
  // when the array has no storage. Requires: row < ROW_COUNT (unchecked).
  void* GetBitArray(unsigned int row);
  // The bits per row, as constructed.
  int GetLengthInBits() const;
  // The bytes per row (not the total).
  int GetLengthInBytes() const;

 private:
  unsigned int GetByteIndex(unsigned int bit) { return bit >> 3; }
  unsigned int GetBitIndexInByte(unsigned int bit) { return bit & 7; }
  // True when the array has storage and holds bit `bit` of row `row`.
  bool Holds(unsigned int row, unsigned int bit) const {
    return m_Storage != nullptr && row < ROW_COUNT &&
           bit < static_cast<unsigned int>(m_LengthInBits);
  }

  unsigned char* m_Storage = nullptr;      // ROW_COUNT rows; owned
  std::int32_t m_LengthInBits = 0;         // bits per row
  std::int32_t m_LengthInBytes = 0;        // bytes per row
  std::int32_t m_TotalBytes = 0;           // ROW_COUNT * m_LengthInBytes
  std::int32_t m_RowOffsets[ROW_COUNT]{};  // byte offset of each row
};

#endif  // IDXBASE_BIT_ARRAY_H_
