#include "base/byte_fold.h"

#include <algorithm>
#include <cstring>

#include "base/host_byte_order.h"

namespace idxbase::detail {
namespace {

constexpr std::size_t kWordBytes = sizeof(std::uint64_t);

// Byte `byte` at position `position` of the run, in its lane of the fold.
std::uint32_t InLane(unsigned char byte, std::size_t position) {
  return static_cast<std::uint32_t>(byte) << (8 * (position % 4));
}

std::uint32_t RotateLeft(std::uint32_t value, unsigned int bits) {
  return bits == 0 ? value : (value << bits) | (value >> (32 - bits));
}

std::uint64_t ByteSwap(std::uint64_t value) { return __builtin_bswap64(value); }

// Bytes before the first word-aligned address, at most `count`.
std::size_t HeadLength(const unsigned char* bytes, std::size_t count) {
  const auto address = reinterpret_cast<std::uintptr_t>(bytes);
  return std::min(count, (kWordBytes - address % kWordBytes) % kWordBytes);
}

// XOR of `words` aligned 8-byte words from `bytes`, loaded with memcpy
// (which compiles to plain aligned loads).
std::uint64_t XorWords(const unsigned char* bytes, std::size_t words) {
  std::uint64_t folded = 0;
  for (std::size_t w = 0; w < words; ++w) {
    std::uint64_t word;
    std::memcpy(&word, bytes + w * kWordBytes, kWordBytes);
    folded ^= word;
  }
  return folded;
}

// Folds the bytes [from, to) one at a time.
std::uint32_t FoldBytes(const unsigned char* bytes, std::size_t from, std::size_t to) {
  std::uint32_t folded = 0;
  for (std::size_t i = from; i < to; ++i) folded ^= InLane(bytes[i], i);
  return folded;
}

}  // namespace

// The head bytes go singly until the address is aligned; then whole words,
// which start at run position `head`, so their lanes are rotated by
// head mod 4 once at the end; then the tail bytes singly.
std::uint32_t FoldLittleEndian(const unsigned char* bytes, std::size_t count) {
  if (count == 0) return 0;
  const std::size_t head = HeadLength(bytes, count);
  const std::size_t words = (count - head) / kWordBytes;
  const std::size_t tail = head + words * kWordBytes;

  std::uint64_t wide = XorWords(bytes + head, words);
  if (!kLittleEndianHost) wide = ByteSwap(wide);
  const auto narrow = static_cast<std::uint32_t>(wide ^ (wide >> 32));
  return FoldBytes(bytes, 0, head) ^ RotateLeft(narrow, 8 * (head % 4)) ^
         FoldBytes(bytes, tail, count);
}

std::uint32_t XorFoldHashKey(const unsigned char* bytes, std::uint32_t count) {
  const std::uint32_t key = RotateLeft(FoldLittleEndian(bytes, count), 8);
  return (key & 0x80000000u) != 0 ? 0u - key : key;
}

}  // namespace idxbase::detail
