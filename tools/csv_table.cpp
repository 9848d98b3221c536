#include "csv_table.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace idxbase_tool {
namespace {

// One field as read: its bytes (quotes removed) and whether it was quoted.
struct Field {
  std::string text;
  bool quoted = false;
};

// Splits records off the text, one at a time, counting physical lines.
class CsvCursor {
 public:
  explicit CsvCursor(std::string_view text) : text_(text) {}

  bool AtEnd() {
    while (pos_ < text_.size() && (text_[pos_] == '\n' || text_[pos_] == '\r')) {
      if (text_[pos_] == '\n') ++line_;
      ++pos_;
    }
    return pos_ == text_.size();
  }
  int line() const { return line_; }

  // Reads the record at the cursor; false, with `error`, on a malformed
  // quoted field.
  bool Record(std::vector<Field>& fields, std::string_view& raw, CsvError& error) {
    fields.clear();
    const std::size_t begin = pos_;
    Field field;
    for (;;) {
      if (pos_ < text_.size() && text_[pos_] == '"' && field.text.empty() && !field.quoted) {
        if (!Quoted(field, error)) return false;
        continue;
      }
      const char c = pos_ < text_.size() ? text_[pos_] : '\n';
      if (c == ',' || c == '\n' ||
          (c == '\r' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '\n')) {
        fields.push_back(std::move(field));
        field = Field();
        if (c == ',') {
          ++pos_;
          continue;
        }
        raw = text_.substr(begin, pos_ - begin);
        if (pos_ < text_.size()) pos_ += c == '\r' ? 2 : 1;
        ++line_;
        return true;
      }
      if (field.quoted) {
        error = {line_, "unexpected text after a closing quote"};
        return false;
      }
      field.text += c;
      ++pos_;
    }
  }

 private:
  bool Quoted(Field& field, CsvError& error) {
    const int startLine = line_;
    field.quoted = true;
    for (++pos_;; ++pos_) {
      if (pos_ == text_.size()) {
        error = {startLine, "unterminated quoted field"};
        return false;
      }
      const char c = text_[pos_];
      if (c == '"') {
        if (pos_ + 1 < text_.size() && text_[pos_ + 1] == '"') {
          field.text += '"';
          ++pos_;
          continue;
        }
        ++pos_;
        return true;
      }
      if (c == '\n') ++line_;
      field.text += c;
    }
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  int line_ = 1;
};

bool TypeOf(std::string_view name, IDX_Filter_ValueType& type) {
  static const std::pair<std::string_view, IDX_Filter_ValueType> kTypes[] = {
      {"string", IDX_Filter_Type_String},
      {"int", IDX_Filter_Type_Int},
      {"float", IDX_Filter_Type_Float},
      {"bool", IDX_Filter_Type_Boolean},
      {"time", IDX_Filter_Type_Time}};
  for (const auto& known : kTypes) {
    if (known.first == name) {
      type = known.second;
      return true;
    }
  }
  return false;
}

bool ReadHeader(const std::vector<Field>& fields, RecordTable& table, CsvError& error) {
  for (const Field& field : fields) {
    const std::size_t colon = field.text.rfind(':');
    const std::string name = field.text.substr(0, colon);
    IDX_Filter_ValueType type = IDX_Filter_Type_NA;
    if (colon == std::string::npos ||
        !TypeOf(std::string_view(field.text).substr(colon + 1), type)) {
      error.message = "header field '" + field.text +
                      "' needs a type: name:string, name:int, name:float, name:bool or name:time";
      return false;
    }
    if (!BBDFilterParser::IsNamePart(name)) {
      error.message = "column name '" + name +
                      "' is not a name a filter can use (letters, digits and _, not a keyword)";
      return false;
    }
    if (!table.AddColumn(name, type)) {
      error.message = "column '" + name + "' appears twice";
      return false;
    }
  }
  return true;
}

// Appends `field` to `column`; false when it is not a value of the type.
bool Append(const Field& field, TableColumn& column) {
  const std::string& text = field.text;
  if (text.empty() && !(field.quoted && column.type == IDX_Filter_Type_String)) {
    column.AppendMissing();
    return true;
  }
  const char* end = text.data() + text.size();
  switch (column.type) {
    case IDX_Filter_Type_String:
      column.AppendString(text);
      return true;
    case IDX_Filter_Type_Int: {
      int value = 0;
      const auto result = std::from_chars(text.data(), end, value);
      if (result.ec != std::errc() || result.ptr != end) return false;
      column.AppendInt(value);
      return true;
    }
    case IDX_Filter_Type_Float: {
      float value = 0;
      const auto result = std::from_chars(text.data(), end, value);
      if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value)) return false;
      column.AppendFloat(value);
      return true;
    }
    case IDX_Filter_Type_Boolean:
      if (text == "true" || text == "1")
        column.AppendBool(true);
      else if (text == "false" || text == "0")
        column.AppendBool(false);
      else
        return false;
      return true;
    default: {
      KORTime time = KORTime::FromEpochSeconds(0);
      if (!BBDFilterParser::ParseTime(text, time)) return false;
      column.AppendTime(time.GetEpochSeconds());
      return true;
    }
  }
}

const char* TypeWord(IDX_Filter_ValueType type) {
  switch (type) {
    case IDX_Filter_Type_String:
      return "a string";
    case IDX_Filter_Type_Float:
      return "a finite float";
    case IDX_Filter_Type_Boolean:
      return "a bool (true, false, 1, 0)";
    case IDX_Filter_Type_Time:
      return "a time (YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS)";
    default:
      return "an int";
  }
}

}  // namespace

bool ReadCsvTable(std::string_view text, RecordTable& table, CsvRecords* raw, CsvError& error) {
  CsvCursor cursor(text);
  std::vector<Field> fields;
  std::string_view record;
  if (cursor.AtEnd()) {
    error = {1, "no header line"};
    return false;
  }
  error.line = cursor.line();
  if (!cursor.Record(fields, record, error) || !ReadHeader(fields, table, error)) return false;
  if (raw != nullptr) raw->header = record;
  const std::size_t width = fields.size();
  while (!cursor.AtEnd()) {
    const int line = cursor.line();
    if (!cursor.Record(fields, record, error)) return false;
    if (fields.size() != width) {
      error = {line, std::to_string(fields.size()) + " fields where the header has " +
                         std::to_string(width)};
      return false;
    }
    for (std::size_t i = 0; i < width; ++i) {
      TableColumn& column = table.column(static_cast<int>(i));
      if (!Append(fields[i], column)) {
        error = {line, "column '" + table.schema().At(static_cast<int>(i)).attributeName + "': '" +
                           fields[i].text + "' is not " + TypeWord(column.type)};
        return false;
      }
    }
    if (raw != nullptr) raw->records.push_back(record);
  }
  return true;
}

}  // namespace idxbase_tool
