#include "idxbase/geometry_lists.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "geometry/record_list.h"
#include "support/allocation_faults.h"

namespace {

using idxbase::detail::GrownListCapacity;

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

// The sizes asked of the allocator show the capacities: 12 bytes a record.
TEST(PointList, GrowsOnlyWhenFull) {
  idxbase_test::AllocationFaults allocations(0);
  IDX_Base_ListOf_Point list(0);  // one more than asked
  for (int n = 0; n < 5; ++n) EXPECT_EQ(list.Append({static_cast<float>(n), 0, 0}), IDX_True);
  EXPECT_EQ(allocations.sizes(), (std::vector<std::size_t>{12, 24, 48, 96}));
  for (unsigned int n = 0; n < list.Size(); ++n) EXPECT_EQ(list.GetArray()[n].x, n);

  allocations.Reset(0);
  IDX_Base_ListOf_Point three(3);
  for (int n = 0; n < 5; ++n) three.Append({});
  EXPECT_EQ(allocations.sizes(), (std::vector<std::size_t>{48, 96}));  // grows at the fifth
}

TEST(PointList, EachGrowthTriesElevenTimes) {
  idxbase_test::AllocationFaults allocations(0);
  IDX_Base_ListOf_Point list(1);
  list.Append({1, 0, 0});
  list.Append({2, 0, 0});
  allocations.Reset(10);  // the eleventh attempt succeeds
  ASSERT_EQ(list.Append({3, 0, 0}), IDX_True);
  EXPECT_EQ(allocations.sizes(), std::vector<std::size_t>(11, 48));
  EXPECT_EQ(list.GetArray()[1].x, 2);

  list.Append({4, 0, 0});
  allocations.Reset(11);  // all eleven fail: the list loses everything
  EXPECT_EQ(list.Append({5, 0, 0}), IDX_False);
  EXPECT_EQ(allocations.sizes().size(), 11u);
  EXPECT_EQ(list.GetArray(), nullptr);
  EXPECT_EQ(list.Size(), 0u);
  EXPECT_EQ(list.Append({6, 0, 0}), IDX_False);  // and refuses the rest without trying
  EXPECT_EQ(allocations.sizes().size(), 11u);
}

// Creation is not retried, and a failed list refuses appends without trying.
TEST(TriangleList, FailedCreationRefusesAppends) {
  idxbase_test::AllocationFaults allocations(1);
  IDX_Base_ListOf_Triangle list(10);
  EXPECT_EQ(list.Append({}), IDX_False);
  EXPECT_EQ(list.GetArray(), nullptr);
  EXPECT_EQ(allocations.sizes().size(), 1u);
  allocations.Reset(0);
  IDX_Base_ListOf_Point uncountable(std::numeric_limits<unsigned int>::max());
  EXPECT_EQ(uncountable.Append({1, 2, 3}), IDX_False);
  EXPECT_EQ(uncountable.Size(), 0u);
  EXPECT_EQ(uncountable.GetArray(), nullptr);
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
