// Reading a typed CSV file into a RecordTable.
//
// The header names and types the columns, "name:type" with type one of
// string, int, float, bool, time ("name:string,mass:float,count:int").
// Fields follow RFC 4180: separated by commas, optionally in double
// quotes, where a doubled quote stands for one and commas and line ends
// are kept. Records end with "\n" or "\r\n"; blank lines are skipped.
//
// Values: int and float in decimal (a float is finite), bool as true,
// false, 1 or 0, time as an ISO date or date and time in UTC
// (2026-11-22 or 2026-11-22T10:30:00). An empty field is "not available";
// a quoted empty field ("") of a string column is the empty string.
#ifndef IDXBASE_TOOLS_CSV_TABLE_H_
#define IDXBASE_TOOLS_CSV_TABLE_H_

#include <string>
#include <string_view>
#include <vector>

#include "record_table.h"

namespace idxbase_tool {

struct CsvError {
  int line = 0;  // from 1
  std::string message;
};

// The text of the header and of each data record, without line ends:
// views into the text read.
struct CsvRecords {
  std::string_view header;
  std::vector<std::string_view> records;
};

// Reads `text` into `table` (which has no columns yet) and, when `raw` is
// not null, the records' text. False with `error` set on the first fault;
// the table is then incomplete and should be dropped.
bool ReadCsvTable(std::string_view text, RecordTable& table, CsvRecords* raw, CsvError& error);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_CSV_TABLE_H_
