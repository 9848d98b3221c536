#include "idxbase/hash_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/hash_table_internal.h"
#include "byte_run_test_support.h"
#include "idxbase/hashing.h"
#include "support/allocation_faults.h"

namespace {

using idxbase::detail::HashTableBucketCount;
using idxbase_test::OutputOf;
using idxbase_test::TraceOf;
using Elements = std::vector<std::pair<int, std::int64_t>>;

// A 16-byte value whose halves must stay consistent.
struct Record {
  std::int64_t value;
  std::int64_t check;
};

// A typed table as the engine derives them: int keys, Record values.
class RecordTable : public BBDVerySimpleHashTable {
 public:
  explicit RecordTable(int requestedSize, int elementSize = sizeof(Record))
      : BBDVerySimpleHashTable(requestedSize, elementSize) {}

  void Put(int key, std::int64_t value) {
    const Record record{value, ~value};
    PutElem(key, &record);
  }
  void PutKeyOnly(int key) { PutElem(key, nullptr); }
  void* Address(int key) { return GetElem(key); }
  std::optional<std::int64_t> Get(int key) {
    const auto* record = static_cast<const Record*>(GetElem(key));
    if (record == nullptr) return std::nullopt;
    EXPECT_EQ(record->check, ~record->value) << "torn value of key " << key;
    return record->value;
  }
  using BBDVerySimpleHashTable::Empty;
  using BBDVerySimpleHashTable::GetIterator;

  // Every element in iteration order, checking the iterator's statuses.
  Elements Walk() {
    Elements seen;
    for (BBDVerySimpleHashTableIterator it = GetIterator(); !it.IsFinished();) {
      int key = 0;
      const void* value = nullptr;
      EXPECT_EQ(it.GetElem(key, value), KOR_S_OK);
      seen.emplace_back(key, static_cast<const Record*>(value)->value);
      const KORStatus status = it.Next();
      EXPECT_EQ(status, it.IsFinished() ? KOR_S_FALSE : KOR_S_OK);
    }
    return seen;
  }
};

std::vector<int> Keys(const Elements& elements) {
  std::vector<int> keys;
  for (const auto& element : elements) keys.push_back(element.first);
  return keys;
}

TEST(HashTableBucketCount, AboutTwoKeysPerBucket) {
  // clang-format off
  const std::pair<int, std::int32_t> kCases[] = {
      {INT_MIN, 8}, {-7, 8}, {-1, 8}, {0, 8}, {1, 8}, {2, 1}, {3, 1}, {4, 2}, {5, 2}, {6, 4},
      {9, 4}, {10, 8}, {17, 8}, {18, 16}, {100, 64}, {1000, 512}, {1 << 20, 1 << 19},
      {INT_MAX, 1 << 30}};
  // clang-format on
  for (const auto& [requested, buckets] : kCases) {
    EXPECT_EQ(HashTableBucketCount(requested), buckets) << requested;
  }
}

// Buckets ascend by IDX_IntegerHash(key) masked with the bucket count;
// within a bucket the newest key comes first.
TEST(HashTable, IteratesBucketsInOrderNewestFirst) {
  std::mt19937 random(7);
  for (int requested : {0, 3, 18, 100, 1000}) {
    RecordTable table(requested);
    std::vector<int> inserted;
    for (int i = 0; i < 300; ++i) {
      inserted.push_back(static_cast<int>(random()));
      table.Put(inserted.back(), i);
    }
    const std::uint32_t mask = static_cast<std::uint32_t>(HashTableBucketCount(requested)) - 1;
    std::vector<int> expected(inserted.rbegin(), inserted.rend());
    std::stable_sort(expected.begin(), expected.end(), [mask](int a, int b) {
      return (IDX_IntegerHash(static_cast<unsigned int>(a)) & mask) <
             (IDX_IntegerHash(static_cast<unsigned int>(b)) & mask);
    });
    EXPECT_EQ(Keys(table.Walk()), expected) << "requested size " << requested;
  }
}

// An overwrite keeps the one node in place; Empty leaves a table ready for
// reuse.
TEST(HashTable, OverwriteEmptyAndReuse) {
  RecordTable table(0);
  EXPECT_TRUE(table.GetIterator().IsFinished());
  std::vector<int> keys = {INT_MIN, INT_MAX};
  for (int key = -10; key <= 10; ++key) keys.push_back(key);  // into every bucket
  for (int key : keys) table.Put(key, key);
  void* address = table.Address(1);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(address) % alignof(void*), 0u);
  table.Put(1, 2);
  EXPECT_EQ(table.Address(1), address);
  for (int key : keys) EXPECT_EQ(table.Get(key), key == 1 ? 2 : key);
  EXPECT_EQ(table.Walk().size(), keys.size());
  table.Empty();
  for (int key : keys) EXPECT_EQ(table.Get(key), std::nullopt);
  EXPECT_TRUE(table.GetIterator().IsFinished());
  table.Put(3, 33);
  EXPECT_EQ(table.Walk(), (Elements{{3, 33}}));
}

TEST(HashTable, ValueSizeZeroOrNegativeStoresKeysOnly) {
  for (int elementSize : {0, -16}) {
    RecordTable table(10, elementSize);
    for (int key : {1, 1, 2}) table.PutKeyOnly(key);
    EXPECT_NE(table.Address(1), nullptr);
    EXPECT_NE(table.Address(2), nullptr);
    EXPECT_EQ(table.Address(3), nullptr);
  }
}

// Random puts, removals and lookups on a small key range, so that chains
// are long, checked against std::unordered_map step by step and by a full
// walk at the end.
TEST(HashTable, MatchesUnorderedMap) {
  for (int requested : {2, 64, 4096}) {
    std::mt19937 random(static_cast<unsigned int>(requested));
    std::uniform_int_distribution<int> keys(-300, 300);
    RecordTable table(requested);
    std::unordered_map<int, std::int64_t> model;
    for (int step = 0; step < 20000; ++step) {
      const int key = keys(random);
      switch (random() % 3) {
        case 0:
          table.Put(key, step);
          model[key] = step;
          break;
        case 1:
          table.RemoveElem(key);
          model.erase(key);
          break;
        default: {
          const auto found = model.find(key);
          const auto expected =
              found == model.end() ? std::nullopt : std::optional<std::int64_t>(found->second);
          ASSERT_EQ(table.Get(key), expected) << "step " << step << ", key " << key;
        }
      }
    }
    const Elements walk = table.Walk();
    EXPECT_EQ(walk.size(), model.size());
    using Sorted = std::map<int, std::int64_t>;
    EXPECT_EQ(Sorted(walk.begin(), walk.end()), Sorted(model.begin(), model.end()));
  }
}

// Each table owns its nodes: changing either side leaves the other as it
// was, and destroying them in any order frees every node once.
TEST(HashTable, CopiesAreDeep) {
  auto original = std::make_optional<RecordTable>(2);
  for (int key = 1; key <= 5; ++key) original->Put(key, key * 10);
  const Elements before = original->Walk();

  RecordTable copy(*original);
  EXPECT_EQ(copy.Walk(), before);
  original->Put(1, -1);
  original->RemoveElem(2);
  original->Put(6, 60);
  EXPECT_EQ(copy.Walk(), before);

  RecordTable assigned(1000);
  assigned.Put(100, 1000);
  assigned = copy;
  RecordTable& alias = assigned;
  assigned = alias;
  EXPECT_EQ(assigned.Walk(), before);
  assigned.Put(3, -3);
  EXPECT_EQ(copy.Get(3), 30);

  copy = *original;
  original.reset();
  EXPECT_EQ(copy.Walk().size(), 5u);
  EXPECT_EQ(copy.Get(1), -1);
}

TEST(HashTable, ReportsAllocationFailure) {
  RecordTable table(10);
  table.Put(1, 10);
  RecordTable target(2);
  target.Put(9, 90);
  std::optional<RecordTable> unallocated;
  {
    idxbase_test::AllocationFaults failing;
    EXPECT_EQ(TraceOf([&] { unallocated.emplace(10); }),
              "BBDVerySimpleHashTable: no memory for 8 buckets; the table stays empty\n");
    EXPECT_EQ(TraceOf([&] { unallocated->Put(1, 1); }),
              "BBDVerySimpleHashTable: no buckets; key 1 not stored\n");
    EXPECT_EQ(TraceOf([&] { table.Put(2, 20); }),
              "BBDVerySimpleHashTable: no memory for a node; key 2 not stored\n");
    EXPECT_EQ(OutputOf([&] { table.Put(1, 11); }), "");
    EXPECT_EQ(TraceOf([&] { RecordTable failedCopy(table); }),
              "BBDVerySimpleHashTable: no memory to copy the table; the copy is empty\n");
    EXPECT_EQ(TraceOf([&] { target = table; }),
              "BBDVerySimpleHashTable: no memory to copy the table; the target is unchanged\n");
    EXPECT_EQ(target.Walk(), (Elements{{9, 90}}));
  }
  EXPECT_EQ(table.Walk(), (Elements{{1, 11}}));
  EXPECT_EQ(unallocated->Get(1), std::nullopt);
  unallocated->RemoveElem(1);
  unallocated->Empty();
  table = *unallocated;  // copies a table without buckets
  EXPECT_TRUE(table.GetIterator().IsFinished());
}

}  // namespace
