// The column evaluator's program: a compiled filter tree turned, at each
// call, into nodes that answer a chunk of rows at a time.
#ifndef IDXBASE_FILTER_BATCH_PROGRAM_H_
#define IDXBASE_FILTER_BATCH_PROGRAM_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "filter/batch_columns.h"
#include "idxbase/filter_expressions.h"

namespace idxbase::detail {

struct BatchNode;
struct BatchOperand;

class BatchProgram {
 public:
  explicit BatchProgram(BBDExpression* root);
  ~BatchProgram();

  void Bind(const AttributeTypePair& pair, const BatchColumn& column);

  // Answers rows [0, count) chunk by chunk: `sink(first, n, codes)` gets
  // the answers of rows first .. first + n - 1 as codes 0 (holds), 1 (does
  // not hold) and 2 (undecidable). False, before any sink call, when the
  // tree is not accepted or a column it reads is missing or too short.
  template <class Sink>
  bool Run(std::int64_t count, bool caseSensitive, Sink sink) {
    if (!Prepare(count, caseSensitive)) return false;
    for (std::int64_t first = 0; first < count; first += kBatchChunk) {
      const int n = count - first < kBatchChunk ? static_cast<int>(count - first) : kBatchChunk;
      sink(first, n, AnswerChunk(first, n));
    }
    return true;
  }

 private:
  struct Binding;
  struct UsedColumn;

  // Reads the tree as it is now into nodes_; false when it is not accepted.
  bool Prepare(std::int64_t count, bool caseSensitive);
  int AddExpression(BBDExpression* expression);
  int AddComparison(BBDBasicExpression& expression);
  bool AddOperand(BBDOperand* operand, IDX_Filter_ValueType readType, BatchOperand& out);
  bool AddMembers(BBDOperand* set, IDX_Filter_ValueType readType, BatchNode& node);
  int UseColumn(const AttributeTypePair& pair, IDX_Filter_ValueType type);
  const std::uint8_t* AnswerChunk(std::int64_t first, int n);
  void Answer(int node, const std::uint8_t* care, int n);

  BBDExpression* root_;
  std::vector<Binding> bindings_;
  std::int64_t count_ = 0;
  bool caseSensitive_ = true;
  // Rebuilt by Prepare; their storage is kept between calls.
  std::vector<BatchNode> nodes_;
  std::vector<UsedColumn> used_;
  std::vector<ChunkView> views_;  // the used columns' current chunk
};

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_BATCH_PROGRAM_H_
