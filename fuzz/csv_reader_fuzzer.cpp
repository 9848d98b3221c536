// The tool's typed CSV reader against a slow model: records split by a
// character-at-a-time reading of RFC 4180, values checked with the C
// library's strtoll, strtof and timegm. The reader must accept exactly
// the texts the model accepts, and then hold exactly the model's values.
//
// Input: a first byte below 128 puts a header typing one column of each
// kind in front of the rest; otherwise the rest is the whole text. The
// reader is read in chunks, so the checks span chunk boundaries on long
// inputs.
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "csv_table.h"
#include "fuzz_check.h"

namespace {

using idxbase_fuzz::Check;

struct ModelField {
  std::string text;
  bool quoted = false;
};
using ModelRecord = std::vector<ModelField>;

// Splits `t` into records, skipping blank lines; false on an unterminated
// quote or text after a closing quote.
bool Split(std::string_view t, std::vector<ModelRecord>& records) {
  std::size_t i = 0;
  const std::size_t n = t.size();
  for (;;) {
    while (i < n && (t[i] == '\n' || t[i] == '\r')) ++i;
    if (i == n) return true;
    ModelRecord record;
    ModelField field;
    for (;;) {
      const bool recordEnd =
          i == n || t[i] == '\n' || (t[i] == '\r' && i + 1 < n && t[i + 1] == '\n');
      if (recordEnd || t[i] == ',') {
        record.push_back(field);
        field = ModelField();
        if (!recordEnd) {
          ++i;
          continue;
        }
        i += i == n ? 0 : (t[i] == '\r' ? 2 : 1);
        break;
      }
      if (t[i] == '"' && field.text.empty() && !field.quoted) {
        field.quoted = true;
        for (++i;; ++i) {
          if (i == n) return false;
          if (t[i] != '"') {
            field.text += t[i];
          } else if (i + 1 < n && t[i + 1] == '"') {
            field.text += '"';
            ++i;
          } else {
            ++i;
            break;
          }
        }
        continue;
      }
      if (field.quoted) return false;
      field.text += t[i++];
    }
    records.push_back(record);
  }
}

bool AllDigits(std::string_view s) {
  if (s.empty()) return false;
  for (const char c : s) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

bool ModelInt(const std::string& s, long long& value) {
  const std::string_view digits = s[0] == '-' ? std::string_view(s).substr(1) : std::string_view(s);
  if (!AllDigits(digits)) return false;
  const std::size_t significant = digits.find_first_not_of('0');
  if (significant != std::string_view::npos && digits.size() - significant > 10) return false;
  value = std::strtoll(s.c_str(), nullptr, 10);  // at most 10 significant digits: no overflow
  return value >= INT32_MIN && value <= INT32_MAX;
}

// [-] digits [. digits] [e [+-] digits], with a digit before or after the
// point; finite as a float, and not a nonzero value lost to 0.
bool ModelFloat(const std::string& s, float& value) {
  std::size_t i = s[0] == '-' ? 1 : 0;
  std::size_t mantissaDigits = 0;
  bool nonzero = false;
  for (; i < s.size() && std::isdigit(static_cast<unsigned char>(s[i])); ++i, ++mantissaDigits)
    nonzero |= s[i] != '0';
  if (i < s.size() && s[i] == '.') {
    for (++i; i < s.size() && std::isdigit(static_cast<unsigned char>(s[i])); ++i, ++mantissaDigits)
      nonzero |= s[i] != '0';
  }
  if (mantissaDigits == 0) return false;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    if (!AllDigits(std::string_view(s).substr(std::min(i, s.size())))) return false;
    i = s.size();
  }
  if (i != s.size()) return false;
  value = std::strtof(s.c_str(), nullptr);
  return std::isfinite(value) && !(value == 0 && nonzero);
}

// YYYY-MM-DD[THH:MM:SS][Z], a real day, years 1 to 9999; seconds by timegm.
bool ModelTime(const std::string& s, std::int64_t& seconds) {
  static const char kDate[] = "dddd-dd-dd";
  static const char kDateTime[] = "dddd-dd-ddTdd:dd:dd";
  std::string body = s;
  if (!body.empty() && body.back() == 'Z') body.pop_back();
  // A "d" of the pattern stands for a digit; every other character for itself.
  const auto fits = [&body](const std::string& pattern) {
    if (body.size() != pattern.size()) return false;
    for (std::size_t i = 0; i < body.size(); ++i) {
      const bool digit = std::isdigit(static_cast<unsigned char>(body[i])) != 0;
      if (pattern[i] == 'd' ? !digit : body[i] != pattern[i]) return false;
    }
    return true;
  };
  const bool withTime = fits(kDateTime);
  if (!withTime && !fits(kDate)) return false;
  std::tm fields{};
  fields.tm_year = std::atoi(s.substr(0, 4).c_str()) - 1900;
  fields.tm_mon = std::atoi(s.substr(5, 2).c_str()) - 1;
  fields.tm_mday = std::atoi(s.substr(8, 2).c_str());
  if (withTime) {
    fields.tm_hour = std::atoi(s.substr(11, 2).c_str());
    fields.tm_min = std::atoi(s.substr(14, 2).c_str());
    fields.tm_sec = std::atoi(s.substr(17, 2).c_str());
  }
  const std::tm asked = fields;
  if (asked.tm_year + 1900 < 1 || asked.tm_sec > 59) return false;
  const time_t t = timegm(&fields);
  std::tm back{};
  gmtime_r(&t, &back);
  seconds = t;
  return back.tm_year == asked.tm_year && back.tm_mon == asked.tm_mon &&
         back.tm_mday == asked.tm_mday && back.tm_hour == asked.tm_hour &&
         back.tm_min == asked.tm_min && back.tm_sec == asked.tm_sec;
}

// An identifier that is not one of the filter language's keywords (which
// compare without case).
bool IsName(const std::string& s) {
  if (s.empty() || std::isdigit(static_cast<unsigned char>(s[0]))) return false;
  std::string upper;
  for (const char c : s) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
    upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  static const std::set<std::string> kKeywords = {
      "AND",  "OR",    "NOT",  "BETWEEN",      "IN",        "LIKE",       "NOT_LIKE",
      "TRUE", "FALSE", "NULL", "NAEXPRESSION", "NAOPERAND", "NULLOPERAND"};
  return kKeywords.count(upper) == 0;
}

// The model's verdict on the whole text, checking the reader's table
// cell by cell when both accept.
bool ModelAccepts(const std::vector<ModelRecord>& records, const idxbase_tool::RecordTable* table) {
  if (records.empty()) return false;
  std::vector<std::string> types;
  std::set<std::string> names;
  for (const ModelField& field : records[0]) {
    const std::size_t colon = field.text.rfind(':');
    if (colon == std::string::npos) return false;
    const std::string name = field.text.substr(0, colon);
    const std::string type = field.text.substr(colon + 1);
    if (type != "string" && type != "int" && type != "float" && type != "bool" && type != "time")
      return false;
    if (!IsName(name) || !names.insert(name).second) return false;
    types.push_back(type);
  }
  for (std::size_t row = 1; row < records.size(); ++row) {
    if (records[row].size() != types.size()) return false;
    for (std::size_t c = 0; c < types.size(); ++c) {
      const ModelField& f = records[row][c];
      const idxbase_tool::TableColumn* column =
          table ? &table->column(static_cast<int>(c)) : nullptr;
      const std::size_t r = row - 1;
      const bool missing = f.text.empty() && !(f.quoted && types[c] == "string");
      if (missing) {
        if (column) Check(column->present[r] == 0, "a missing value is present");
        continue;
      }
      if (column) Check(column->present[r] == 1, "a value is missing");
      if (types[c] == "string") {
        if (column) Check(column->strings[r] == f.text, "string differs");
      } else if (types[c] == "int") {
        long long v = 0;
        if (!ModelInt(f.text, v)) return false;
        if (column) Check(column->ints[r] == v, "int differs");
      } else if (types[c] == "float") {
        float v = 0;
        if (!ModelFloat(f.text, v)) return false;
        if (column) Check(std::memcmp(&column->floats[r], &v, sizeof v) == 0, "float differs");
      } else if (types[c] == "bool") {
        if (f.text != "true" && f.text != "false" && f.text != "1" && f.text != "0") return false;
        if (column) Check(column->ints[r] == (f.text == "true" || f.text == "1"), "bool differs");
      } else {
        std::int64_t seconds = 0;
        if (!ModelTime(f.text, seconds)) return false;
        if (column) Check(column->times[r] == seconds, "time differs");
      }
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  std::string text;
  if (data[0] < 128) text = "s:string,i:int,f:float,b:bool,t:time\n";
  text.append(reinterpret_cast<const char*>(data) + 1, size - 1);

  idxbase_tool::RecordTable table("Row");
  idxbase_tool::CsvRecords raw;
  idxbase_tool::CsvError error;
  const bool accepted = idxbase_tool::ReadCsvTable(text, table, &raw, error);
  std::vector<ModelRecord> records;
  // A UTF-8 byte order mark in front is not part of the header.
  const std::string_view unmarked =
      std::string_view(text).substr(text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0);
  const bool split = Split(unmarked, records);
  if (!accepted) {
    Check(error.line >= 1 && !error.message.empty(), "a refusal without line or message");
    Check(!split || !ModelAccepts(records, nullptr), "the reader refused what the model accepts");
    return 0;
  }
  Check(split, "the reader accepted a text the model cannot split");
  Check(table.rowCount() == static_cast<int>(records.size()) - 1, "row count differs");
  Check(ModelAccepts(records, &table), "the reader accepted what the model refuses");
  // Each record's text splits to that record's fields again.
  for (std::size_t row = 0; row < raw.records.size(); ++row) {
    std::vector<ModelRecord> again;
    Check(Split(raw.records[row], again) && again.size() <= 1, "a record's text does not split");
    if (!again.empty())
      Check(again[0].size() == records[row + 1].size(), "a record's text splits differently");
  }
  return 0;
}
