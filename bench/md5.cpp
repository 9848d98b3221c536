// Digest throughput of our MD5 against OpenSSL's on 64 MiB in memory, fed
// in 1 MiB pieces as ComputeCheckSum does, at two alignments.
#include <benchmark/benchmark.h>
#include <openssl/md5.h>

#include <cstddef>
#include <random>
#include <vector>

#include "idxbase/checksum.h"

namespace {

constexpr std::size_t kInputSize = std::size_t{64} << 20;
constexpr std::size_t kPieceSize = std::size_t{1} << 20;

const std::vector<unsigned char>& Input() {
  static const std::vector<unsigned char> input = [] {
    std::mt19937 random(1321);
    std::vector<unsigned char> bytes(kInputSize + 1);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
  }();
  return input;
}

// Digests the input piece by piece with one implementation's three calls.
template <class Context, class Init, class Update, class Final>
void Digest(benchmark::State& state, Init init, Update update, Final final) {
  const unsigned char* data = Input().data() + state.range(0);
  unsigned char digest[16];
  for (auto _ : state) {
    Context context;
    init(&context);
    for (std::size_t done = 0; done < kInputSize; done += kPieceSize) {
      update(&context, data + done, kPieceSize);
    }
    final(digest, &context);
    benchmark::DoNotOptimize(digest);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kInputSize));
}

void BM_Ours(benchmark::State& state) { Digest<IDX_MD5_CTX>(state, MD5Init, MD5Update, MD5Final); }

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void BM_OpenSsl(benchmark::State& state) {
  Digest<MD5_CTX>(state, MD5_Init, MD5_Update, MD5_Final);
}
#pragma GCC diagnostic pop

// Argument: the offset of the input from an aligned address.
BENCHMARK(BM_Ours)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenSsl)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
