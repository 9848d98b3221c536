// IDX_StringHash against a plain byte-at-a-time transcription of its fold,
// the cached hash key of a byte array, and the cost of copying a
// copy-on-write handle against copying its bytes.
#include "idxbase/hashing.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "idxbase/byte_runs.h"

namespace {

// Pseudo-random bytes (a periodic pattern could fold to 0, which the hash
// key does not cache), with room for every alignment.
std::vector<char> Input(std::size_t bytes) {
  std::mt19937 random(42);
  std::vector<char> input(bytes + 8);
  for (char& byte : input) byte = static_cast<char>(random());
  return input;
}

// The fold as defined: byte i shifted left by 8 * (i mod 4), one at a time.
unsigned int ByteWiseStringHash(const char* text, int length) {
  std::uint32_t fold = 0;
  for (int i = 0; i < length; ++i) {
    fold ^= std::uint32_t{static_cast<unsigned char>(text[i])} << (8 * (i % 4));
  }
  return IDX_IntegerHash(fold);
}

template <unsigned int (*Hash)(const char*, int)>
void BM_Hash(benchmark::State& state) {
  const auto bytes = static_cast<std::size_t>(state.range(0));
  const std::vector<char> input = Input(bytes);
  const char* text = input.data() + state.range(1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(text);
    benchmark::DoNotOptimize(Hash(text, static_cast<int>(bytes)));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

// Arguments: bytes, offset from an 8-aligned address.
#define IDXBASE_HASH_ARGS ArgsProduct({{16, 256, 4096, 1 << 20}, {0, 1, 2, 3}})
BENCHMARK_TEMPLATE(BM_Hash, IDX_StringHash)->IDXBASE_HASH_ARGS;
BENCHMARK_TEMPLATE(BM_Hash, ByteWiseStringHash)->IDXBASE_HASH_ARGS;

IDX_Base_ByteArray Array(std::size_t bytes) {
  const std::vector<char> input = Input(bytes);
  IDX_Base_ByteArray array;
  array.SetData(reinterpret_cast<const unsigned char*>(input.data()),
                static_cast<unsigned int>(bytes));
  return array;
}

// The first call folds the bytes. A batch of arrays with their own records
// is hashed in turn and refilled, outside the timing, when used up.
void BM_ByteArrayHashKeyFirstCall(benchmark::State& state) {
  const IDX_Base_ByteArray source = Array(static_cast<std::size_t>(state.range(0)));
  std::vector<IDX_Base_ByteArray> arrays(512);
  std::size_t next = arrays.size();
  for (auto _ : state) {
    if (next == arrays.size()) {
      state.PauseTiming();
      for (IDX_Base_ByteArray& array : arrays) array.SetData(source.GetData(), source.GetSize());
      next = 0;
      state.ResumeTiming();
    }
    benchmark::DoNotOptimize(arrays[next++].GetHashKey());
  }
}

void BM_ByteArrayHashKeyCached(benchmark::State& state) {
  const IDX_Base_ByteArray array = Array(static_cast<std::size_t>(state.range(0)));
  benchmark::DoNotOptimize(array.GetHashKey());
  for (auto _ : state) benchmark::DoNotOptimize(array.GetHashKey());
}

BENCHMARK(BM_ByteArrayHashKeyFirstCall)->Arg(4096);
BENCHMARK(BM_ByteArrayHashKeyCached)->Arg(4096);

void BM_CopyHandle(benchmark::State& state) {
  const IDX_Base_ByteArray array = Array(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    IDX_Base_ByteArray copy(array);
    benchmark::DoNotOptimize(copy.GetData());
  }
}

void BM_CopyVector(benchmark::State& state) {
  const std::vector<char> bytes = Input(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::vector<char> copy(bytes);
    benchmark::DoNotOptimize(copy.data());
  }
}

BENCHMARK(BM_CopyHandle)->Arg(4096);
BENCHMARK(BM_CopyVector)->Arg(4096);

}  // namespace

BENCHMARK_MAIN();
