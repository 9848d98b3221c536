#include <gtest/gtest.h>

#include <string>

#include "byte_run_test_support.h"
#include "idxbase/strings.h"

namespace {

IDX_Base_String String(const std::string& text) {
  IDX_Base_String string;
  string.SetData(text.data(), idxbase_test::Size(text));
  return string;
}

std::string Contents(const IDX_Base_String& string) {
  return idxbase_test::Text(string.GetData(), string.GetLength());
}

constexpr char kInvalid[] = "IDX_Base_String.SortCompare.InvalidString\n";

TEST(String, CopiesShareUntilSetData) {
  const IDX_Base_String original = String("abc");
  IDX_Base_String copy(original);
  EXPECT_EQ(copy.GetData(), original.GetData());
  copy.SetData("xy", 2);
  EXPECT_EQ(Contents(copy), "xy");
  EXPECT_EQ(Contents(original), "abc");
  copy = original;
  EXPECT_EQ(copy.GetData(), original.GetData());
}

TEST(String, StorageIsExactThenKeptAndZeroFilled) {
  IDX_Base_String string = String("abcdef");
  const char* storage = string.GetData();
  string.SetData("abc", 3);
  EXPECT_EQ(string.GetData(), storage);
  EXPECT_EQ(string.GetData()[3], '\0');
  string.SetData(string.GetData() + 1, 2);  // from its own storage
  EXPECT_EQ(idxbase_test::Text(storage, 6), std::string("bc\0\0\0\0", 6));
  string.Clear();
  EXPECT_EQ(string.GetLength(), 0u);
  EXPECT_EQ(string.GetData(), storage);
}

TEST(String, SortCompareAndInequalityFollowTheByteOrder) {
  const struct {
    std::string left, right;
    short result;
  } kCases[] = {
      {"ab", "abc", -1},
      {"abc", "ab", 1},
      {"abc", "abc", 0},
      {"abd", "abc", 1},
      {std::string("a\0b", 3), std::string("a\0c", 3), -1},
  };
  for (const auto& c : kCases) {
    short result = 7;
    EXPECT_EQ(String(c.left).SortCompare(String(c.right), result), IDX_True);
    EXPECT_EQ(result, c.result) << c.left << " vs " << c.right;
    EXPECT_EQ(String(c.left) != String(c.right), c.result != 0);
  }
}

TEST(String, EmptyHandles) {
  const IDX_Base_String empty;
  const IDX_Base_String text = String("ab");
  short result = 3;
  EXPECT_EQ(idxbase_test::TraceOf([&] { EXPECT_EQ(empty.SortCompare(text, result), IDX_False); }),
            kInvalid);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(idxbase_test::TraceOf([&] { EXPECT_FALSE(empty != text); }), kInvalid);
  EXPECT_TRUE(text != empty);  // an empty handle counts as no bytes
  EXPECT_FALSE(String("") != empty);
}

TEST(String, DumpPrintsUpToAZeroByte) {
  EXPECT_EQ(idxbase_test::OutputOf([] { String(std::string("ab\0cd", 5)).Dump(); }), "ab");
  EXPECT_EQ(idxbase_test::OutputOf([] { String("xyz").Dump(); }), "xyz");
  EXPECT_EQ(idxbase_test::OutputOf([] {
              IDX_Base_String().Dump();
              String("").Dump();
            }),
            "");
}

}  // namespace
