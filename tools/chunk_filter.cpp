#include "chunk_filter.h"

#include <algorithm>
#include <string>

#include "idxbase/filter_attributes.h"

namespace idxbase_tool {
namespace {

class OneLevelOccurrence : public BBDOccurrence {
 public:
  unsigned int GetLevelKey(unsigned int) const override { return 0; }
  unsigned int GetLevelCount() const override { return 1; }
};

// Reads row `row` of a chunk; a value that the row lacks, or a pair that
// names no column of the right type, fails the read.
class ChunkReader : public BBDIAttributeRead {
 public:
  explicit ChunkReader(const CsvChunk& chunk) : chunk_(chunk) {}
  std::int64_t row = 0;

  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    const CsvColumn* column = Cell(pair, IDX_Filter_Type_Int);
    if (column != nullptr) value = column->ints[Row()];
    return column != nullptr ? 1 : 0;
  }
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                float& value) override {
    const CsvColumn* column = Cell(pair, IDX_Filter_Type_Float);
    if (column != nullptr) value = column->floats[Row()];
    return column != nullptr ? 1 : 0;
  }
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, const char*& value,
                 int& length) override {
    const CsvColumn* column = Cell(pair, IDX_Filter_Type_String);
    if (column == nullptr) return 0;
    value = column->bytes.data() + column->offsets[Row()];
    length = column->offsets[Row() + 1] - column->offsets[Row()];
    return 1;
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
               KORTime& value) override {
    const CsvColumn* column = Cell(pair, IDX_Filter_Type_Time);
    if (column != nullptr) value = KORTime::FromEpochSeconds(column->times[Row()]);
    return column != nullptr ? 1 : 0;
  }
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    const CsvColumn* column = Cell(pair, IDX_Filter_Type_Boolean);
    if (column != nullptr) value = (column->bits[Row() >> 3] >> (row & 7)) & 1;
    return column != nullptr ? 1 : 0;
  }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

 private:
  std::size_t Row() const { return static_cast<std::size_t>(row); }
  const CsvColumn* Cell(const AttributeTypePair* pair, IDX_Filter_ValueType type) const {
    if (pair == nullptr || pair->GetType() != 0) return nullptr;
    const int index = pair->GetAttribute();
    if (index < 0 || static_cast<std::size_t>(index) >= chunk_.columns.size()) return nullptr;
    const CsvColumn& column = chunk_.columns[static_cast<std::size_t>(index)];
    return column.type == type && column.Valid(row) ? &column : nullptr;
  }

  const CsvChunk& chunk_;
};

}  // namespace

ChunkFilter::ChunkFilter(BBDExpression& filter, bool caseSensitive)
    : filter_(filter), batch_(&filter), caseSensitive_(caseSensitive) {}

void ChunkFilter::Bind(const CsvChunk& chunk) {
  for (std::size_t i = 0; i < chunk.columns.size(); ++i) {
    const CsvColumn& column = chunk.columns[i];
    const AttributeTypePair pair(0, static_cast<int>(i));
    const std::uint8_t* validity = column.validity.data();
    switch (column.type) {
      case IDX_Filter_Type_String:
        batch_.BindString(pair, column.offsets.data(), column.bytes.data(), validity);
        break;
      case IDX_Filter_Type_Float:
        batch_.BindFloat(pair, column.floats.data(), validity);
        break;
      case IDX_Filter_Type_Time:
        batch_.BindTime(pair, column.times.data(), validity);
        break;
      case IDX_Filter_Type_Boolean:
        batch_.BindBool(pair, column.bits.data(), validity);
        break;
      default:
        batch_.BindInt(pair, column.ints.data(), validity);
        break;
    }
  }
}

void ChunkFilter::EvaluateByRow(const CsvChunk& chunk) {
  ChunkReader reader(chunk);
  const OneLevelOccurrence occurrence;
  for (std::int64_t row = 0; row < chunk.rows(); ++row) {
    reader.row = row;
    results_[static_cast<std::size_t>(row)] = filter_.eval(occurrence, 0, reader, caseSensitive_);
  }
}

void ChunkFilter::Count(const CsvChunk& chunk, Answers& answers) {
  const std::int64_t rows = chunk.rows();
  if (rows == 0) return;
  results_.resize(static_cast<std::size_t>(rows));
  Bind(chunk);
  if (batchRefused_ || batch_.Evaluate(rows, results_.data(), caseSensitive_) != KOR_S_OK) {
    batchRefused_ = true;
    EvaluateByRow(chunk);
  }
  // Two counts, each a loop without branches (one loop counting both
  // branches on every result).
  const long long holds = std::count(results_.begin(), results_.end(), IDX_FILTER_HOLDS);
  const long long doesNotHold = std::count(results_.begin(), results_.end(), IDX_FILTER_DOES_NOT);
  answers.holds += holds;
  answers.doesNotHold += doesNotHold;
  answers.undecidable += rows - holds - doesNotHold;
}

const std::vector<std::int64_t>& ChunkFilter::Select(const CsvChunk& chunk) {
  const std::int64_t rows = chunk.rows();
  rows_.resize(static_cast<std::size_t>(rows));
  if (rows == 0) return rows_;
  Bind(chunk);
  const std::int64_t selected =
      batchRefused_ ? -1 : batch_.Select(rows, rows_.data(), caseSensitive_);
  if (selected >= 0) {
    rows_.resize(static_cast<std::size_t>(selected));
    return rows_;
  }
  batchRefused_ = true;
  results_.resize(static_cast<std::size_t>(rows));
  EvaluateByRow(chunk);
  rows_.clear();
  for (std::int64_t row = 0; row < rows; ++row) {
    if (results_[static_cast<std::size_t>(row)] == IDX_FILTER_HOLDS) rows_.push_back(row);
  }
  return rows_;
}

}  // namespace idxbase_tool
