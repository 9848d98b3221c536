#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>

#include "byte_run_test_support.h"
#include "idxbase/strings.h"

namespace {

IDX_Base_String String(const std::string& text) {
  IDX_Base_String string;
  string.SetData(text.data(), idxbase_test::Size(text));
  return string;
}

KORListValIDX_Base_String List(std::initializer_list<std::string> texts) {
  KORListValIDX_Base_String list;
  for (const std::string& text : texts) list.Append(String(text));
  return list;
}

std::string Contents(const IDX_Base_String& string) {
  return idxbase_test::Text(string.GetData(), string.GetLength());
}

TEST(StringList, AppendSharesTheStringFromPositionOne) {
  const IDX_Base_String first = String("first");
  KORListValIDX_Base_String list(4, 0);
  list.Append(first);
  list.Append(String("second"));
  ASSERT_EQ(list.Size(), 2);
  EXPECT_EQ(list[1].GetData(), first.GetData());
  EXPECT_EQ(Contents(list[2]), "second");

  list[1].SetData("changed", 7);  // the element detaches
  EXPECT_EQ(Contents(first), "first");
}

TEST(StringList, CompareByContents) {
  const struct {
    KORListValIDX_Base_String left, right;
    int equal;
  } kCases[] = {
      {List({"ab", "cd"}), List({"ab", "cd"}), 1},
      {List({"ab"}), List({"abc"}), 0},
      {List({"ab", "cd"}), List({"ab", "ce"}), 0},
      {List({"ab"}), List({"ab", "cd"}), 0},
      {List({}), List({}), 1},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(c.left == c.right, c.equal);
    EXPECT_EQ(c.left != c.right, 1 - c.equal);
  }
}

TEST(StringList, CopiesAndAssignmentShareTheStringsUntilRemoveAll) {
  const KORListValIDX_Base_String source = List({"ab", "cd"});
  const KORListValIDX_Base_String copy(source);
  KORListValIDX_Base_String assigned = List({"old"});
  assigned = source;
  const KORListValIDX_Base_String& alias = assigned;
  assigned = alias;  // self-assignment keeps the elements
  for (const KORListValIDX_Base_String& list : {std::cref(copy), std::cref(assigned)}) {
    ASSERT_EQ(list.Size(), 2);
    EXPECT_EQ(list[1].GetData(), source[1].GetData());
    EXPECT_EQ(list[2].GetData(), source[2].GetData());
    EXPECT_EQ(list == source, 1);
  }
  assigned.RemoveAll(KORCollec::ReleaseMemory);
  EXPECT_EQ(assigned.Size(), 0);
  EXPECT_EQ(assigned == List({}), 1);
  EXPECT_EQ(copy.Size(), 2);
}

TEST(StringList, EmptyStringElementTracesAndCountsAsEqual) {
  KORListValIDX_Base_String list;
  list.Append(IDX_Base_String());
  const KORListValIDX_Base_String other = List({"anything"});
  EXPECT_EQ(idxbase_test::TraceOf([&] { EXPECT_EQ(list == other, 1); }),
            "IDX_Base_String.SortCompare.InvalidString\n");
}

}  // namespace
