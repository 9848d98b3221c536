// A table of typed records in memory, the attribute reader that filters
// read it through, and the loop that evaluates a filter on every row.
#ifndef IDXBASE_TOOLS_RECORD_TABLE_H_
#define IDXBASE_TOOLS_RECORD_TABLE_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "idxbase/filter_parser.h"

namespace idxbase_tool {

// One column: a value per row, kept only where the row has one.
struct TableColumn {
  IDX_Filter_ValueType type = IDX_Filter_Type_Int;
  std::vector<std::uint8_t> present;  // 1 where the row has a value
  std::vector<int> ints;              // int columns, and booleans as 0 / 1
  std::vector<float> floats;
  std::vector<std::int64_t> times;  // seconds since the epoch
  std::vector<std::string> strings;

  // Appends "not available".
  void AppendMissing();
  void AppendInt(int value);
  void AppendFloat(float value);
  void AppendBool(bool value);
  void AppendTime(std::int64_t seconds);
  void AppendString(std::string value);
};

// Columns of one record type; column i is read with the pair (0, i), so
// filters name them through schema(). Filled by appending a value (or
// AppendMissing) to every column, row by row.
class RecordTable {
 public:
  explicit RecordTable(std::string typeName) : schema_(std::move(typeName), 0) {}

  // False when a column of that name exists already.
  bool AddColumn(const std::string& name, IDX_Filter_ValueType type);
  TableColumn& column(int index) { return columns_[index]; }
  const TableColumn& column(int index) const { return columns_[index]; }
  int columnCount() const { return static_cast<int>(columns_.size()); }
  int rowCount() const {
    return columns_.empty() ? 0 : static_cast<int>(columns_[0].present.size());
  }
  const BBDFilterSimpleSchema& schema() const { return schema_; }

 private:
  BBDFilterSimpleSchema schema_;
  std::vector<TableColumn> columns_;
};

// Reads row `row` of a table; a value that the row lacks, or a pair that
// names no column of the right type, fails the read.
class TableReader : public BBDIAttributeRead {
 public:
  explicit TableReader(const RecordTable& table) : table_(table) {}
  int row = 0;

  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override;
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, float& value) override;
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, const char*& value,
                 int& length) override;
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
               KORTime& value) override;
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override;
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

 private:
  // The column that `pair` names when it is of `type` and the row has a
  // value there; null otherwise.
  const TableColumn* Cell(const AttributeTypePair* pair, IDX_Filter_ValueType type) const;

  const RecordTable& table_;
};

// How the rows answered, and how long the evaluation took.
struct Tally {
  long holds = 0;
  long doesNotHold = 0;
  long undecidable = 0;
  double seconds = 0;
};

// Evaluates `filter` on every row; appends the rows where it holds to
// `matches` when that is not null.
Tally EvaluateRows(BBDExpression& filter, const RecordTable& table, bool caseSensitive,
                   std::vector<int>* matches);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_RECORD_TABLE_H_
