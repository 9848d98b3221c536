// BBDVerySimpleHashTable against std::unordered_map<int, Value> with the
// same keys and a 16-byte value: insertion, successful and failed lookups
// and removal, at the table's designed load (requested size = number of
// keys; the map reserves as many buckets).
//
// The lookups also run on a table asked for twice as many keys
// (VerySimpleTable<2>): one key per chain, the load of the map, which
// separates the cost of the designed load from that of the code.
//
// Keys are distinct pseudo-random ints, stored in one random order and
// looked up or removed in another, so neither container profits from keys
// or nodes that follow one another. Every figure is per operation
// (items_per_second).
#include "idxbase/hash_table.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

struct Value {
  std::int64_t first;
  std::int64_t second;
};
static_assert(sizeof(Value) == 16, "the value compared is 16 bytes");

// A typed table as the engine derives them, asked for kSizeFactor times the
// number of keys it will hold.
template <int kSizeFactor>
class VerySimpleTable : public BBDVerySimpleHashTable {
 public:
  explicit VerySimpleTable(int keys) : BBDVerySimpleHashTable(kSizeFactor * keys, sizeof(Value)) {}
  void Put(int key, const Value& value) { PutElem(key, &value); }
  const Value* Find(int key) { return static_cast<const Value*>(GetElem(key)); }
  void Remove(int key) { RemoveElem(key); }
};

class UnorderedMap {
 public:
  explicit UnorderedMap(int keys) { map_.reserve(static_cast<std::size_t>(keys)); }
  void Put(int key, const Value& value) { map_.insert_or_assign(key, value); }
  const Value* Find(int key) {
    const auto found = map_.find(key);
    return found == map_.end() ? nullptr : &found->second;
  }
  void Remove(int key) { map_.erase(key); }

 private:
  std::unordered_map<int, Value> map_;
};

struct Keys {
  std::vector<int> stored;  // in insertion order
  std::vector<int> probes;  // the stored keys in another order
  std::vector<int> absent;  // keys never stored
};

// `count` stored and `count` absent keys, made once per count.
const Keys& KeysFor(int count) {
  static std::map<int, Keys> made;
  Keys& keys = made[count];
  if (!keys.stored.empty()) return keys;
  std::mt19937 random(static_cast<unsigned int>(count));
  std::unordered_set<int> seen;
  while (seen.size() < 2 * static_cast<std::size_t>(count)) {
    const int key = static_cast<int>(random());
    if (!seen.insert(key).second) continue;
    (keys.stored.size() < static_cast<std::size_t>(count) ? keys.stored : keys.absent)
        .push_back(key);
  }
  keys.probes = keys.stored;
  std::shuffle(keys.probes.begin(), keys.probes.end(), random);
  return keys;
}

template <typename Table>
std::unique_ptr<Table> Filled(const Keys& keys) {
  auto table = std::make_unique<Table>(static_cast<int>(keys.stored.size()));
  for (int key : keys.stored) table->Put(key, Value{key, -key});
  return table;
}

template <typename Table>
void BM_Insert(benchmark::State& state) {
  const Keys& keys = KeysFor(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    auto table = std::make_unique<Table>(static_cast<int>(keys.stored.size()));
    state.ResumeTiming();
    for (int key : keys.stored) table->Put(key, Value{key, -key});
    state.PauseTiming();
    table.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <typename Table, std::vector<int> Keys::*kProbes>
void BM_Find(benchmark::State& state) {
  const Keys& keys = KeysFor(static_cast<int>(state.range(0)));
  const std::unique_ptr<Table> table = Filled<Table>(keys);
  const std::vector<int>& probes = keys.*kProbes;
  for (auto _ : state) {
    std::int64_t sum = 0;
    for (int key : probes) {
      const Value* value = table->Find(key);
      sum += value == nullptr ? 1 : value->first;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <typename Table>
void BM_FindHit(benchmark::State& state) {
  BM_Find<Table, &Keys::probes>(state);
}

template <typename Table>
void BM_FindMiss(benchmark::State& state) {
  BM_Find<Table, &Keys::absent>(state);
}

template <typename Table>
void BM_Remove(benchmark::State& state) {
  const Keys& keys = KeysFor(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<Table> table = Filled<Table>(keys);
    state.ResumeTiming();
    for (int key : keys.probes) table->Remove(key);
    state.PauseTiming();
    table.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

#define IDXBASE_TABLE_BENCHMARK(name)                                    \
  BENCHMARK_TEMPLATE(name, VerySimpleTable<1>)->Arg(1000)->Arg(1000000); \
  BENCHMARK_TEMPLATE(name, UnorderedMap)->Arg(1000)->Arg(1000000)

IDXBASE_TABLE_BENCHMARK(BM_Insert);
IDXBASE_TABLE_BENCHMARK(BM_FindHit);
BENCHMARK_TEMPLATE(BM_FindHit, VerySimpleTable<2>)->Arg(1000)->Arg(1000000);
IDXBASE_TABLE_BENCHMARK(BM_FindMiss);
BENCHMARK_TEMPLATE(BM_FindMiss, VerySimpleTable<2>)->Arg(1000)->Arg(1000000);
IDXBASE_TABLE_BENCHMARK(BM_Remove);

}  // namespace

BENCHMARK_MAIN();
