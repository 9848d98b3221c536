// Reading one CSV field as a value of its column's type.
//
// The readers of ints, floats and times take the shapes that typed CSV
// files are made of in a few instructions and hand every other text to the
// general routine of their type (std::from_chars, BBDFilterParser::
// ParseTime), so that they accept and refuse exactly the texts that routine
// does, with the same value. The short paths only ever accept: a text they
// do not take whole goes on to the general routine, which decides. Bools
// are the four words, compared whole.
#ifndef IDXBASE_TOOLS_CSV_VALUES_H_
#define IDXBASE_TOOLS_CSV_VALUES_H_

#include <cfloat>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string_view>

namespace idxbase_tool {

// std::from_chars into an int32, the whole text.
bool ReadIntSlowly(std::string_view text, std::int32_t& value);
// std::from_chars into a float, the whole text, finite.
bool ReadFloatSlowly(std::string_view text, float& value);

// The short paths read a field's first eight bytes as one little-endian
// word (the first byte lowest). Where the host is not little-endian they
// step aside, and every text goes the general way.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
constexpr bool kWordReads = true;
#else
constexpr bool kWordReads = false;
#endif

// The first `count` bytes at `p` (at most 8) in a word, zero above them.
// `readable` bytes from `p` may be read (at least `count`): with eight,
// one load does.
inline std::uint64_t FirstBytes(const char* p, std::size_t count, std::size_t readable) {
  std::uint64_t word = 0;
  if (readable >= 8) {
    std::memcpy(&word, p, sizeof word);
  } else {
    for (std::size_t i = 0; i < count; ++i)
      word |= std::uint64_t{static_cast<unsigned char>(p[i])} << (8 * i);
  }
  return count >= 8 ? word : word & ((std::uint64_t{1} << (8 * count)) - 1);
}

// The decimal value of a word of digits that FirstBytes read, `count` of
// them (1 to 8); false when one of them is not a digit.
inline bool DigitsValue(std::uint64_t word, std::size_t count, std::uint32_t& value) {
  constexpr std::uint64_t kZeros = 0x3030303030303030u;
  // Leading zeros in front, the most significant byte being the lowest.
  word = (word << (8 * (8 - count))) | (kZeros & ~(~std::uint64_t{0} << (8 * (8 - count))));
  constexpr std::uint64_t kHighNibbles = 0xF0F0F0F0F0F0F0F0u;
  if (((word & kHighNibbles) | (((word + 0x0606060606060606u) & kHighNibbles) >> 4)) !=
      0x3333333333333333u) {
    return false;
  }
  // Pairs of digits, then fours, then the eight.
  word -= kZeros;
  word = word * 10 + (word >> 8);
  constexpr std::uint64_t kPairs = 0x000000FF000000FFu;
  word = ((word & kPairs) * (100 + (std::uint64_t{1000000} << 32)) +
          ((word >> 16) & kPairs) * (1 + (std::uint64_t{10000} << 32))) >>
         32;
  value = static_cast<std::uint32_t>(word);
  return true;
}

// A decimal int32: "-" and one digit or more; leading zeros are allowed.
// `readable` bytes from the text's start may be read (at least its size).
inline bool ReadInt(std::string_view text, std::size_t readable, std::int32_t& value) {
  const std::size_t sign = !text.empty() && text[0] == '-' ? 1 : 0;
  const std::size_t digits = text.size() - sign;
  std::uint32_t magnitude = 0;
  // Eight digits cannot overflow, whatever they are.
  if (!kWordReads || digits == 0 || digits > 8 ||
      !DigitsValue(FirstBytes(text.data() + sign, digits, readable - sign), digits, magnitude)) {
    return ReadIntSlowly(text, value);
  }
  value = sign != 0 ? -static_cast<std::int32_t>(magnitude) : static_cast<std::int32_t>(magnitude);
  return true;
}

// A finite decimal float. Up to eight bytes of digits, with at most one
// point among them, are an integer divided by a power of ten. With a
// point, the integer has at most seven digits, under 2^24, so that both
// are exact as floats and the one division rounds the decimal value
// correctly, as from_chars does; without, the integer's conversion rounds
// it correctly by itself. That holds only where float arithmetic is done
// in floats.
inline bool ReadFloat(std::string_view text, std::size_t readable, float& value) {
#if FLT_EVAL_METHOD == 0
  static constexpr float kPowersOfTen[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f};
  const std::size_t sign = !text.empty() && text[0] == '-' ? 1 : 0;
  const std::size_t size = text.size() - sign;
  if (kWordReads && size > 0 && size <= 8) {
    std::uint64_t word = FirstBytes(text.data() + sign, size, readable - sign);
    // The lowest zero byte of word ^ "........" is the first point.
    const std::uint64_t dots = word ^ 0x2E2E2E2E2E2E2E2Eu;
    const std::uint64_t zeros = (dots - 0x0101010101010101u) & ~dots & 0x8080808080808080u;
    const std::size_t point =
        zeros == 0 ? size : static_cast<std::size_t>(__builtin_ctzll(zeros)) / 8;
    const bool hasPoint = point < size;
    const std::size_t decimals = hasPoint ? size - 1 - point : 0;
    if (hasPoint) {  // taken out
      const std::uint64_t below = (std::uint64_t{1} << (8 * point)) - 1;
      word = (word & below) | ((word >> 8) & ~below);
    }
    const std::size_t digits = size - (hasPoint ? 1 : 0);
    std::uint32_t mantissa = 0;
    if (digits > 0 && DigitsValue(word, digits, mantissa)) {
      const float magnitude = static_cast<float>(mantissa) / kPowersOfTen[decimals];
      value = sign != 0 ? -magnitude : magnitude;
      return true;
    }
  }
#endif
  return ReadFloatSlowly(text, value);
}

// true, false, 1 or 0.
inline bool ReadBool(std::string_view text, std::size_t readable, bool& value) {
  const std::size_t size = text.size();
  bool isTrue = false, isFalse = false;
  if (kWordReads && size <= 5) {
    // The size in the top byte, so that one comparison takes both, and
    // the comparisons need no jumps, which a file of mixed values would
    // mispredict.
    const std::uint64_t key = FirstBytes(text.data(), size, readable) | std::uint64_t{size} << 56;
    const auto word = [](std::uint64_t bytes, std::uint64_t count) { return bytes | count << 56; };
    isTrue = key == word(0x65757274u, 4) || key == word('1', 1);
    isFalse = key == word(0x65736C6166u, 5) || key == word('0', 1);
  } else if (!kWordReads) {
    isTrue = text == "true" || text == "1";
    isFalse = text == "false" || text == "0";
  }
  value = isTrue;
  return isTrue || isFalse;
}

// Reads times as BBDFilterParser::ParseTime does, in seconds since the
// epoch. A file's times share few dates, so the seconds of recent dates
// are kept: a time "YYYY-MM-DDTHH:MM:SS" or date "YYYY-MM-DD" whose date
// is known costs only reading its digits. Dates are learnt from ParseTime
// itself, so that the calendar stays in one place. One thread at a time.
class TimeReader {
 public:
  bool Read(std::string_view text, std::int64_t& seconds) {
    const std::size_t size = text.size();
    if (size != 10 && size != 19) return ReadSlowly(text, seconds);
    const auto digit = [&text](std::size_t at) {
      return static_cast<unsigned>(static_cast<unsigned char>(text[at])) - unsigned{'0'};
    };
    const unsigned y3 = digit(0), y2 = digit(1), y1 = digit(2), y0 = digit(3), mo1 = digit(5),
                   mo0 = digit(6), d1 = digit(8), d0 = digit(9);
    const unsigned month = mo1 * 10 + mo0, day = d1 * 10 + d0;
    if (!AllDigits({y3, y2, y1, y0, mo1, mo0, d1, d0}) || text[4] != '-' || text[7] != '-' ||
        month - 1 > 11 || day > 31) {
      return ReadSlowly(text, seconds);
    }
    const unsigned year = ((y3 * 10 + y2) * 10 + y1) * 10 + y0;
    const Day& known = days_[Slot(year, month, day)];
    if (known.year != static_cast<int>(year)) return ReadSlowly(text, seconds);
    if (size == 10) {
      seconds = known.seconds;
      return true;
    }
    const unsigned h1 = digit(11), h0 = digit(12), m1 = digit(14), m0 = digit(15), s1 = digit(17),
                   s0 = digit(18);
    if (!AllDigits({h1, h0, m0, s0}) || m1 > 5 || s1 > 5 || h1 * 10 + h0 > 23 || text[10] != 'T' ||
        text[13] != ':' || text[16] != ':') {
      return ReadSlowly(text, seconds);
    }
    seconds = known.seconds + (h1 * 10 + h0) * 3600 + (m1 * 10 + m0) * 60 + s1 * 10 + s0;
    return true;
  }

 private:
  // The midnight of a date that ParseTime accepted; year 0, which it
  // refuses, marks a slot not filled yet.
  struct Day {
    int year = 0;
    std::int64_t seconds = 0;
  };
  // Each of `values` is a digit's value (its byte minus '0', unsigned).
  static bool AllDigits(std::initializer_list<unsigned> values) {
    bool digits = true;
    for (const unsigned value : values) digits &= value <= 9;
    return digits;
  }
  // A slot for each day of four consecutive years. Requires: month 1-12, day 0-31.
  static std::size_t Slot(unsigned year, unsigned month, unsigned day) {
    return ((year & 3) * 12 + month - 1) * 32 + day;
  }
  bool ReadSlowly(std::string_view text, std::int64_t& seconds);

  Day days_[4 * 12 * 32];
};

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_CSV_VALUES_H_
