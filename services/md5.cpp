// The MD5 message-digest algorithm of RFC 1321.
//
// The compression function keeps the four state words in locals through
// the 64 steps and reads the message words straight from the input
// (memcpy loads, little-endian), so that the compiler holds the state in
// registers and never copies the block byte by byte.
#include <cstring>

#include "idxbase/checksum.h"

namespace {

using Word = std::uint32_t;

constexpr unsigned int kBlockSize = 64;

constexpr unsigned char kPadding[kBlockSize] = {0x80};

inline Word ToLittleEndian(Word value) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
  return __builtin_bswap32(value);
#else
  return value;
#endif
}

inline Word Load32(const unsigned char* bytes) {
  Word value;
  std::memcpy(&value, bytes, sizeof value);
  return ToLittleEndian(value);
}

inline void Store32(unsigned char* bytes, Word value) {
  value = ToLittleEndian(value);
  std::memcpy(bytes, &value, sizeof value);
}

template <int kShift>
inline Word RotateLeft(Word x) {
  return (x << kShift) | (x >> (32 - kShift));
}

// One step of each round: a = b + ((a + f(b, c, d) + x + k) <<< s). The
// terms that do not depend on b, the word computed last, are added first
// so that they are ready before b is.
template <int kShift>
inline void StepF(Word& a, Word b, Word c, Word d, Word x, Word k) {
  a += x + k;
  a += d ^ (b & (c ^ d));
  a = b + RotateLeft<kShift>(a);
}

// G(b, c, d) = (b & d) | (c & ~d); the two parts have no bit in common, so
// they can be added separately, the one without b first.
template <int kShift>
inline void StepG(Word& a, Word b, Word c, Word d, Word x, Word k) {
  a += x + k;
  a += c & ~d;
  a += b & d;
  a = b + RotateLeft<kShift>(a);
}

template <int kShift>
inline void StepH(Word& a, Word b, Word c, Word d, Word x, Word k) {
  a += x + k;
  a += b ^ c ^ d;
  a = b + RotateLeft<kShift>(a);
}

template <int kShift>
inline void StepI(Word& a, Word b, Word c, Word d, Word x, Word k) {
  a += x + k;
  a += c ^ (b | ~d);
  a = b + RotateLeft<kShift>(a);
}

// Applies the compression function to `state` for one block whose word k
// is x(k).
template <typename WordOf>
inline void CompressBlock(Word state[4], WordOf x) {
  Word a = state[0];
  Word b = state[1];
  Word c = state[2];
  Word d = state[3];

  StepF<7>(a, b, c, d, x(0), 0xd76aa478);
  StepF<12>(d, a, b, c, x(1), 0xe8c7b756);
  StepF<17>(c, d, a, b, x(2), 0x242070db);
  StepF<22>(b, c, d, a, x(3), 0xc1bdceee);
  StepF<7>(a, b, c, d, x(4), 0xf57c0faf);
  StepF<12>(d, a, b, c, x(5), 0x4787c62a);
  StepF<17>(c, d, a, b, x(6), 0xa8304613);
  StepF<22>(b, c, d, a, x(7), 0xfd469501);
  StepF<7>(a, b, c, d, x(8), 0x698098d8);
  StepF<12>(d, a, b, c, x(9), 0x8b44f7af);
  StepF<17>(c, d, a, b, x(10), 0xffff5bb1);
  StepF<22>(b, c, d, a, x(11), 0x895cd7be);
  StepF<7>(a, b, c, d, x(12), 0x6b901122);
  StepF<12>(d, a, b, c, x(13), 0xfd987193);
  StepF<17>(c, d, a, b, x(14), 0xa679438e);
  StepF<22>(b, c, d, a, x(15), 0x49b40821);

  StepG<5>(a, b, c, d, x(1), 0xf61e2562);
  StepG<9>(d, a, b, c, x(6), 0xc040b340);
  StepG<14>(c, d, a, b, x(11), 0x265e5a51);
  StepG<20>(b, c, d, a, x(0), 0xe9b6c7aa);
  StepG<5>(a, b, c, d, x(5), 0xd62f105d);
  StepG<9>(d, a, b, c, x(10), 0x02441453);
  StepG<14>(c, d, a, b, x(15), 0xd8a1e681);
  StepG<20>(b, c, d, a, x(4), 0xe7d3fbc8);
  StepG<5>(a, b, c, d, x(9), 0x21e1cde6);
  StepG<9>(d, a, b, c, x(14), 0xc33707d6);
  StepG<14>(c, d, a, b, x(3), 0xf4d50d87);
  StepG<20>(b, c, d, a, x(8), 0x455a14ed);
  StepG<5>(a, b, c, d, x(13), 0xa9e3e905);
  StepG<9>(d, a, b, c, x(2), 0xfcefa3f8);
  StepG<14>(c, d, a, b, x(7), 0x676f02d9);
  StepG<20>(b, c, d, a, x(12), 0x8d2a4c8a);

  StepH<4>(a, b, c, d, x(5), 0xfffa3942);
  StepH<11>(d, a, b, c, x(8), 0x8771f681);
  StepH<16>(c, d, a, b, x(11), 0x6d9d6122);
  StepH<23>(b, c, d, a, x(14), 0xfde5380c);
  StepH<4>(a, b, c, d, x(1), 0xa4beea44);
  StepH<11>(d, a, b, c, x(4), 0x4bdecfa9);
  StepH<16>(c, d, a, b, x(7), 0xf6bb4b60);
  StepH<23>(b, c, d, a, x(10), 0xbebfbc70);
  StepH<4>(a, b, c, d, x(13), 0x289b7ec6);
  StepH<11>(d, a, b, c, x(0), 0xeaa127fa);
  StepH<16>(c, d, a, b, x(3), 0xd4ef3085);
  StepH<23>(b, c, d, a, x(6), 0x04881d05);
  StepH<4>(a, b, c, d, x(9), 0xd9d4d039);
  StepH<11>(d, a, b, c, x(12), 0xe6db99e5);
  StepH<16>(c, d, a, b, x(15), 0x1fa27cf8);
  StepH<23>(b, c, d, a, x(2), 0xc4ac5665);

  StepI<6>(a, b, c, d, x(0), 0xf4292244);
  StepI<10>(d, a, b, c, x(7), 0x432aff97);
  StepI<15>(c, d, a, b, x(14), 0xab9423a7);
  StepI<21>(b, c, d, a, x(5), 0xfc93a039);
  StepI<6>(a, b, c, d, x(12), 0x655b59c3);
  StepI<10>(d, a, b, c, x(3), 0x8f0ccc92);
  StepI<15>(c, d, a, b, x(10), 0xffeff47d);
  StepI<21>(b, c, d, a, x(1), 0x85845dd1);
  StepI<6>(a, b, c, d, x(8), 0x6fa87e4f);
  StepI<10>(d, a, b, c, x(15), 0xfe2ce6e0);
  StepI<15>(c, d, a, b, x(6), 0xa3014314);
  StepI<21>(b, c, d, a, x(13), 0x4e0811a1);
  StepI<6>(a, b, c, d, x(4), 0xf7537e82);
  StepI<10>(d, a, b, c, x(11), 0xbd3af235);
  StepI<15>(c, d, a, b, x(2), 0x2ad7d2bb);
  StepI<21>(b, c, d, a, x(9), 0xeb86d391);

  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
}

// Compresses `blocks` consecutive 64-byte blocks of `data`.
void CompressBytes(Word state[4], const unsigned char* data, std::size_t blocks) {
  for (; blocks > 0; --blocks, data += kBlockSize) {
    CompressBlock(state, [data](int k) { return Load32(data + 4 * k); });
  }
}

// Adds `length` bytes to the 64-bit bit count (low word first).
void CountBits(IDX_MD5_CTX& context, unsigned int length) {
  const Word lowBits = static_cast<Word>(length) << 3;
  context.count[0] += lowBits;
  if (context.count[0] < lowBits) ++context.count[1];
  context.count[1] += static_cast<Word>(length) >> 29;
}

}  // namespace

extern "C" {

void MD5Init(IDX_MD5_CTX* context) {
  if (context == nullptr) return;
  context->state[0] = 0x67452301;
  context->state[1] = 0xefcdab89;
  context->state[2] = 0x98badcfe;
  context->state[3] = 0x10325476;
  context->count[0] = 0;
  context->count[1] = 0;
}

void MD5Update(IDX_MD5_CTX* context, const unsigned char* data, unsigned int length) {
  if (context == nullptr || length == 0) return;
  unsigned int index = (context->count[0] >> 3) & (kBlockSize - 1);
  CountBits(*context, length);
  unsigned int used = 0;
  if (index + length >= kBlockSize) {
    // Complete the waiting block, then digest whole blocks in place.
    used = kBlockSize - index;
    std::memcpy(context->buffer + index, data, used);
    CompressBytes(context->state, context->buffer, 1);
    const unsigned int blocks = (length - used) / kBlockSize;
    CompressBytes(context->state, data + used, blocks);
    used += blocks * kBlockSize;
    index = 0;
  }
  std::memcpy(context->buffer + index, data + used, length - used);
}

void MD5Final(unsigned char digest[16], IDX_MD5_CTX* context) {
  if (context == nullptr || digest == nullptr) return;
  unsigned char bits[8];
  Store32(bits, context->count[0]);
  Store32(bits + 4, context->count[1]);
  // Pad to 56 bytes modulo 64: a one bit, then zeros.
  const unsigned int index = (context->count[0] >> 3) & (kBlockSize - 1);
  MD5Update(context, kPadding, index < 56 ? 56 - index : 120 - index);
  MD5Update(context, bits, sizeof bits);
  for (int i = 0; i < 4; ++i) Store32(digest + 4 * i, context->state[i]);
  context->state[0] = 0;
  context->state[1] = 0;
}

void MD5Transform(IDX_MD5_CTX* context, const std::uint32_t block[16]) {
  if (context == nullptr || block == nullptr) return;
  CompressBlock(context->state, [block](int k) { return block[k]; });
}

}  // extern "C"
