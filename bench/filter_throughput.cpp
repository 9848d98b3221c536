// Per-record filter evaluation against a hand-written loop over the same
// records and SQLite (see part_workload.h).
#include "part_workload.h"

namespace {

void BM_Idxbase(benchmark::State& state) {
  Run(state, [](Workload& w) { return w.CountIdxbase(); });
}
void BM_HandWritten(benchmark::State& state) {
  Run(state, [](Workload& w) { return w.CountByHand(); });
}
void BM_SQLite(benchmark::State& state) {
  Run(state, [](Workload& w) { return w.CountSQLite(); });
}

BENCHMARK(BM_Idxbase)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandWritten)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SQLite)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
