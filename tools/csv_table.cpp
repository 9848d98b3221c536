#include "csv_table.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <type_traits>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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
bool Append(std::string_view text, bool quoted, CsvColumn& column, std::int64_t row,
            TimeReader& times) {
  if (text.empty() && !(quoted && column.type == IDX_Filter_Type_String)) {
    AppendMissing(column, row);
    return true;
  }
  switch (column.type) {
    case IDX_Filter_Type_String:
      column.bytes.append(text);
      column.offsets.push_back(static_cast<std::int32_t>(column.bytes.size()));
      break;
    case IDX_Filter_Type_Int: {
      std::int32_t value = 0;
      if (!ReadInt(text, text.size(), value)) return false;
      column.ints.push_back(value);
      break;
    }
    case IDX_Filter_Type_Float: {
      float value = 0;
      if (!ReadFloat(text, text.size(), value)) return false;
      column.floats.push_back(value);
      break;
    }
    case IDX_Filter_Type_Boolean: {
      bool value = false;
      if (!ReadBool(text, text.size(), value)) return false;
      SetBit(column.bits, row, value);
      break;
    }
    default: {
      std::int64_t seconds = 0;
      if (!times.Read(text, seconds)) return false;
      column.times.push_back(seconds);
      break;
    }
  }
  SetBit(column.validity, row, true);
  return true;
}

// Bit i set where byte i of the 64 at `p` makes SplitPlain stop and look:
// the ends of unquoted fields, and the quote and carriage return that may
// need the full parser.
std::uint64_t PlainStopsIn(const char* p) {
  std::uint64_t mask = 0;
#if defined(__SSE2__)
  for (int part = 0; part < 4; ++part) {
    __m128i bytes;
    std::memcpy(&bytes, p + 16 * part, sizeof bytes);
    const __m128i stops = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(',')),
                                                    _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'))),
                                       _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r')),
                                                    _mm_cmpeq_epi8(bytes, _mm_set1_epi8('"'))));
    mask |= static_cast<std::uint64_t>(static_cast<std::uint16_t>(_mm_movemask_epi8(stops)))
            << (16 * part);
  }
#else
  for (unsigned i = 0; i < 64; ++i) {
    const bool stop = p[i] == ',' || p[i] == '\n' || p[i] == '\r' || p[i] == '"';
    mask |= std::uint64_t{stop} << i;
  }
#endif
  return mask;
}

int LowestBit(std::uint64_t mask) { return __builtin_ctzll(mask); }

// One column of the unquoted fields of consecutive records that
// SplitPlain split: field k of them spans [starts[k], starts[k + 1] -
// `after`), where `after` counts the comma behind a field or, in the last
// column, the line end.
struct PlainColumn {
  const char* base;
  const std::uint32_t* starts;
  std::size_t width;
  std::size_t index;
  std::uint32_t after;

  std::string_view Text(std::int64_t row) const {
    const std::size_t k = static_cast<std::size_t>(row) * width + index;
    return {base + starts[k], starts[k + 1] - after - starts[k]};
  }
};

// Column `index` of `width` of the records that start at `base`, their
// fields at `starts`, their lines ending in `lineEnd` bytes.
PlainColumn ColumnOf(const char* base, const std::vector<std::uint32_t>& starts, std::size_t width,
                     std::size_t index, std::uint32_t lineEnd) {
  return {base, starts.data(), width, index, index + 1 == width ? lineEnd : 1};
}

// Sets bits of a bitmap a byte at a time, rows in ascending order: a store
// of a single byte may alias anything, so storing one for every row would
// make the compiler reload every pointer of the loop each time.
class BitmapWriter {
 public:
  // Requires: the bitmap holds the rows to be set.
  explicit BitmapWriter(std::vector<std::uint8_t>& bitmap) : bytes_(bitmap.data()) {}
  BitmapWriter(const BitmapWriter&) = delete;
  BitmapWriter& operator=(const BitmapWriter&) = delete;
  ~BitmapWriter() { Flush(); }

  void Set(std::int64_t row, bool bit) {
    const std::int64_t byte = row >> 3;
    if (byte != byte_) {
      Flush();
      byte_ = byte;
    }
    pending_ |= unsigned{bit} << (row & 7);
  }

 private:
  void Flush() {
    if (pending_ != 0) bytes_[byte_] = static_cast<std::uint8_t>(bytes_[byte_] | pending_);
    pending_ = 0;
  }

  std::uint8_t* bytes_;
  std::int64_t byte_ = 0;
  unsigned pending_ = 0;
};

// Appends the fields of `rows` records to `column`, whose
// rows start at `first` and whose values are sized for them, as Append
// would one by one; stops at the first field that is not a value of the
// column's type, returning its record (`rows` when all are).
// `read(text, row)` stores one nonempty value.
template <typename Read>
std::int64_t AppendPlain(const PlainColumn& fields, CsvColumn& column, std::int64_t first,
                         std::int64_t rows, Read read) {
  column.validity.resize(static_cast<std::size_t>(first + rows + 7) / 8);
  BitmapWriter valid(column.validity);
  for (std::int64_t r = 0; r < rows; ++r) {
    const std::string_view text = fields.Text(r);
    if (text.empty()) continue;
    if (!read(text, static_cast<std::size_t>(first + r))) return r;
    valid.Set(first + r, true);
  }
  return rows;
}

// AppendPlain for a string column, which takes every field. A short field
// is copied as 16 bytes, those past it being overwritten by the next one
// or cut off, where the buffer (ending at `limit`) has them.
void AppendPlainStrings(const PlainColumn& fields, CsvColumn& column, std::int64_t first,
                        std::int64_t rows, const char* limit) {
  constexpr std::size_t kShort = 16;
  std::size_t size = column.bytes.size();
  std::size_t total = size + kShort;
  for (std::int64_t r = 0; r < rows; ++r) total += fields.Text(r).size();
  column.bytes.resize(total);
  const auto end = static_cast<std::size_t>(first + rows);
  column.offsets.resize(end + 1);
  column.validity.resize((end + 7) / 8);
  BitmapWriter valid(column.validity);
  char* const bytes = column.bytes.data();
  std::int32_t* const offsets = column.offsets.data();
  for (std::int64_t r = 0; r < rows; ++r) {
    const std::string_view text = fields.Text(r);
    if (!text.empty()) {
      if (text.size() <= kShort && static_cast<std::size_t>(limit - text.data()) >= kShort)
        std::memcpy(bytes + size, text.data(), kShort);
      else
        std::memcpy(bytes + size, text.data(), text.size());
      size += text.size();
      valid.Set(first + r, true);
    }
    offsets[first + r + 1] = static_cast<std::int32_t>(size);
  }
  column.bytes.resize(size);
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

// Splits the records ahead that are one line of as many unquoted fields
// as the header has, all ending in "\n" or all in "\r\n", as far as the
// buffer holds them whole and at most `maxRows`: their fields' starts go to
// plainStarts_. Stops before any other record (a blank line, a quote, a
// carriage return in a field, another field count, the other line end,
// the last bytes), which the full parser then reads. Offsets stay in 32
// bits, and the records in 64 MiB.
std::int64_t CsvReader::SplitPlain(std::int64_t maxRows) {
  const std::size_t width = columns_.size();
  const std::size_t size = std::min(end_ - pos_, kMaxRecordBytes);
  const std::size_t needed = static_cast<std::size_t>(maxRows) * width + 1;
  if (plainStarts_.size() < needed) plainStarts_.resize(needed);
  const char* const base = data_ + pos_;
  std::uint32_t* const starts = plainStarts_.data();
  plainBase_ = base;
  plainLineEnd_ = 0;  // not known before the first record's
  starts[0] = 0;
  std::size_t fields = 0;         // ended so far
  std::size_t recordEnd = width;  // the count at which the record's line must end
  std::int64_t rows = 0;
  for (std::size_t block = 0; block + 64 <= size && width > 0; block += 64) {
    for (std::uint64_t stops = PlainStopsIn(base + block); stops != 0; stops &= stops - 1) {
      const std::size_t at = block + static_cast<std::size_t>(LowestBit(stops));
      const char c = base[at];
      if (c == ',' && fields + 1 < recordEnd) {
        starts[++fields] = static_cast<std::uint32_t>(at + 1);
        continue;
      }
      // The carriage return of a "\r\n" that ends the record: the line
      // feed behind it ends it.
      if (c == '\r' && fields + 1 == recordEnd && plainLineEnd_ != 1 && at + 1 < size &&
          base[at + 1] == '\n') {
        continue;
      }
      if (c != '\n' || fields + 1 != recordEnd) return rows;
      const std::uint32_t lineEnd = at > 0 && base[at - 1] == '\r' ? 2 : 1;
      // A line holding one empty field is a blank line.
      if ((lineEnd != plainLineEnd_ && plainLineEnd_ != 0) ||
          (width == 1 && starts[fields] + lineEnd == at + 1)) {
        return rows;
      }
      plainLineEnd_ = lineEnd;
      starts[++fields] = static_cast<std::uint32_t>(at + 1);
      recordEnd += width;
      if (++rows == maxRows) return rows;
    }
  }
  return rows;
}

// Converts column `index` of the records split by SplitPlain into
// `column` from its row `first`, as Append would field by field; stops at
// the first field that is not a value of the column's type, returning its
// record (`rows` when all are values).
std::int64_t CsvReader::ConvertPlain(std::size_t index, CsvColumn& column, std::int64_t first,
                                     std::int64_t rows) {
  const std::size_t width = columns_.size();
  const PlainColumn fields = ColumnOf(plainBase_, plainStarts_, width, index, plainLineEnd_);
  // The values are read a word at a time, up to the buffer's end.
  const char* const limit = data_ + end_;
  const auto readable = [limit](std::string_view text) {
    return static_cast<std::size_t>(limit - text.data());
  };
  const auto end = static_cast<std::size_t>(first + rows);
  switch (column.type) {
    case IDX_Filter_Type_String:
      AppendPlainStrings(fields, column, first, rows, limit);
      return rows;
    case IDX_Filter_Type_Int: {
      column.ints.resize(end);
      std::int32_t* const ints = column.ints.data();
      return AppendPlain(fields, column, first, rows, [&](std::string_view text, std::size_t row) {
        return ReadInt(text, readable(text), ints[row]);
      });
    }
    case IDX_Filter_Type_Float: {
      column.floats.resize(end);
      float* const floats = column.floats.data();
      return AppendPlain(fields, column, first, rows, [&](std::string_view text, std::size_t row) {
        return ReadFloat(text, readable(text), floats[row]);
      });
    }
    case IDX_Filter_Type_Boolean: {
      column.bits.resize((end + 7) / 8);
      BitmapWriter bits(column.bits);
      return AppendPlain(fields, column, first, rows, [&](std::string_view text, std::size_t row) {
        bool value = false;
        if (!ReadBool(text, readable(text), value)) return false;
        bits.Set(static_cast<std::int64_t>(row), value);
        return true;
      });
    }
    default: {
      column.times.resize(end);
      std::int64_t* const times = column.times.data();
      return AppendPlain(fields, column, first, rows, [&](std::string_view text, std::size_t row) {
        return times_.Read(text, times[row]);
      });
    }
  }
}

// Adds the `rows` records split by SplitPlain, the first at line `line`,
// column by column. From the first record with a field that is not a value
// of its column's type on, they are added record by record, so that what
// is refused, skipped and reported is as if all were.
bool CsvReader::AddPlainRows(CsvChunk& chunk, std::int64_t rows, long long line, CsvError& error) {
  const std::int64_t first = chunk.rows();
  std::int64_t good = rows;
  for (std::size_t i = 0; i < columns_.size(); ++i)
    good = ConvertPlain(i, chunk.columns[i], first, good);
  if (good < rows) {
    for (CsvColumn& column : chunk.columns) Truncate(column, first + good);
  }
  const std::uint32_t* const starts = plainStarts_.data();
  const std::size_t width = columns_.size();
  const auto record = [&](std::int64_t r) {
    const std::size_t k = static_cast<std::size_t>(r) * width;
    return std::string_view(plainBase_ + starts[k], starts[k + width] - plainLineEnd_ - starts[k]);
  };
  for (std::int64_t r = 0; r < good; ++r) chunk.records.push_back(record(r));
  for (std::int64_t r = good; r < rows; ++r) {
    fields_.clear();
    for (std::size_t i = 0; i < width; ++i) {
      const PlainColumn column = ColumnOf(plainBase_, plainStarts_, width, i, plainLineEnd_);
      fields_.push_back({column.Text(r), -1, false});
    }
    if (!AddRow(chunk, record(r), line + r, error)) return false;
  }
  return true;
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
    if (!Append(text, fields_[i].quoted, chunk.columns[i], row, times_)) {
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
    const std::int64_t plain = SplitPlain(kChunkRows - chunk.rows());
    if (plain > 0) {
      const long long line = line_;
      pos_ += plainStarts_[static_cast<std::size_t>(plain) * columns_.size()];
      line_ += plain;
      if (!AddPlainRows(chunk, plain, line, error)) return Fail(chunk, error);
      continue;
    }
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
