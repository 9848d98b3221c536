#include "record_table.h"

#include <chrono>
#include <utility>

namespace idxbase_tool {

void TableColumn::AppendMissing() {
  present.push_back(0);
  switch (type) {
    case IDX_Filter_Type_Float:
      floats.push_back(0);
      break;
    case IDX_Filter_Type_Time:
      times.push_back(0);
      break;
    case IDX_Filter_Type_String:
      strings.emplace_back();
      break;
    default:
      ints.push_back(0);
      break;
  }
}

void TableColumn::AppendInt(int value) {
  present.push_back(1);
  ints.push_back(value);
}

void TableColumn::AppendBool(bool value) { AppendInt(value ? 1 : 0); }

void TableColumn::AppendFloat(float value) {
  present.push_back(1);
  floats.push_back(value);
}

void TableColumn::AppendTime(std::int64_t seconds) {
  present.push_back(1);
  times.push_back(seconds);
}

void TableColumn::AppendString(std::string value) {
  present.push_back(1);
  strings.push_back(std::move(value));
}

bool RecordTable::AddColumn(const std::string& name, IDX_Filter_ValueType type) {
  if (schema_.Add(name, type) < 0) return false;
  TableColumn column;
  column.type = type;
  columns_.push_back(std::move(column));
  return true;
}

namespace {

class OneLevelOccurrence : public BBDOccurrence {
 public:
  unsigned int GetLevelKey(unsigned int) const override { return 0; }
  unsigned int GetLevelCount() const override { return 1; }
};

}  // namespace

const TableColumn* TableReader::Cell(const AttributeTypePair* pair,
                                     IDX_Filter_ValueType type) const {
  if (pair == nullptr || pair->GetType() != 0) return nullptr;
  const int index = pair->GetAttribute();
  if (index < 0 || index >= table_.columnCount()) return nullptr;
  const TableColumn& column = table_.column(index);
  if (column.type != type || column.present[row] == 0) return nullptr;
  return &column;
}

int TableReader::ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) {
  const TableColumn* column = Cell(pair, IDX_Filter_Type_Int);
  if (column == nullptr) return 0;
  value = column->ints[row];
  return 1;
}

int TableReader::ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                           float& value) {
  const TableColumn* column = Cell(pair, IDX_Filter_Type_Float);
  if (column == nullptr) return 0;
  value = column->floats[row];
  return 1;
}

int TableReader::ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                            const char*& value, int& length) {
  const TableColumn* column = Cell(pair, IDX_Filter_Type_String);
  if (column == nullptr) return 0;
  value = column->strings[row].data();
  length = static_cast<int>(column->strings[row].size());
  return 1;
}

int TableReader::ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                          KORTime& value) {
  const TableColumn* column = Cell(pair, IDX_Filter_Type_Time);
  if (column == nullptr) return 0;
  value = KORTime::FromEpochSeconds(column->times[row]);
  return 1;
}

int TableReader::ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) {
  const TableColumn* column = Cell(pair, IDX_Filter_Type_Boolean);
  if (column == nullptr) return 0;
  value = column->ints[row];
  return 1;
}

Tally EvaluateRows(BBDExpression& filter, const RecordTable& table, bool caseSensitive,
                   std::vector<int>* matches) {
  Tally tally;
  TableReader reader(table);
  const OneLevelOccurrence occurrence;
  const auto start = std::chrono::steady_clock::now();
  for (int row = 0, rows = table.rowCount(); row < rows; ++row) {
    reader.row = row;
    const KORStatus result = filter.eval(occurrence, 0, reader, caseSensitive);
    if (result == IDX_FILTER_HOLDS) {
      ++tally.holds;
      if (matches != nullptr) matches->push_back(row);
    } else if (result == IDX_FILTER_DOES_NOT) {
      ++tally.doesNotHold;
    } else {
      ++tally.undecidable;
    }
  }
  tally.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return tally;
}

}  // namespace idxbase_tool
