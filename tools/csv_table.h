// Reading a typed CSV file, as a stream of column chunks or whole into a
// RecordTable.
//
// The header names and types the columns, "name:type" with type one of
// string, int, float, bool, time ("name:string,mass:float,count:int").
// A UTF-8 byte order mark in front of it is skipped. Fields follow
// RFC 4180: separated by commas, optionally in double quotes, where a
// doubled quote stands for one and commas and line ends are kept. Records
// end with "\n" or "\r\n"; blank lines are skipped. Any byte, NUL
// included, may appear in a field.
//
// Values: int and float in decimal (a float is finite), bool as true,
// false, 1 or 0, time as an ISO date or date and time in UTC
// (2026-11-22 or 2026-11-22T10:30:00). An empty field is "not available";
// a quoted empty field ("") of a string column is the empty string.
#ifndef IDXBASE_TOOLS_CSV_TABLE_H_
#define IDXBASE_TOOLS_CSV_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "csv_values.h"
#include "idxbase/filter_vocabulary.h"
#include "record_table.h"

namespace idxbase_tool {

struct CsvError {
  long long line = 0;  // from 1
  std::string message;
};

// Where a CsvReader's bytes come from.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Reads up to `capacity` bytes; the count, 0 at the end, or -1 with
  // errno set.
  virtual long Read(char* buffer, std::size_t capacity) = 0;
};

// One column of a chunk of rows, laid out as BBDFilterBatch binds it.
// Bitmaps are LSB-first: bit i of byte i / 8 is row i.
struct CsvColumn {
  IDX_Filter_ValueType type = IDX_Filter_Type_Int;
  std::vector<std::uint8_t> validity;  // bit set where the row has a value
  std::vector<std::int32_t> ints;      // int columns
  std::vector<float> floats;
  std::vector<std::int64_t> times;    // seconds since the epoch
  std::vector<std::uint8_t> bits;     // bool columns, a bitmap
  std::vector<std::int32_t> offsets;  // strings: row i is bytes[offsets[i], offsets[i+1])
  std::string bytes;

  bool Valid(std::int64_t row) const { return (validity[row >> 3] >> (row & 7)) & 1; }
};

// A block of consecutive records: their values by column, and their text.
struct CsvChunk {
  std::vector<CsvColumn> columns;
  // Each record's text as read, without its line end; views into the
  // reader's buffer, valid until its next ReadChunk.
  std::vector<std::string_view> records;
  std::int64_t rows() const { return static_cast<std::int64_t>(records.size()); }
};

// A column as the header names it.
struct CsvColumnSpec {
  std::string name;
  IDX_Filter_ValueType type = IDX_Filter_Type_Int;
};

// Reads a typed CSV text in chunks of at most kChunkRows records, in
// memory bounded by the longest record (at most kMaxRecordBytes, a longer
// one is refused) whatever the text's length. One thread at a time.
//
// Runs of records that are one line of unquoted fields, as typed files
// mostly are, are split 64 bytes at a time and converted a column at a
// time; any other record is parsed field by field, and so is every record
// of a run from its first bad value on, so that what is read, refused,
// skipped and reported is the same either way.
class CsvReader {
 public:
  static constexpr int kChunkRows = 8192;
  static constexpr std::size_t kMaxRecordBytes = std::size_t{64} << 20;
  static constexpr std::size_t kReadBytes = std::size_t{1} << 20;

  // Reads from `source` (kept alive by the caller).
  explicit CsvReader(ByteSource& source);
  // Reads the whole of `text` (kept alive by the caller); the chunks'
  // records are then views into `text` itself.
  explicit CsvReader(std::string_view text);
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  // With `skip`, a record that is not a row of the header's types (wrong
  // field count, a value not of its column's type, text after a closing
  // quote) is counted and left out instead of failing the read.
  void SkipBadRows(bool skip) { skipBad_ = skip; }

  // Reads the header; false with `error` set when there is none or it
  // does not type every column with a name a filter can use.
  bool ReadHeader(std::vector<CsvColumnSpec>& columns, CsvError& error);
  // The header's text as read (without a byte order mark or line end).
  const std::string& header() const { return header_; }

  // Replaces `chunk` by the next records; a chunk without rows is the end
  // of the text. On a fault, the records before it come first; the next
  // call then returns false with `error` set (and so does every later one).
  bool ReadChunk(CsvChunk& chunk, CsvError& error);

  // The records left out by SkipBadRows, and the first one's fault.
  long long badRows() const { return badRows_; }
  const CsvError& firstBadRow() const { return firstBad_; }

 private:
  struct Field {
    std::string_view text;
    int unescaped = -1;  // index into unescaped_ when the text had doubled quotes
    bool quoted = false;
  };
  // A record's text ends at `end`; the next one may start at `next`; it
  // spans `lines` lines.
  struct Span {
    const char* end = nullptr;
    const char* next = nullptr;
    long long lines = 0;
  };
  // kBad: the record is malformed but ends at span.next; kFatal: the
  // text cannot be read on; kIncomplete: more bytes are needed (or, from
  // NextRecord, the text has ended).
  enum class Parsed { kRecord, kIncomplete, kBad, kFatal };

  std::int64_t SplitPlain(std::int64_t maxRows);
  bool AddPlainRows(CsvChunk& chunk, std::int64_t rows, long long line, CsvError& error);
  std::int64_t ConvertPlain(std::size_t index, CsvColumn& column, std::int64_t first,
                            std::int64_t rows);
  Parsed ParseRecord(const char* begin, Span& span, CsvError& error);
  Parsed NextRecord(bool mayRefill, const char*& begin, Span& span, CsvError& error);
  bool Refill(CsvError& error);
  bool TooLong(CsvError& error) const;
  bool AddRow(CsvChunk& chunk, std::string_view record, long long line, CsvError& error);
  bool Bad(const CsvError& fault, CsvError& error);
  bool Fail(CsvChunk& chunk, CsvError& error);
  std::string_view FieldText(const Field& field) const {
    return field.unescaped < 0 ? field.text : std::string_view(unescaped_[field.unescaped]);
  }

  ByteSource* source_ = nullptr;
  std::vector<char> buffer_;
  const char* data_ = nullptr;  // the bytes read: buffer_ or the whole text
  std::size_t pos_ = 0;
  std::size_t end_ = 0;
  bool eof_ = false;
  long long line_ = 1;
  // The records split by SplitPlain, from plainBase_: field k of them
  // starts at plainStarts_[k]; their lines end in plainLineEnd_ bytes.
  const char* plainBase_ = nullptr;
  std::vector<std::uint32_t> plainStarts_;
  std::uint32_t plainLineEnd_ = 1;
  TimeReader times_;
  std::vector<Field> fields_;
  std::vector<std::string> unescaped_;
  std::vector<CsvColumnSpec> columns_;
  std::string header_;
  bool skipBad_ = false;
  long long badRows_ = 0;
  CsvError firstBad_;
  bool failed_ = false;
  CsvError pendingError_;
};

// `text` quoted for a message: whole when short, otherwise its start and
// its length ("'abc...' (2000000 bytes)"); NUL bytes show as \0.
std::string QuoteForMessage(std::string_view text);

// The text of the header and of each data record, without line ends (the
// records are views into the text read).
struct CsvRecords {
  std::string header;
  std::vector<std::string_view> records;
};

// Reads all of `text` into `table` (which has no columns yet) and, when
// `raw` is not null, the records' text. False with `error` set on the
// first fault; the table is then incomplete and should be dropped.
bool ReadCsvTable(std::string_view text, RecordTable& table, CsvRecords* raw, CsvError& error);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_CSV_TABLE_H_
