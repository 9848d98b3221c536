// Cost of building a KORUnicodeString (which validates its UTF-8) against
// copying the same bytes into a std::string, side by side.
#include <benchmark/benchmark.h>

#include <string>

#include "idxbase/kor_string.h"

namespace {

std::string Text(std::size_t bytes, bool ascii) {
  const std::string unit = ascii ? "abcd" : "a\xC3\xA9\xE2\x82\xAC";  // a, e-acute, euro sign
  std::string text;
  while (text.size() + unit.size() <= bytes) text += unit;
  return text;
}

void BM_StdStringCopy(benchmark::State& state) {
  const std::string text = Text(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
  for (auto _ : state) {
    std::string copy(text.c_str());
    benchmark::DoNotOptimize(copy.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_KORUnicodeStringFromUtf8(benchmark::State& state) {
  const std::string text = Text(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
  for (auto _ : state) {
    KORUnicodeString copy(text.c_str());
    benchmark::DoNotOptimize(copy.ConvertToChar());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_KORUnicodeStringLength(benchmark::State& state) {
  const KORUnicodeString text(
      Text(static_cast<std::size_t>(state.range(0)), state.range(1) != 0).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(text.GetLengthInChar());
}

// Arguments: bytes, ascii (1) or mixed two- and three-byte characters (0).
#define IDXBASE_STRING_ARGS ArgsProduct({{16, 256, 4096}, {1, 0}})
BENCHMARK(BM_StdStringCopy)->IDXBASE_STRING_ARGS;
BENCHMARK(BM_KORUnicodeStringFromUtf8)->IDXBASE_STRING_ARGS;
BENCHMARK(BM_KORUnicodeStringLength)->IDXBASE_STRING_ARGS;

}  // namespace

BENCHMARK_MAIN();
