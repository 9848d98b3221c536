#include "filter/string_compare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/string_reference.h"

namespace {

using idxbase::detail::CompareLikeStrings;
using idxbase::detail::CompareStrings;

// The bytes of `text` in a heap block of exactly its size (null when
// empty), so that a read past the end trips the address sanitizer.
class Exact {
 public:
  explicit Exact(const std::string& text) : bytes_(text.empty() ? nullptr : new char[text.size()]) {
    if (!text.empty()) std::memcpy(bytes_.get(), text.data(), text.size());
  }
  const char* get() const { return bytes_.get(); }

 private:
  std::unique_ptr<char[]> bytes_;
};

int Compare(bool caseSensitive, const std::string& a, const std::string& b) {
  Exact ea(a), eb(b);
  return CompareStrings(caseSensitive, static_cast<int>(a.size()), ea.get(),
                        static_cast<int>(b.size()), eb.get());
}

int Like(bool caseSensitive, const std::string& s, const std::string& p) {
  Exact es(s), ep(p);
  return CompareLikeStrings(caseSensitive, static_cast<int>(s.size()), es.get(),
                            static_cast<int>(p.size()), ep.get());
}

// The decisions that the byte-by-byte models below hold both functions
// to on random text, pinned on bytes outside that text: bytes are signed,
// and only A-Z fold, onto a-z.
TEST(CompareStrings, OrdersBytesAsSignedFoldingOnlyAsciiLetters) {
  struct Case {
    bool caseSensitive;
    const char* a;
    const char* b;
    int expected;
  };
  const Case cases[] = {
      {true, "\x7F", "\x80", 1}, {false, "Z", "z", 0},  {false, "[", "a", -1},
      {false, "`", "A", -1},     {false, "@", "`", -1}, {false, "\xC9", "\xE9", -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << testing::PrintToString(std::string(c.a)) << " vs "
                                    << testing::PrintToString(std::string(c.b))
                                    << (c.caseSensitive ? " sensitive" : " insensitive"));
    EXPECT_EQ(c.expected, Compare(c.caseSensitive, c.a, c.b));
    EXPECT_EQ(-c.expected, Compare(c.caseSensitive, c.b, c.a));
  }
}

TEST(CompareLikeStrings, FoldsOnlyAsciiLettersAndReadsOnlyTheGivenLengths) {
  EXPECT_EQ(1, Like(false, "\xE8", "\xC8"));
  EXPECT_EQ(1, Like(false, "{", "["));
  for (bool caseSensitive : {true, false}) {
    EXPECT_EQ(1, CompareLikeStrings(caseSensitive, 2, "abc", 1, "c"));
    EXPECT_EQ(0, CompareLikeStrings(caseSensitive, 3, "abc", 1, "cx"));
  }
}

using idxbase_test::ReferenceCompare;
using idxbase_test::ReferenceLike;

TEST(CompareLikeStrings, AgreesWithTheByteByByteMatcher) {
  std::mt19937 engine(20240611u);
  const auto uniform = [&engine](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(engine);
  };
  const auto make = [&uniform](int maxLength, const std::string& alphabet) {
    std::string text(static_cast<size_t>(uniform(0, maxLength)), ' ');
    const int last = static_cast<int>(alphabet.size()) - 1;
    for (char& c : text) c = alphabet[static_cast<size_t>(uniform(0, last))];
    return text;
  };
  // The length to announce: usually the real one, sometimes 0 or negative.
  const auto lengthFor = [&uniform](const std::string& text) {
    const int draw = uniform(0, 19);
    return draw == 0 ? 0 : draw == 1 ? -uniform(1, 3) : static_cast<int>(text.size());
  };
  int matches = 0;
  constexpr int kRounds = 200000;
  for (int round = 0; round < kRounds; ++round) {
    const std::string subject = make(40, "abAB*x\xC8");
    // Half the patterns are cut from the subject, so that matches are
    // common; some are long enough for the matcher's block compares.
    std::string pattern = make(10, "abAB**x\xC8");
    if (round % 2 == 0 && !subject.empty()) {
      const int from = uniform(0, static_cast<int>(subject.size()) - 1);
      pattern = subject.substr(static_cast<size_t>(from), static_cast<size_t>(uniform(1, 20)));
      pattern.insert(static_cast<size_t>(uniform(0, static_cast<int>(pattern.size()))), "*");
    }
    const int lengthS = lengthFor(subject);
    const int lengthP = lengthFor(pattern);
    Exact s(subject.substr(0, static_cast<size_t>(std::max(lengthS, 0))));
    Exact p(pattern.substr(0, static_cast<size_t>(std::max(lengthP, 0))));
    for (bool caseSensitive : {true, false}) {
      const int expected = ReferenceLike(caseSensitive, lengthS, s.get(), lengthP, p.get());
      const int actual = CompareLikeStrings(caseSensitive, lengthS, s.get(), lengthP, p.get());
      matches += expected == 0 ? 1 : 0;
      ASSERT_EQ(expected, actual) << "subject " << testing::PrintToString(subject) << " length "
                                  << lengthS << ", pattern " << testing::PrintToString(pattern)
                                  << " length " << lengthP
                                  << (caseSensitive ? ", case-sensitive" : ", case-insensitive");
      ASSERT_EQ(ReferenceCompare(caseSensitive, lengthS, s.get(), lengthP, p.get()),
                CompareStrings(caseSensitive, lengthS, s.get(), lengthP, p.get()))
          << testing::PrintToString(subject) << " vs " << testing::PrintToString(pattern);
    }
  }
  // Both outcomes must be well represented for the comparison to mean much.
  EXPECT_GT(matches, kRounds / 5);
  EXPECT_LT(matches, 2 * kRounds - kRounds / 5);
}

}  // namespace
