// Hash functions, hexadecimal text of binary data and byte-order helpers.
// Every function is reentrant: none keeps state besides read-only
// constants.
#ifndef IDXBASE_HASHING_H_
#define IDXBASE_HASHING_H_

#include "idxbase/base_types.h"
#include "idxbase/export.h"
#include "idxbase/kor_types.h"

// Thomas Wang's 32-bit integer mix; the hash callback of integer-keyed
// tables.
IDXBASE_API unsigned int IDX_IntegerHash(unsigned int key);
// The equality callback of integer-keyed tables: 1 when the two
// pointer-sized keys are equal, else 0. The keys are not dereferenced.
IDXBASE_API int IDX_IntegerCompare(void* a, void* b);
// IDX_IntegerHash of the XOR of the consecutive 4-byte groups of the first
// `length` bytes of `text`, read as words of the platform's byte order,
// the last group completed with zero bytes. `length` is authoritative
// (zero bytes are hashed like any other); 0 or less hashes no byte. The
// result does not depend on the address of `text`, and no byte outside
// the `length` bytes is read. Requires: `text` valid for `length` bytes.
IDXBASE_API unsigned int IDX_StringHash(const char* text, int length);

// Sets `text` to a new char array of 2 * length + 1 bytes (released by the
// caller with delete[]) holding two upper-case hexadecimal digits per byte,
// high nibble first, and a terminating zero.
// Returns KOR_S_OK; KOR_S_FALSE, with the trace line
// "[IDX_Base_Functions Info] NULL input data or 0 buffer size\n" and `text`
// untouched, when `data` is null or `length` is 0; KOR_E_FAIL, with the
// trace "[IDX_Base_Functions Error] Failed to allocate buffer" and `text`
// null, when the array cannot be allocated.
IDXBASE_API KORStatus ConvertToHexa(const unsigned char* data, unsigned int length, char*& text);
// The same text written into the caller's `text`, which must hold
// 2 * length + 1 bytes. KOR_S_OK; KOR_S_FALSE with the information line
// for null or empty input; KOR_S_OK without writing for a negative
// `length`.
IDXBASE_API KORStatus ConvertToHexaPreAlloc(const unsigned char* data, short length, char* text);

// The platform's byte order and in-place byte swaps. All members are
// static; assignment does nothing.
class IDXBASE_API IDX_Base_Endian {
 public:
  IDX_Base_Endian& operator=(const IDX_Base_Endian&) { return *this; }
  IDX_Base_Endian& operator=(IDX_Base_Endian&&) noexcept { return *this; }

  // The byte order of the platform the library runs on.
  static const IDX_Bool littleEndian;
  static const IDX_Bool bigEndian;
  // A static 16-bit 1: its first byte in memory is 1 on a little-endian
  // platform and 0 on a big-endian one.
  static const unsigned short& one();

  // Exchange the two bytes, or reverse the four bytes (the float's bit
  // pattern; nothing is computed). A null address is ignored.
  static void swap(unsigned short& value);
  static void swap(unsigned int& value);
  static void swap(float& value);

 private:
  // Exchanges bytes[i] and bytes[j]; nothing for a null `bytes`.
  static void _swapAt(unsigned char* bytes, const unsigned long long& i,
                      const unsigned long long& j);
};

#endif  // IDXBASE_HASHING_H_
