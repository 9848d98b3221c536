// Column-at-a-time filter evaluation (BBDFilterBatch::Select) against a
// hand-written loop over the same columns, per-record evaluation and SQLite
// (see part_workload.h).
#include "part_workload.h"

namespace {

void BM_BatchSelect(benchmark::State& state) {
  Run(state, [](Workload& w) { return w.CountBatch(); });
}
void BM_HandWrittenColumns(benchmark::State& state) {
  Run(state, [](Workload& w) { return w.CountByHandOverColumns(); });
}
void BM_PerRecordEval(benchmark::State& state) {
  Run(state, [](Workload& w) { return w.CountIdxbase(); });
}
void BM_SQLite(benchmark::State& state) {
  Run(state, [](Workload& w) { return w.CountSQLite(); });
}

BENCHMARK(BM_BatchSelect)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandWrittenColumns)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PerRecordEval)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SQLite)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
