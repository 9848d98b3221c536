#include "csv_table.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include "idxbase/filter_parser.h"

namespace idxbase_tool {
namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
constexpr std::size_t kQuotedBytes = 60;  // of a field quoted in a message

// The bytes that may end an unquoted field.
struct FieldEnds {
  bool at[256] = {};
  constexpr FieldEnds() {
    at[static_cast<unsigned char>(',')] = true;
    at[static_cast<unsigned char>('\n')] = true;
    at[static_cast<unsigned char>('\r')] = true;
  }
};
constexpr FieldEnds kFieldEnds;

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

// A header whose fields carry no ":" at all was written for another
// program; say how to type it rather than complain about its first field.
std::string UntypedHeaderMessage(const std::vector<std::string>& names) {
  std::string example;
  for (std::size_t i = 0; i < names.size() && i < 3; ++i) {
    example += (i == 0 ? "" : ",") + names[i] + ":string";
  }
  if (names.size() > 3) example += ",...";
  return "the header gives no column types: write each column as name:type, with type one of "
         "string, int, float, bool, time (e.g. " +
         example + ")";
}

void SetBit(std::vector<std::uint8_t>& bitmap, std::int64_t row, bool value) {
  if ((row & 7) == 0) bitmap.push_back(0);
  bitmap.back() = static_cast<std::uint8_t>(bitmap.back() | (value ? 1u << (row & 7) : 0u));
}

void TruncateBitmap(std::vector<std::uint8_t>& bitmap, std::int64_t rows) {
  bitmap.resize(static_cast<std::size_t>((rows + 7) / 8));
  if ((rows & 7) != 0)
    bitmap.back() = static_cast<std::uint8_t>(bitmap.back() & ((1u << (rows & 7)) - 1));
}

void Reset(CsvColumn& column, IDX_Filter_ValueType type) {
  column.type = type;
  column.validity.clear();
  column.ints.clear();
  column.floats.clear();
  column.times.clear();
  column.bits.clear();
  column.offsets.assign(1, 0);
  column.bytes.clear();
}

// Drops the rows from `rows` on, the values of a record being refused.
void Truncate(CsvColumn& column, std::int64_t rows) {
  const auto n = static_cast<std::size_t>(rows);
  TruncateBitmap(column.validity, rows);
  if (column.type == IDX_Filter_Type_Boolean) TruncateBitmap(column.bits, rows);
  if (column.ints.size() > n) column.ints.resize(n);
  if (column.floats.size() > n) column.floats.resize(n);
  if (column.times.size() > n) column.times.resize(n);
  if (column.offsets.size() > n + 1) {
    column.offsets.resize(n + 1);
    column.bytes.resize(static_cast<std::size_t>(column.offsets.back()));
  }
}

void AppendMissing(CsvColumn& column, std::int64_t row) {
  SetBit(column.validity, row, false);
  switch (column.type) {
    case IDX_Filter_Type_String:
      column.offsets.push_back(column.offsets.back());
      break;
    case IDX_Filter_Type_Float:
      column.floats.push_back(0);
      break;
    case IDX_Filter_Type_Time:
      column.times.push_back(0);
      break;
    case IDX_Filter_Type_Boolean:
      SetBit(column.bits, row, false);
      break;
    default:
      column.ints.push_back(0);
      break;
  }
}

// Appends row `row`'s field to `column`; false when it is not a value of
// the column's type (nothing appended).
bool Append(std::string_view text, bool quoted, CsvColumn& column, std::int64_t row) {
  if (text.empty() && !(quoted && column.type == IDX_Filter_Type_String)) {
    AppendMissing(column, row);
    return true;
  }
  const char* end = text.data() + text.size();
  switch (column.type) {
    case IDX_Filter_Type_String:
      column.bytes.append(text);
      column.offsets.push_back(static_cast<std::int32_t>(column.bytes.size()));
      break;
    case IDX_Filter_Type_Int: {
      std::int32_t value = 0;
      const auto result = std::from_chars(text.data(), end, value);
      if (result.ec != std::errc() || result.ptr != end) return false;
      column.ints.push_back(value);
      break;
    }
    case IDX_Filter_Type_Float: {
      float value = 0;
      const auto result = std::from_chars(text.data(), end, value);
      if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value)) return false;
      column.floats.push_back(value);
      break;
    }
    case IDX_Filter_Type_Boolean: {
      const bool isTrue = text == "true" || text == "1";
      if (!isTrue && text != "false" && text != "0") return false;
      SetBit(column.bits, row, isTrue);
      break;
    }
    default: {
      KORTime time = KORTime::FromEpochSeconds(0);
      if (!BBDFilterParser::ParseTime(text, time)) return false;
      column.times.push_back(time.GetEpochSeconds());
      break;
    }
  }
  SetBit(column.validity, row, true);
  return true;
}

}  // namespace

std::string QuoteForMessage(std::string_view text) {
  std::string_view shown = text;
  if (text.size() > kQuotedBytes) {
    std::size_t cut = kQuotedBytes;
    // Cut before a UTF-8 character, not inside one.
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    shown = text.substr(0, cut);
  }
  std::string quoted = "'";
  for (const char c : shown) {
    if (c == '\0')
      quoted += "\\0";
    else
      quoted += c;
  }
  quoted += shown.size() < text.size() ? "...' (" + std::to_string(text.size()) + " bytes)" : "'";
  return quoted;
}

CsvReader::CsvReader(ByteSource& source) : source_(&source), buffer_(kReadBytes) {
  data_ = buffer_.data();
}

CsvReader::CsvReader(std::string_view text) : data_(text.data()), end_(text.size()), eof_(true) {}

// Moves the bytes not yet used to the front of the buffer and reads more
// behind them, growing the buffer when a record fills it.
bool CsvReader::Refill(CsvError& error) {
  if (source_ == nullptr || eof_) {
    eof_ = true;
    return true;
  }
  const std::size_t pending = end_ - pos_;
  if (pending > kMaxRecordBytes) return TooLong(error);
  if (pos_ > 0) std::memmove(buffer_.data(), buffer_.data() + pos_, pending);
  pos_ = 0;
  end_ = pending;
  if (buffer_.size() - end_ < kReadBytes / 2) {
    buffer_.resize(
        std::min(std::max(buffer_.size() * 2, end_ + kReadBytes), kMaxRecordBytes + kReadBytes));
  }
  data_ = buffer_.data();
  // Pipes deliver a little at a time: fill the buffer, so that chunks
  // stay long.
  while (end_ < buffer_.size()) {
    const long count = source_->Read(buffer_.data() + end_, buffer_.size() - end_);
    if (count < 0) {
      error = {line_, std::string("cannot read: ") + std::strerror(errno)};
      return false;
    }
    if (count == 0) {
      eof_ = true;
      break;
    }
    end_ += static_cast<std::size_t>(count);
  }
  return true;
}

bool CsvReader::TooLong(CsvError& error) const {
  error = {line_, "a record longer than " + std::to_string(kMaxRecordBytes >> 20) +
                      " MiB starts here; records that long are not read"};
  return false;
}

CsvReader::Parsed CsvReader::ParseRecord(const char* p, Span& span, CsvError& error) {
  const char* const end = data_ + end_;
  fields_.clear();
  unescaped_.clear();
  long long line = line_;
  for (;;) {
    // Filled in place: a copy of a field assembled piecewise on the stack
    // stalls on store forwarding, which cost a third of the reading time.
    Field& field = fields_.emplace_back();
    field.unescaped = -1;
    field.quoted = false;
    if (p < end && *p == '"') {
      field.quoted = true;
      const long long quoteLine = line;
      const char* run = p + 1;
      std::string* text = nullptr;
      for (;;) {
        const auto* quote = static_cast<const char*>(std::memchr(run, '"', end - run));
        if (quote == nullptr) {
          if (!eof_) return Parsed::kIncomplete;
          error = {quoteLine, "unterminated quoted field"};
          return Parsed::kFatal;
        }
        line += std::count(run, quote, '\n');
        if (quote + 1 == end && !eof_) return Parsed::kIncomplete;
        if (quote + 1 < end && quote[1] == '"') {  // a doubled quote stands for one
          if (text == nullptr) {
            field.unescaped = static_cast<int>(unescaped_.size());
            text = &unescaped_.emplace_back();
          }
          text->append(run, quote + 1);
          run = quote + 2;
          continue;
        }
        if (text != nullptr)
          text->append(run, quote);
        else
          field.text = std::string_view(run, static_cast<std::size_t>(quote - run));
        p = quote + 1;
        break;
      }
      if (p == end || (*p == '\r' && p + 1 == end)) {
        if (!eof_) return Parsed::kIncomplete;
      }
      if (p < end && *p != ',' && *p != '\n' && !(*p == '\r' && p + 1 < end && p[1] == '\n')) {
        error = {line, "unexpected text after a closing quote"};
        // The bad record is taken to end with its line.
        const auto* newline = static_cast<const char*>(std::memchr(p, '\n', end - p));
        if (newline == nullptr && !eof_) return Parsed::kIncomplete;
        span.next = newline == nullptr ? end : newline + 1;
        span.lines = line - line_ + 1;
        return Parsed::kBad;
      }
    } else {
      const char* start = p;
      for (;;) {
        while (p < end && !kFieldEnds.at[static_cast<unsigned char>(*p)]) ++p;
        if (p == end) {
          if (!eof_) return Parsed::kIncomplete;
          break;
        }
        if (*p != '\r') break;
        if (p + 1 == end && !eof_) return Parsed::kIncomplete;
        if (p + 1 < end && p[1] == '\n') break;
        ++p;  // a lone carriage return is data
      }
      field.text = std::string_view(start, static_cast<std::size_t>(p - start));
    }
    if (p < end && *p == ',') {
      ++p;
      continue;
    }
    span.end = p;
    span.next = p == end ? p : p + (*p == '\r' ? 2 : 1);
    span.lines = line - line_ + 1;
    return Parsed::kRecord;
  }
}

// Skips blank lines and parses the record behind them, reading more as
// needed; kIncomplete only at the end of the text.
CsvReader::Parsed CsvReader::NextRecord(bool mayRefill, const char*& begin, Span& span,
                                        CsvError& error) {
  for (;;) {
    const char* p = data_ + pos_;
    const char* const end = data_ + end_;
    while (p < end && (*p == '\n' || *p == '\r')) {
      line_ += *p == '\n' ? 1 : 0;
      ++p;
    }
    pos_ = static_cast<std::size_t>(p - data_);
    Parsed parsed = Parsed::kIncomplete;
    if (p < end) {
      parsed = ParseRecord(p, span, error);
      if (parsed == Parsed::kRecord && static_cast<std::size_t>(span.end - p) > kMaxRecordBytes) {
        TooLong(error);
        return Parsed::kFatal;
      }
      if (parsed != Parsed::kIncomplete) {
        begin = p;
        return parsed;
      }
    }
    if (eof_ || !mayRefill) return Parsed::kIncomplete;
    if (!Refill(error)) return Parsed::kFatal;
  }
}

bool CsvReader::ReadHeader(std::vector<CsvColumnSpec>& columns, CsvError& error) {
  while (end_ - pos_ < 3 && !eof_) {
    if (!Refill(error)) return false;
  }
  if (end_ - pos_ >= 3 && std::memcmp(data_ + pos_, kByteOrderMark, 3) == 0) pos_ += 3;
  const char* begin = nullptr;
  Span span;
  const Parsed parsed = NextRecord(true, begin, span, error);
  if (parsed == Parsed::kIncomplete) {
    error = {1, "no header line"};
    return false;
  }
  if (parsed != Parsed::kRecord) return false;
  error.line = line_;
  header_.assign(begin, static_cast<std::size_t>(span.end - begin));
  pos_ = static_cast<std::size_t>(span.next - data_);
  line_ += span.lines;

  std::vector<std::string> names;
  bool typed = false;
  for (const Field& field : fields_) {
    names.emplace_back(FieldText(field));
    typed = typed || names.back().find(':') != std::string::npos;
  }
  if (!typed) {
    error.message = UntypedHeaderMessage(names);
    return false;
  }
  columns_.clear();
  for (const std::string& text : names) {
    const std::size_t colon = text.rfind(':');
    const std::string name = text.substr(0, colon);
    IDX_Filter_ValueType type = IDX_Filter_Type_NA;
    if (colon == std::string::npos || !TypeOf(std::string_view(text).substr(colon + 1), type)) {
      error.message = "header field " + QuoteForMessage(text) +
                      " needs a type: name:string, name:int, name:float, name:bool or name:time";
      return false;
    }
    if (!BBDFilterParser::IsNamePart(name)) {
      error.message = "column name " + QuoteForMessage(name) +
                      " is not a name a filter can use (letters, digits and _, not a keyword)";
      return false;
    }
    for (const CsvColumnSpec& known : columns_) {
      if (known.name == name) {
        error.message = "column " + QuoteForMessage(name) + " appears twice";
        return false;
      }
    }
    columns_.push_back({name, type});
  }
  columns = columns_;
  return true;
}

bool CsvReader::Bad(const CsvError& fault, CsvError& error) {
  if (!skipBad_) {
    error = fault;
    return false;
  }
  if (badRows_++ == 0) firstBad_ = fault;
  return true;
}

bool CsvReader::AddRow(CsvChunk& chunk, std::string_view record, long long line, CsvError& error) {
  const std::size_t width = columns_.size();
  if (fields_.size() != width) {
    return Bad({line, std::to_string(fields_.size()) + " fields where the header has " +
                          std::to_string(width)},
               error);
  }
  const std::int64_t row = chunk.rows();
  for (std::size_t i = 0; i < width; ++i) {
    const std::string_view text = FieldText(fields_[i]);
    if (!Append(text, fields_[i].quoted, chunk.columns[i], row)) {
      for (std::size_t j = 0; j < i; ++j) Truncate(chunk.columns[j], row);
      return Bad({line, "column '" + columns_[i].name + "': " + QuoteForMessage(text) + " is not " +
                            TypeWord(columns_[i].type)},
                 error);
    }
  }
  chunk.records.push_back(record);
  return true;
}

bool CsvReader::ReadChunk(CsvChunk& chunk, CsvError& error) {
  chunk.records.clear();
  if (failed_) {
    error = pendingError_;
    return false;
  }
  chunk.columns.resize(columns_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i) Reset(chunk.columns[i], columns_[i].type);
  // The records of a chunk are views into the buffer, so it is refilled
  // only while the chunk is empty.
  while (chunk.rows() < kChunkRows) {
    const char* begin = nullptr;
    Span span;
    const Parsed parsed = NextRecord(chunk.rows() == 0, begin, span, error);
    if (parsed == Parsed::kIncomplete) return true;
    if (parsed == Parsed::kFatal) return Fail(chunk, error);
    const long long line = line_;
    pos_ = static_cast<std::size_t>(span.next - data_);
    line_ += span.lines;
    const bool kept =
        parsed == Parsed::kBad
            ? Bad(error, error)
            : AddRow(chunk, std::string_view(begin, static_cast<std::size_t>(span.end - begin)),
                     line, error);
    if (!kept) return Fail(chunk, error);
  }
  return true;
}

// The records before a fault are handed over first; the fault comes with
// the next chunk.
bool CsvReader::Fail(CsvChunk& chunk, CsvError& error) {
  failed_ = true;
  pendingError_ = error;
  return chunk.rows() > 0;
}

bool ReadCsvTable(std::string_view text, RecordTable& table, CsvRecords* raw, CsvError& error) {
  CsvReader reader(text);
  std::vector<CsvColumnSpec> columns;
  if (!reader.ReadHeader(columns, error)) return false;
  for (const CsvColumnSpec& column : columns) table.AddColumn(column.name, column.type);
  if (raw != nullptr) raw->header = reader.header();
  CsvChunk chunk;
  do {
    if (!reader.ReadChunk(chunk, error)) return false;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const CsvColumn& from = chunk.columns[i];
      TableColumn& to = table.column(static_cast<int>(i));
      for (std::int64_t row = 0; row < chunk.rows(); ++row) {
        const auto r = static_cast<std::size_t>(row);
        if (!from.Valid(row)) {
          to.AppendMissing();
        } else if (from.type == IDX_Filter_Type_String) {
          to.AppendString(
              std::string(from.bytes, static_cast<std::size_t>(from.offsets[r]),
                          static_cast<std::size_t>(from.offsets[r + 1] - from.offsets[r])));
        } else if (from.type == IDX_Filter_Type_Float) {
          to.AppendFloat(from.floats[r]);
        } else if (from.type == IDX_Filter_Type_Time) {
          to.AppendTime(from.times[r]);
        } else if (from.type == IDX_Filter_Type_Boolean) {
          to.AppendBool(((from.bits[r >> 3] >> (row & 7)) & 1) != 0);
        } else {
          to.AppendInt(from.ints[r]);
        }
      }
    }
    if (raw != nullptr)
      raw->records.insert(raw->records.end(), chunk.records.begin(), chunk.records.end());
  } while (chunk.rows() > 0);
  return true;
}

}  // namespace idxbase_tool
