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

// Copies share the record until one is written; the writer's own storage
// is kept when the bytes shrink, zero-filled past them.
TEST(String, CopiesShareUntilSetDataThenStorageIsKept) {
  const IDX_Base_String original = String("abcdef");
  IDX_Base_String copy(original);
  EXPECT_EQ(copy.GetData(), original.GetData());
  copy.SetData("xyz", 3);
  EXPECT_EQ(Contents(copy), "xyz");
  EXPECT_EQ(Contents(original), "abcdef");
  const char* storage = copy.GetData();
  copy.SetData(copy.GetData() + 1, 2);  // from its own storage
  EXPECT_EQ(idxbase_test::Text(storage, 3), std::string("yz\0", 3));
  copy.Clear();
  EXPECT_EQ(copy.GetLength(), 0u);
  EXPECT_EQ(copy.GetData(), storage);
  copy = original;
  EXPECT_EQ(copy.GetData(), original.GetData());
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
