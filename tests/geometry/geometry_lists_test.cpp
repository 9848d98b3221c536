#include "idxbase/geometry_lists.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "geometry/record_list.h"

namespace {

using idxbase::detail::GrownListCapacity;
using idxbase::detail::RecordList;

TEST(ListGrowth, DoublesUpToAHundredMebibytesThenAddsAMillion) {
  const struct {
    std::uint32_t capacity, grown;
  } kCases[] = {
      {1, 2},
      {2, 4},
      {3, 6},
      {4369049, 8738098},
      {4369050, 5369050},
      {4294967295u - 1000000, 4294967295u},
      {4294967295u - 999999, 0},  // cannot be counted: the growth fails
  };
  for (const auto& c : kCases) EXPECT_EQ(GrownListCapacity(c.capacity), c.grown) << c.capacity;
}

// A realloc that records the sizes asked for and fails on demand.
struct Allocations {
  static void* Reallocate(void* storage, std::size_t bytes) {
    ++calls;
    sizes.push_back(bytes);
    if (failures > 0) {
      --failures;
      return nullptr;
    }
    return std::realloc(storage, bytes);
  }
  static void Reset(int fail) {
    calls = 0;
    failures = fail;
    sizes.clear();
  }
  static inline int calls = 0;
  static inline int failures = 0;
  static inline std::vector<std::size_t> sizes;
};

// The three fields of a list, with a view that allocates through
// Allocations.
struct TestList {
  explicit TestList(unsigned int initialSize) { View().Create(initialSize); }
  ~TestList() { View().Destroy(); }
  RecordList<IDX_Point> View() { return {array, capacity, size, Allocations::Reallocate}; }
  IDX_Bool Append(float x) { return View().Append({x, 0, 0}); }

  IDX_Point* array;
  std::uint32_t capacity, size;
};

TEST(RecordList, GrowsOnlyWhenFull) {
  Allocations::Reset(0);
  TestList list(0);
  EXPECT_EQ(list.capacity, 1u);  // one more than asked
  for (int n = 0; n < 5; ++n) EXPECT_EQ(list.Append(static_cast<float>(n)), IDX_True);
  EXPECT_EQ(Allocations::sizes, (std::vector<std::size_t>{12, 24, 48, 96}));
  for (unsigned int n = 0; n < list.size; ++n) EXPECT_EQ(list.array[n].x, static_cast<float>(n));

  Allocations::Reset(0);
  TestList three(3);
  for (int n = 0; n < 5; ++n) three.Append(0);
  EXPECT_EQ(Allocations::sizes, (std::vector<std::size_t>{48, 96}));  // grows at the fifth
  EXPECT_EQ(three.capacity, 8u);
}

TEST(RecordList, EachGrowthTriesElevenTimes) {
  Allocations::Reset(0);
  TestList list(1);
  list.Append(1);
  list.Append(2);
  Allocations::Reset(10);  // the eleventh attempt succeeds
  ASSERT_EQ(list.Append(3), IDX_True);
  EXPECT_EQ(Allocations::calls, 11);
  EXPECT_EQ(list.capacity, 4u);
  EXPECT_EQ(list.array[1].x, 2);

  list.Append(4);
  Allocations::Reset(11);  // all eleven fail: the list loses everything
  EXPECT_EQ(list.Append(5), IDX_False);
  EXPECT_EQ(Allocations::calls, 11);
  EXPECT_EQ(list.array, nullptr);
  EXPECT_EQ(list.capacity, 0u);
  EXPECT_EQ(list.size, 0u);
  EXPECT_EQ(list.Append(6), IDX_False);  // and refuses the rest without trying
  EXPECT_EQ(Allocations::calls, 11);
}

TEST(RecordList, FailedCreationRefusesAppends) {
  Allocations::Reset(1);
  TestList list(10);
  EXPECT_EQ(list.capacity, 0u);
  EXPECT_EQ(list.Append(1), IDX_False);
  EXPECT_EQ(Allocations::calls, 1);  // creation is not retried, Append does not try
}

TEST(PointList, RemoveAllKeepsTheStorage) {
  IDX_Base_ListOf_Point list(2);
  list.Append({1, 2, 3});
  list.Append({4, 5, 6});
  const IDX_Point* storage = list.GetArray();
  list.RemoveAll();
  EXPECT_EQ(list.Size(), 0u);
  list.Append({7, 8, 9});
  EXPECT_EQ(list.GetArray(), storage);
  EXPECT_EQ(list.Size(), 1u);
  EXPECT_EQ(list.GetArray()[0].z, 9);
}

TEST(PointList, UncountableInitialSizeGivesAFailedList) {
  IDX_Base_ListOf_Point list(std::numeric_limits<unsigned int>::max());
  EXPECT_EQ(list.Append({1, 2, 3}), IDX_False);
  EXPECT_EQ(list.Size(), 0u);
  EXPECT_EQ(list.GetArray(), nullptr);
}

TEST(TriangleList, StoresWholeRecords) {
  IDX_Base_ListOf_Triangle list(0);
  for (std::uint32_t n = 0; n < 100; ++n) {
    ASSERT_EQ(list.Append({{n, n + 1, 0xFFFFFFFFu - n}}), IDX_True);
  }
  ASSERT_EQ(list.Size(), 100u);
  EXPECT_EQ(list.GetArray()[99].corner[1], 100u);
  EXPECT_EQ(list.GetArray()[99].corner[2], 0xFFFFFFFFu - 99);
  list.RemoveAll();
  EXPECT_EQ(list.Size(), 0u);
}

}  // namespace
