#include "idxbase/kor_string.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string kFFFD = "\xEF\xBF\xBD";

std::string Text(const KORUnicodeString& text) { return text.ConvertToChar(); }

TEST(KORUnicodeString, CountsCharactersNotBytes) {
  // a, e-acute (2 bytes), euro sign (3 bytes), grinning face (4 bytes)
  EXPECT_EQ(4, KORUnicodeString("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80").GetLengthInChar());
  EXPECT_EQ(0, KORUnicodeString(static_cast<const char*>(nullptr)).GetLengthInChar());
}

TEST(KORUnicodeString, ReplacesEachIllFormedSequence) {
  const std::vector<std::pair<const char*, std::string>> cases = {
      {"\xC0\xAF", kFFFD + kFFFD},                          // overlong: C0 never leads
      {"\xE0\x80\xAF", kFFFD + kFFFD + kFFFD},              // overlong three-byte form
      {"\xED\xA0\x80", kFFFD + kFFFD + kFFFD},              // surrogate U+D800
      {"\xF4\x90\x80\x80", kFFFD + kFFFD + kFFFD + kFFFD},  // above U+10FFFF
      {"a\x80z", "a" + kFFFD + "z"},                        // stray continuation byte
      {"\xE2\x82z", kFFFD + "z"},                           // truncated: one replacement
      {"x\xF0\x9F\x98", "x" + kFFFD},                       // truncated at the end
      {"\xF4\x8F\xBF\xBF\xED\x9F\xBF", "\xF4\x8F\xBF\xBF\xED\x9F\xBF"},  // U+10FFFF, U+D7FF
  };
  for (const auto& [input, expected] : cases) {
    SCOPED_TRACE(testing::PrintToString(std::string(input)));
    EXPECT_EQ(expected, Text(input));
  }
  EXPECT_EQ(3, KORUnicodeString("a\x80z").GetLengthInChar());
  KORUnicodeString appended("a");
  appended += "\xC3";
  EXPECT_EQ("a" + kFFFD, Text(appended));
}

TEST(KORUnicodeString, ConcatenatesCopiesAndCompares) {
  const KORUnicodeString left("ab");
  KORUnicodeString text = left + KORUnicodeString("\xC3\xA9") + "y";
  text.Append(static_cast<const char*>(nullptr));
  EXPECT_EQ("ab\xC3\xA9y", Text(text));
  EXPECT_EQ("ab", Text(left));
  text = "ab";
  text += text;
  EXPECT_EQ("abab", Text(text));
  text = text.ConvertToChar() + 1;  // assignment from the string's own bytes
  EXPECT_EQ("bab", Text(text));
  EXPECT_TRUE(KORUnicodeString("abc") == KORUnicodeString("abc"));
  EXPECT_TRUE(KORUnicodeString("ab") != KORUnicodeString("abc"));
}

// The buffer after conversion into `capacity` bytes of '#', up to the
// reported size and one byte more.
std::string Convert(const KORUnicodeString& text, unsigned long long capacity) {
  std::string buffer(16, '#');
  text.ConvertToUTF8(buffer.data(), &capacity);
  return buffer.substr(0, static_cast<std::size_t>(capacity) + 1);
}

TEST(KORUnicodeString, ConvertToUTF8WritesWholeCharactersOnly) {
  const std::string bytes = "a\xE2\x82\xAC" + std::string("b");  // a, euro sign, b
  const KORUnicodeString text(bytes.c_str());
  const std::pair<unsigned long long, std::string> kCases[] = {
      {6, bytes + std::string(1, '\0')},
      {5, bytes + "#"},  // no room for the zero
      {4, bytes.substr(0, 4) + "#"},
      {3, std::string("a\0", 2)},  // the euro sign does not fit
      {0, "#"},
  };
  for (const auto& [capacity, written] : kCases) EXPECT_EQ(written, Convert(text, capacity));
  unsigned long long size = 8;
  text.ConvertToUTF8(nullptr, &size);
  EXPECT_EQ(8u, size);
}

template <typename Number>
void ExpectBuilt(Number value, const char* format, const std::string& expected) {
  KORUnicodeString text;
  EXPECT_TRUE(text.BuildFromNum(value, format)) << format;
  EXPECT_EQ(expected, Text(text)) << format;
}

TEST(KORUnicodeString, BuildFromNumFormatsOneNumber) {
  ExpectBuilt(7, "n=%+05d%%", "n=+0007%");
  ExpectBuilt(3, "%%[%-4i]", "%[3   ]");
  ExpectBuilt(-1, "%#x", "0xffffffff");
  ExpectBuilt(5, "% .3u", "005");
  ExpectBuilt('A', "%c", "A");
  ExpectBuilt(-1.5, "%8.3f|", "  -1.500|");
  ExpectBuilt(0.00001, "%G", "1E-05");
  ExpectBuilt(1.0, "%a", "0x1p+0");
  // The result is made well-formed, and ends at a zero byte.
  ExpectBuilt(0xE9, "%c!", kFFFD + "!");
  ExpectBuilt(0, "a%cb", "a");
}

TEST(KORUnicodeString, BuildFromNumRefusesOtherFormatsAndEmpties) {
  for (const char* format : {static_cast<const char*>(nullptr), "", "%%", "%d %d", "%*d", "%.*d",
                             "%ld", "%s", "%n", "%f", "%", "%5.", "%'d", "%1$d"}) {
    KORUnicodeString text("previous");
    EXPECT_FALSE(text.BuildFromNum(1, format)) << (format != nullptr ? format : "(null)");
    EXPECT_EQ("", Text(text));
  }
  for (const char* format : {"%d", "%c", "%Lf", "%f%f", "%*.2f"}) {
    KORUnicodeString text("previous");
    EXPECT_FALSE(text.BuildFromNum(1.0, format)) << format;
    EXPECT_EQ("", Text(text));
  }
}

}  // namespace
