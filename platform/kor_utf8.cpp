#include "platform/kor_utf8.h"

#include <cstdint>
#include <cstring>

namespace idxbase::detail {
namespace {

// What a lead byte announces: the length of its sequence and the range its
// second byte must fall in. The narrower second-byte ranges are what rules
// out overlong forms (E0, F0), surrogates (ED) and values above U+10FFFF
// (F4). A length of 0 means the byte can never start a character.
struct LeadRule {
  std::size_t length;
  unsigned char secondLow;
  unsigned char secondHigh;
};

LeadRule RuleFor(unsigned char lead) {
  if (lead < 0x80) return {1, 0, 0};
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

bool InRange(unsigned char byte, unsigned char low, unsigned char high) {
  return byte >= low && byte <= high;
}

// Examines the character at the start of `rest` (not empty). Returns how
// many bytes it covers and sets `valid`: a valid character is copied, an
// invalid run (never empty) is replaced as a whole.
std::size_t ScanCharacter(std::string_view rest, bool& valid) {
  const auto lead = static_cast<unsigned char>(rest[0]);
  const LeadRule rule = RuleFor(lead);
  valid = false;
  if (rule.length == 0) return 1;
  std::size_t matched = 1;
  while (matched < rule.length && matched < rest.size()) {
    const auto byte = static_cast<unsigned char>(rest[matched]);
    const bool ok =
        matched == 1 ? InRange(byte, rule.secondLow, rule.secondHigh) : InRange(byte, 0x80, 0xBF);
    if (!ok) break;
    ++matched;
  }
  valid = matched == rule.length;
  return matched;
}

// Eight bytes at a time while no byte has its high bit set, then singly.
std::size_t AsciiPrefixLength(std::string_view bytes) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
  std::size_t length = 0;
  for (std::uint64_t word = 0; length + sizeof word <= bytes.size(); length += sizeof word) {
    std::memcpy(&word, bytes.data() + length, sizeof word);
    if ((word & kHighBits) != 0) break;
  }
  while (length < bytes.size() && static_cast<unsigned char>(bytes[length]) < 0x80) ++length;
  return length;
}

}  // namespace

void AppendWellFormedUtf8(std::string_view bytes, std::string& out) {
  out.reserve(out.size() + bytes.size());
  while (!bytes.empty()) {
    const std::size_t ascii = AsciiPrefixLength(bytes);
    out.append(bytes.data(), ascii);
    bytes.remove_prefix(ascii);
    if (bytes.empty()) break;
    bool valid = false;
    const std::size_t size = ScanCharacter(bytes, valid);
    if (valid) {
      out.append(bytes.data(), size);
    } else {
      out.append(kReplacementCharacter);
    }
    bytes.remove_prefix(size);
  }
}

std::string ToWellFormedUtf8(const char* text) {
  std::string out;
  if (text != nullptr) AppendWellFormedUtf8(std::string_view(text, std::strlen(text)), out);
  return out;
}

std::size_t Utf8CharacterSize(unsigned char lead) {
  const std::size_t length = RuleFor(lead).length;
  return length == 0 ? 1 : length;
}

int CountCodePoints(std::string_view text) {
  int count = 0;
  for (const char byte : text) {
    // Every character has exactly one byte that is not a continuation byte.
    if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80) ++count;
  }
  return count;
}

}  // namespace idxbase::detail
