#include "byte_units.h"

#include <gtest/gtest.h>

namespace {

TEST(FormatBytes, ThreeSignificantDigitsInTheLargestBinaryUnit) {
  const struct {
    double bytes;
    const char* text;
  } cases[] = {
      {0, "0 B"},
      {1023, "1023 B"},
      {1024, "1.00 KiB"},
      {1536, "1.50 KiB"},
      {12.4 * 1024 * 1024, "12.4 MiB"},
      {248.0 * 1024 * 1024, "248 MiB"},
      {1023.0 * 1024 * 1024, "1023 MiB"},
      {1024.0 * 1024 * 1024, "1.00 GiB"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.text, idxbase_tool::FormatBytes(c.bytes)) << c.bytes;
}

TEST(FormatRate, DividesByTheDurationAndSurvivesZero) {
  EXPECT_EQ("2.00 MiB/s", idxbase_tool::FormatRate(1 << 20, 0.5));
  EXPECT_EQ("1.00 KiB/s", idxbase_tool::FormatRate(1024, 1.0));
  EXPECT_EQ("954 MiB/s", idxbase_tool::FormatRate(1000, 0.0));
}

}  // namespace
