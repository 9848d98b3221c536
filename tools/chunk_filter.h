// A compiled filter evaluated over the chunks of a CSV reader.
#ifndef IDXBASE_TOOLS_CHUNK_FILTER_H_
#define IDXBASE_TOOLS_CHUNK_FILTER_H_

#include <cstdint>
#include <vector>

#include "csv_table.h"
#include "idxbase/filter_batch.h"
#include "idxbase/filter_expressions.h"

namespace idxbase_tool {

// How many rows answered each way.
struct Answers {
  long long holds = 0;
  long long doesNotHold = 0;
  long long undecidable = 0;
};

// Answers a filter for every row of a chunk, column at a time with
// BBDFilterBatch; a tree that the batch does not take (one with a missing
// part, say) is evaluated row by row with `eval` instead, which answers
// the same. Column i is read with the pair (0, i). Holds the filter, not
// owned. One thread at a time.
class ChunkFilter {
 public:
  ChunkFilter(BBDExpression& filter, bool caseSensitive);

  // Adds the chunk's answers to `answers`.
  void Count(const CsvChunk& chunk, Answers& answers);
  // The rows of the chunk where the filter holds, ascending.
  const std::vector<std::int64_t>& Select(const CsvChunk& chunk);

 private:
  void Bind(const CsvChunk& chunk);
  void EvaluateByRow(const CsvChunk& chunk);

  BBDExpression& filter_;
  BBDFilterBatch batch_;
  bool caseSensitive_;
  bool batchRefused_ = false;
  std::vector<KORStatus> results_;
  std::vector<std::int64_t> rows_;
};

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_CHUNK_FILTER_H_
