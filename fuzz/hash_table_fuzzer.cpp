// The hash table against std::unordered_map on a script of operations
// over two tables: put, get, remove, empty, copy, assign and a full walk,
// whose order is checked too (buckets ascending, the newest key of a
// chain first).
//
// Input: the requested size and value size of the first table, then one
// operation after another until the input runs out.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "fuzz_check.h"
#include "idxbase/hash_table.h"
#include "idxbase/hashing.h"

namespace {

using idxbase_fuzz::Check;
using Bytes = std::vector<unsigned char>;

class Table : public BBDVerySimpleHashTable {
 public:
  Table(int requestedSize, int valueSize) : BBDVerySimpleHashTable(requestedSize, valueSize) {}

  void Put(int key, const Bytes& value) { PutElem(key, value.data()); }
  const unsigned char* Get(int key) { return static_cast<const unsigned char*>(GetElem(key)); }
  using BBDVerySimpleHashTable::RemoveElem;
  void Clear() { Empty(); }

  // Every (key, value) in iteration order.
  std::vector<std::pair<int, Bytes>> Walk(std::size_t valueSize) {
    std::vector<std::pair<int, Bytes>> elements;
    BBDVerySimpleHashTableIterator iterator = GetIterator();
    while (!iterator.IsFinished()) {
      int key = 0;
      const void* value = nullptr;
      Check(iterator.GetElem(key, value) == KOR_S_OK, "iterator GetElem");
      const auto* bytes = static_cast<const unsigned char*>(value);
      elements.emplace_back(key, Bytes(bytes, bytes + valueSize));
      const KORStatus next = iterator.Next();
      Check((next == KOR_S_OK) != iterator.IsFinished(), "iterator Next status");
      Check(elements.size() <= (1u << 20), "the walk does not end");
    }
    return elements;
  }
};

// The bucket count chosen for a requested size: negative sizes count as 0,
// and sizes below 2 as 10; then the smallest power of two not below half
// the size.
std::uint32_t ModelBucketCount(int requestedSize) {
  int n = std::max(requestedSize, 0);
  if (n / 2 == 0) n = 10;
  std::uint32_t count = 1;
  while (count < static_cast<std::uint32_t>(n / 2)) count *= 2;
  return count;
}

// A table and the map it must agree with; each key remembers when its
// node was created, for the walk's order.
struct Pair {
  std::unique_ptr<Table> table;
  std::uint32_t buckets = 0;
  std::size_t valueSize = 0;
  struct Entry {
    Bytes value;
    std::uint64_t created;
  };
  std::unordered_map<int, Entry> model;

  void CheckWalk() {
    std::vector<std::pair<int, const Entry*>> expected;
    for (const auto& element : model) expected.emplace_back(element.first, &element.second);
    const auto bucket = [this](int key) {
      return IDX_IntegerHash(static_cast<unsigned int>(key)) & (buckets - 1);
    };
    std::sort(expected.begin(), expected.end(), [&](const auto& x, const auto& y) {
      if (bucket(x.first) != bucket(y.first)) return bucket(x.first) < bucket(y.first);
      return x.second->created > y.second->created;
    });
    const std::vector<std::pair<int, Bytes>> walked = table->Walk(valueSize);
    Check(walked.size() == expected.size(), "the walk's length differs from the map's size");
    for (std::size_t i = 0; i < walked.size(); ++i) {
      Check(walked[i].first == expected[i].first, "the walk's order");
      Check(walked[i].second == expected[i].second->value, "a value met by the walk");
    }
  }
};

int ConsumeKey(FuzzedDataProvider& input) {
  // Mostly a few keys, so that they collide and come back.
  return input.ConsumeBool() ? input.ConsumeIntegralInRange<int>(-8, 40)
                             : input.ConsumeIntegral<int>();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  Pair pairs[2];
  {
    const int requested = input.ConsumeIntegralInRange<int>(-100, 1000);
    const int valueSize = input.ConsumeIntegralInRange<int>(-2, 24);
    for (Pair& pair : pairs) {
      pair.table = std::make_unique<Table>(requested, valueSize);
      pair.buckets = ModelBucketCount(requested);
      pair.valueSize = static_cast<std::size_t>(std::max(valueSize, 0));
    }
  }
  std::uint64_t clock = 0;
  for (int step = 0; step < 1000 && input.remaining_bytes() > 0; ++step) {
    const int which = input.ConsumeIntegralInRange<int>(0, 1);
    Pair& pair = pairs[which];
    Pair& other = pairs[1 - which];
    switch (input.ConsumeIntegralInRange<int>(0, 7)) {
      case 0:
      case 1: {  // put
        const int key = ConsumeKey(input);
        Bytes value = input.ConsumeBytes<unsigned char>(pair.valueSize);
        value.resize(pair.valueSize);
        pair.table->Put(key, value);
        auto found = pair.model.find(key);
        if (found == pair.model.end()) {
          pair.model.emplace(key, Pair::Entry{value, ++clock});
        } else {
          found->second.value = value;
        }
        break;
      }
      case 2: {  // get
        const int key = ConsumeKey(input);
        const unsigned char* value = pair.table->Get(key);
        const auto found = pair.model.find(key);
        Check((value != nullptr) == (found != pair.model.end()), "GetElem finds what the map has");
        if (value != nullptr) {
          Check(std::equal(found->second.value.begin(), found->second.value.end(), value),
                "GetElem's value");
        }
        break;
      }
      case 3: {  // remove
        const int key = ConsumeKey(input);
        pair.table->RemoveElem(key);
        pair.model.erase(key);
        break;
      }
      case 4:  // empty
        pair.table->Clear();
        pair.model.clear();
        break;
      case 5:  // a copy replaces the other table; it must keep the order
        other.table = std::make_unique<Table>(*pair.table);
        other.buckets = pair.buckets;
        other.valueSize = pair.valueSize;
        other.model = pair.model;
        other.CheckWalk();
        break;
      case 6:  // assignment takes the bucket count and value size too
        *other.table = *pair.table;
        other.buckets = pair.buckets;
        other.valueSize = pair.valueSize;
        other.model = pair.model;
        other.CheckWalk();
        break;
      default:
        pair.CheckWalk();
        break;
    }
  }
  pairs[0].CheckWalk();
  pairs[1].CheckWalk();
  return 0;
}
