#include "idxbase/utf8_string.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

// Under AddressSanitizer malloc_usable_size is exactly the size asked for;
// otherwise it may be more.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kExactSizes = true;
#elif defined(__has_feature)
constexpr bool kExactSizes = __has_feature(address_sanitizer);
#else
constexpr bool kExactSizes = false;
#endif

// Texts with characters of 1 to 4 UTF-8 bytes, and their lengths in
// characters.
const struct {
  const char* text;
  int characters;
} kTexts[] = {
    {"", 0},
    {"abc", 3},
    {"\xC3\xA9", 1},                                          // é
    {"\xE2\x82\xAC", 1},                                      // €
    {"\xF0\x9F\x98\x80", 1},                                  // 😀
    {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z", 5},            // aé€😀z
    {"\xF0\x9F\x98\x80\xF0\x9F\x98\x80\xF0\x9F\x98\x80", 3},  // 😀😀😀
};

// The buffer holds 4 bytes per character plus one: the UTF-8 bytes, then
// zeros to its end.
void ExpectConversion(const char* buffer, unsigned long long size, const char* text,
                      int characters) {
  ASSERT_NE(buffer, nullptr);
  const std::size_t capacity = static_cast<std::size_t>(characters) * 4 + 1;
  const std::size_t allocated = malloc_usable_size(const_cast<char*>(buffer));
  EXPECT_TRUE(kExactSizes ? allocated == capacity : allocated >= capacity) << allocated;
  EXPECT_EQ(size, std::string(text).size());
  EXPECT_EQ(std::string(buffer, size), text);
  EXPECT_EQ(std::string(buffer + size, capacity - size), std::string(capacity - size, '\0'));
  EXPECT_EQ(KORUnicodeString(buffer), KORUnicodeString(text));
}

TEST(UTF8String, ConvertsIntoAZeroFilledBuffer) {
  for (const auto& t : kTexts) {
    SCOPED_TRACE(t.text);
    BBDUTF8String converted{KORUnicodeString(t.text)};
    ExpectConversion(converted.GetCharPtr(), converted.GetSize(), t.text, t.characters);
    EXPECT_EQ(static_cast<const char*>(converted), converted.GetCharPtr());
  }
  // A default object holds the empty conversion; SetString replaces it.
  BBDUTF8String holder;
  ExpectConversion(holder.GetCharPtr(), holder.GetSize(), "", 0);
  holder.SetString(KORUnicodeString("a long first text"));
  holder.SetString(KORUnicodeString("\xE2\x82\xAC"));
  ExpectConversion(holder.GetCharPtr(), holder.GetSize(), "\xE2\x82\xAC", 1);
}

// The static conversion frees the buffer it is given (a leak would show
// under LeakSanitizer) and allocates from a null one.
TEST(UTF8String, StaticConversionIntoCallerBuffer) {
  char* buffer = nullptr;
  unsigned long long size = 99;
  for (const auto& t : kTexts) {
    SCOPED_TRACE(t.text);
    BBDUTF8String::ConvertToUTF8(KORUnicodeString(t.text), buffer, size);
    ExpectConversion(buffer, size, t.text, t.characters);
  }
  std::free(buffer);
}

// Copies hold the same bytes in a buffer of their own; each object frees
// its own buffer once, whatever the order of destruction.
TEST(UTF8String, CopiesOwnTheirBytes) {
  constexpr char kText[] = "x\xC3\xA9\xF0\x9F\x98\x80";
  auto original = std::make_unique<BBDUTF8String>(KORUnicodeString(kText));
  BBDUTF8String copy(*original);
  BBDUTF8String assigned(KORUnicodeString("old content"));
  assigned = *original;
  BBDUTF8String& alias = assigned;
  assigned = alias;
  for (BBDUTF8String* holder : {&copy, &assigned}) {
    EXPECT_NE(holder->GetCharPtr(), original->GetCharPtr());
    EXPECT_EQ(holder->GetSize(), 7u);
    EXPECT_STREQ(*holder, kText);
  }
  copy.GetCharPtr()[0] = 'y';
  original->SetString(KORUnicodeString("other"));
  original.reset();
  EXPECT_STREQ(assigned, kText);
  assigned = copy;
  EXPECT_STREQ(assigned, "y\xC3\xA9\xF0\x9F\x98\x80");
}

}  // namespace
