// The CSV field readers against the general routines whose answers they
// must give (std::from_chars, BBDFilterParser::ParseTime, the four bool
// words), over generated valid and invalid fields. Each field is read at
// the very end of its buffer and again with bytes behind it, which the
// short paths may load but must not take in.
#include "csv_values.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include "idxbase/filter_parser.h"

namespace idxbase_tool {
namespace {

// Calls read(text, readable) on `field` alone in a buffer of its size, and
// then followed by a separator and digits.
template <typename Read>
void ReadBothWays(const std::string& field, Read read) {
  const auto alone = std::make_unique<char[]>(field.size());
  std::memcpy(alone.get(), field.data(), field.size());
  read(std::string_view(alone.get(), field.size()), field.size());
  const std::string followed = field + ",12345678901234567";
  read(std::string_view(followed.data(), field.size()), followed.size());
}

// A field of up to `longest` bytes: mostly from `common`, some from `rare`.
std::string RandomField(std::mt19937& random, const std::string& common, const std::string& rare,
                        std::size_t longest) {
  std::string field(random() % (longest + 1), ' ');
  for (char& c : field) {
    const std::string& from = random() % 16 == 0 ? rare : common;
    c = from[random() % from.size()];
  }
  return field;
}

TEST(CsvValues, NumbersReadAsFromChars) {
  std::mt19937 random(7);
  const std::string rare("-+.eE x\0", 8);
  const char* const kEdges[] = {"16777216",    "16777217",    "1677721.7",    "99999999",
                                "0.0000001",   "-0.0",        "2147483647",   "2147483648",
                                "-2147483648", "-2147483649", "000000000001", ".5",
                                "5.",          "-",           "1e5"};
  for (int i = 0; i < 300000; ++i) {
    std::string field = RandomField(random, "0123456789", rare, 11);
    if (i % 3 == 0 && field.size() > 2) field[random() % field.size()] = '.';
    if (i % 5 == 0) field.insert(0, "-");
    if (i < static_cast<int>(std::size(kEdges))) field = kEdges[i];
    ReadBothWays(field, [&field](std::string_view text, std::size_t readable) {
      std::int32_t expected = 0, value = 0;
      const auto plain = std::from_chars(field.data(), field.data() + field.size(), expected);
      const bool takes = plain.ec == std::errc() && plain.ptr == field.data() + field.size();
      ASSERT_EQ(ReadInt(text, readable, value), takes) << field;
      if (takes) {
        ASSERT_EQ(value, expected) << field;
      }
    });
    ReadBothWays(field, [&field](std::string_view text, std::size_t readable) {
      float expected = 0, value = 0;
      const auto plain = std::from_chars(field.data(), field.data() + field.size(), expected);
      const bool takes = plain.ec == std::errc() && plain.ptr == field.data() + field.size() &&
                         std::isfinite(expected);
      ASSERT_EQ(ReadFloat(text, readable, value), takes) << field;
      if (takes) {
        ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << field;
      }
    });
  }
}

TEST(CsvValues, BoolsAreTheFourWords) {
  std::mt19937 random(3);
  for (int i = 0; i < 20000; ++i) {
    const std::string field = RandomField(random, "truefals01", std::string("\0T ", 3), 6);
    ReadBothWays(field, [&field](std::string_view text, std::size_t readable) {
      bool value = false;
      const bool isTrue = field == "true" || field == "1";
      ASSERT_EQ(ReadBool(text, readable, value), isTrue || field == "false" || field == "0")
          << field;
      if (isTrue) {
        ASSERT_TRUE(value) << field;
      }
    });
  }
}

// Dates and times near the edges of each field, some with a byte
// replaced; one reader for all, so that the dates it learns are reused.
TEST(CsvValues, TimesReadAsParseTime) {
  std::mt19937 random(11);
  TimeReader reader;
  for (int i = 0; i < 200000; ++i) {
    char text[32];
    const auto pick = [&random](unsigned below) { return static_cast<int>(random() % below); };
    const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ",
                                     pick(4) == 0 ? pick(10000) : 2024 + pick(4), pick(14),
                                     pick(33), pick(25), pick(61), pick(61));
    std::string field(text, static_cast<std::size_t>(length));
    const std::size_t kSizes[] = {19, 19, 10, 20};  // time, date, time with a Z
    field.resize(kSizes[pick(4)]);
    if (pick(8) == 0) field[random() % field.size()] = "0123456789-T:Z\0"[pick(15)];
    ReadBothWays(field, [&](std::string_view view, std::size_t) {
      KORTime time = KORTime::FromEpochSeconds(0);
      std::int64_t seconds = 0;
      const bool takes = BBDFilterParser::ParseTime(field, time);
      ASSERT_EQ(reader.Read(view, seconds), takes) << field;
      if (takes) {
        ASSERT_EQ(seconds, time.GetEpochSeconds()) << field;
      }
    });
  }
}

}  // namespace
}  // namespace idxbase_tool
