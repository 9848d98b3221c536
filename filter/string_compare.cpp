#include "filter/string_compare.h"

#include <cstdint>
#include <cstring>

#include "base/host_byte_order.h"

namespace idxbase::detail {
namespace {

constexpr char kWildcard = '*';

inline unsigned char Fold(unsigned char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c + 32) : c;
}

inline unsigned char Byte(const char* text, int i) { return static_cast<unsigned char>(text[i]); }

bool OnlyWildcards(const char* p, int from, int to) {
  for (int j = from; j < to; ++j) {
    if (p[j] != kWildcard) return false;
  }
  return true;
}

bool FoldedEqual(const char* s, const char* p, int length) {
  for (int k = 0; k < length; ++k) {
    if (Fold(Byte(s, k)) != Fold(Byte(p, k))) return false;
  }
  return true;
}

// Below this many bytes a plain loop beats a call of memcmp.
constexpr int kShortCompare = 16;

bool SameBytes(const char* a, const char* b, int length) {
  if (length >= kShortCompare) return std::memcmp(a, b, static_cast<size_t>(length)) == 0;
  for (int k = 0; k < length; ++k) {
    if (a[k] != b[k]) return false;
  }
  return true;
}

// Below this many candidate positions a plain loop beats a call of memchr.
constexpr int kShortScan = 32;

// The first position at or after `cursor` and before `last` that holds
// byte `c`, or null.
const char* FindByte(const char* cursor, const char* last, char c) {
  if (last - cursor < kShortScan) {
    if (kLittleEndianHost) {
      // Eight bytes a step, all inside [cursor, last): a byte equal to c
      // becomes zero in `x`, and the lowest flagged byte of the classic
      // zero-byte test is the first zero (higher flags may be false).
      constexpr std::uint64_t kOnes = 0x0101010101010101ull;
      constexpr std::uint64_t kHighs = 0x8080808080808080ull;
      const std::uint64_t pattern = kOnes * static_cast<unsigned char>(c);
      for (; last - cursor >= 8; cursor += 8) {
        std::uint64_t word;
        std::memcpy(&word, cursor, sizeof word);
        const std::uint64_t x = word ^ pattern;
        const std::uint64_t zeros = (x - kOnes) & ~x & kHighs;
        if (zeros != 0) return cursor + __builtin_ctzll(zeros) / 8;
      }
    }
    for (; cursor < last; ++cursor) {
      if (*cursor == c) return cursor;
    }
    return nullptr;
  }
  return static_cast<const char*>(std::memchr(cursor, c, static_cast<size_t>(last - cursor)));
}

// First position at or after `from` where the `length` bytes of `segment`
// occur in s[0, lengthS), or -1.
int FindExact(const char* s, int from, int lengthS, const char* segment, int length) {
  if (length > lengthS - from) return -1;               // also keeps `last` inside s
  const char* const last = s + (lengthS - length + 1);  // one past the last candidate
  for (const char* cursor = s + from; cursor < last; ++cursor) {
    cursor = FindByte(cursor, last, segment[0]);
    if (cursor == nullptr) return -1;
    if (SameBytes(cursor + 1, segment + 1, length - 1)) return static_cast<int>(cursor - s);
  }
  return -1;
}

// The same with both sides folded. A first byte without case (a digit, a
// punctuation mark, ...) is searched with memchr like an exact segment.
int FindFolded(const char* s, int from, int lengthS, const char* segment, int length) {
  const unsigned char first = Fold(Byte(segment, 0));
  const bool firstHasCase = first >= 'a' && first <= 'z';
  if (length > lengthS - from) return -1;               // also keeps `last` inside s
  const char* const last = s + (lengthS - length + 1);  // one past the last candidate
  for (const char* cursor = s + from; cursor < last; ++cursor) {
    if (firstHasCase) {
      if (Fold(static_cast<unsigned char>(*cursor)) != first) continue;
    } else {
      cursor = FindByte(cursor, last, segment[0]);
      if (cursor == nullptr) return -1;
    }
    if (FoldedEqual(cursor + 1, segment + 1, length - 1)) return static_cast<int>(cursor - s);
  }
  return -1;
}

}  // namespace

int CompareStrings(bool caseSensitive, int lengthA, const char* a, int lengthB, const char* b) {
  const int n = lengthA < lengthB ? lengthA : lengthB;
  for (int i = 0; i < n; ++i) {
    unsigned char x = Byte(a, i);
    unsigned char y = Byte(b, i);
    if (!caseSensitive) {
      x = Fold(x);
      y = Fold(y);
    }
    if (x != y) return static_cast<signed char>(x) < static_cast<signed char>(y) ? -1 : 1;
  }
  return lengthA > lengthB ? 1 : (lengthA == lengthB ? 0 : -1);
}

int FindSegment(bool caseSensitive, const char* s, int from, int lengthS, const char* segment,
                int length) {
  return caseSensitive ? FindExact(s, from, lengthS, segment, length)
                       : FindFolded(s, from, lengthS, segment, length);
}

bool IsOneSegment(int lengthP, const char* p, int& start, int& length) {
  int first = 0;
  int last = lengthP;
  while (first < last && p[first] == kWildcard) ++first;
  while (last > first && p[last - 1] == kWildcard) --last;
  if (first == last) return false;
  for (int j = first; j < last; ++j) {
    if (p[j] == kWildcard) return false;
  }
  start = first;
  length = last - first;
  return true;
}

int CompareLikeStrings(bool caseSensitive, int lengthS, const char* s, int lengthP, const char* p) {
  if (lengthS == 0) {
    if (lengthP < 0) return 1;
    return OnlyWildcards(p, 0, lengthP) ? 0 : 1;
  }
  if (lengthS < 0) return 0;
  int i = 0;
  int j = 0;
  for (;;) {
    while (j < lengthP && p[j] == kWildcard) ++j;
    if (j >= lengthP) return 0;
    // The segment runs from j to the next wildcard or the pattern's end.
    int segmentEnd = j + 1;
    while (segmentEnd < lengthP && p[segmentEnd] != kWildcard) ++segmentEnd;
    const int length = segmentEnd - j;
    const int start = FindSegment(caseSensitive, s, i, lengthS, p + j, length);
    if (start < 0) return 1;
    i = start + length;
    j = segmentEnd;
    if (i == lengthS) return OnlyWildcards(p, j, lengthP) ? 0 : 1;
  }
}

}  // namespace idxbase::detail
