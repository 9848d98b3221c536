#include "idxbase/kor_collections.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Ints = std::vector<int>;

// Collections hold pointers into `values`, written and read as indexes.
int values[8] = {};
void* P(int i) { return &values[i]; }

KORRawCollPV Of(const Ints& indexes) {
  KORRawCollPV collection;
  for (int i : indexes) collection.Append(P(i));
  return collection;
}

Ints Indexes(const KORRawCollPV& collection) {
  Ints indexes;
  for (int position = 1; position <= collection.Size(); ++position) {
    indexes.push_back(static_cast<int>(static_cast<int*>(collection[position]) - values));
  }
  return indexes;
}

TEST(KORRawCollPV, PositionsRunFromOneAndOutOfRangeUsesAScratchSlot) {
  KORRawCollPV collection(-5);
  EXPECT_EQ(1, collection.Append(P(0)));
  EXPECT_EQ(2, collection.Append(P(1)));
  collection[2] = P(3);
  collection[0] = P(5);
  EXPECT_EQ(nullptr, collection[3]);  // the scratch slot is reset on each access
  collection[-1] = P(6);
  const KORRawCollPV& constView = collection;
  EXPECT_EQ(nullptr, constView[0]);
  EXPECT_EQ(Ints({0, 3}), Indexes(collection));
}

TEST(KORRawCollPV, InsertAtAndLocate) {
  KORRawCollPV collection = Of({1, 2});
  EXPECT_EQ(1, collection.InsertAt(1, P(0)));
  EXPECT_EQ(4, collection.InsertAt(4, P(0)));
  EXPECT_EQ(4, collection.InsertAt(4, P(3)));
  EXPECT_EQ(0, collection.InsertAt(0, P(5)));
  EXPECT_EQ(0, collection.InsertAt(7, P(5)));
  EXPECT_EQ(Ints({0, 1, 2, 3, 0}), Indexes(collection));
  EXPECT_EQ(1, collection.Locate(P(0), -3));
  EXPECT_EQ(5, collection.Locate(P(0), 2));
  EXPECT_EQ(0, collection.Locate(P(1), 3));
  EXPECT_EQ(0, collection.Locate(P(7)));
}

TEST(KORRawCollPV, RemoveValuePositionAndAll) {
  KORRawCollPV collection = Of({0, 1, 0, 2, 0, 3, 4});
  EXPECT_EQ(3, collection.RemoveValue(P(0)));
  EXPECT_EQ(2, collection.RemovePosition(2, 2));
  EXPECT_EQ(Ints({1, 4}), Indexes(collection));
  EXPECT_EQ(0, collection.RemovePosition(0, 1));
  EXPECT_EQ(0, collection.RemovePosition(3, 1));
  EXPECT_EQ(1, collection.RemovePosition(2, 100));  // stops at the end
  const KORRawCollPV copy(collection);
  EXPECT_EQ(1, collection.RemoveAll(KORCollec::ReleaseMemory));
  EXPECT_EQ(0, collection.Size());
  EXPECT_EQ(1, copy.Size());
}

TEST(KORRawCollPV, RemoveDuplicatesKeepsFirstOccurrencesInOrder) {
  KORRawCollPV collection = Of({2, 0, 2, 1, 0, 2});
  KORRawCollPV removed = Of({7});
  EXPECT_EQ(3, collection.RemoveDuplicates(&removed));
  EXPECT_EQ(Ints({2, 0, 1}), Indexes(collection));
  EXPECT_EQ(Ints({7, 2, 0, 2}), Indexes(removed));
  EXPECT_TRUE(collection == Of({2, 0, 1}));
  EXPECT_TRUE(collection != Of({2, 1, 0}));
}

TEST(KORListValKORUnicodeString, HoldsIndependentCopiesFromPositionOne) {
  KORListValKORUnicodeString list;
  KORUnicodeString text("first");
  EXPECT_EQ(1, list.Append(text));
  EXPECT_EQ(2, list.Append(list[1]));
  text = "changed";
  list[2] += "!";
  KORListValKORUnicodeString copy(list);
  copy[1] = "z";
  EXPECT_STREQ("first", list[1].ConvertToChar());
  EXPECT_STREQ("first!", list[2].ConvertToChar());
  EXPECT_TRUE(copy != list);
  EXPECT_EQ(2, copy.RemoveAll(KORCollec::ReleaseMemory));
  EXPECT_EQ(2, list.RemoveAll());
  EXPECT_TRUE(copy == list);
}

TEST(KORListValKORUnicodeString, OutOfRangeAccessGivesEmptyStrings) {
  KORListValKORUnicodeString list;
  list.Append("only");
  const KORListValKORUnicodeString& constView = list;
  EXPECT_STREQ("", constView[2].ConvertToChar());
  list[5] = "written to scratch";
  EXPECT_STREQ("", list[0].ConvertToChar());  // emptied on each such access
  EXPECT_EQ(1, list.Size());
}

}  // namespace
