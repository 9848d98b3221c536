// The tool's typed CSV reader: quoting, line ends, types, missing values
// and the line numbers of its errors.
#include "csv_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace idxbase_tool {
namespace {

TEST(CsvTable, ReadsQuotedFieldsLineEndsAndMissingValues) {
  const std::string text =
      "\r\nname:string,n:int,f:float,b:bool,t:time\r\n"
      "\"a, \"\"b\"\"\nc\",-7,2.5,true,2026-11-22\r\n"
      "\n"
      ",,,,\n"
      "\"\",2147483647,-1e-3,0,2026-11-22T10:30:00Z";
  RecordTable table("Row");
  CsvRecords raw;
  CsvError error;
  ASSERT_TRUE(ReadCsvTable(text, table, &raw, error)) << error.line << ": " << error.message;
  ASSERT_EQ(table.rowCount(), 3);
  EXPECT_EQ(raw.header, "name:string,n:int,f:float,b:bool,t:time");
  ASSERT_EQ(raw.records.size(), 3u);
  EXPECT_EQ(raw.records[0], "\"a, \"\"b\"\"\nc\",-7,2.5,true,2026-11-22");
  EXPECT_EQ(raw.records[2], "\"\",2147483647,-1e-3,0,2026-11-22T10:30:00Z");

  const TableColumn& name = table.column(0);
  EXPECT_EQ(name.strings[0], "a, \"b\"\nc");
  EXPECT_EQ(name.present[1], 0);  // empty: not available
  EXPECT_EQ(name.present[2], 1);  // quoted empty: the empty string
  EXPECT_EQ(name.strings[2], "");
  EXPECT_EQ(table.column(1).ints[0], -7);
  EXPECT_EQ(table.column(1).ints[2], 2147483647);
  EXPECT_FLOAT_EQ(table.column(2).floats[2], -0.001f);
  EXPECT_EQ(table.column(3).ints[0], 1);
  EXPECT_EQ(table.column(3).ints[2], 0);
  EXPECT_EQ(table.column(4).times[0], 1795305600);
  EXPECT_EQ(table.column(4).times[2], 1795305600 + 10 * 3600 + 30 * 60);
  for (int column = 1; column < 5; ++column) EXPECT_EQ(table.column(column).present[1], 0);

  // The schema names the columns in order, with the reader's pairs.
  BBDFilterAttribute attribute;
  ASSERT_TRUE(table.schema().Resolve("Row.f", attribute));
  EXPECT_EQ(attribute.pair.GetAttribute(), 2);
  EXPECT_EQ(attribute.valueType, IDX_Filter_Type_Float);
}

TEST(CsvTable, RefusesBadInputNamingTheLine) {
  const std::string kNotAName =
      "' is not a name a filter can use (letters, digits and _, not a keyword)";
  const std::string kNeedsAType =
      "' needs a type: name:string, name:int, name:float, name:bool or name:time";
  const struct {
    const char* text;
    int line;
    std::string message;
  } kCases[] = {
      {"", 1, "no header line"},
      {"a:int,b\n", 1, "header field 'b" + kNeedsAType},
      {"a:int,a:float\n", 1, "column 'a' appears twice"},
      {"1a:int\n", 1, "column name '1a" + kNotAName},
      {"x:int,In:int\n", 1, "column name 'In" + kNotAName},
      {"a.b:int\n", 1, "column name 'a.b" + kNotAName},
      {"a:integer\n", 1, "header field 'a:integer" + kNeedsAType},
      {"a:int,b:int\n1,2\n3\n", 3, "1 fields where the header has 2"},
      {"a:int\n 1\n", 2, "column 'a': ' 1' is not an int"},
      {"a:float\nnan\n", 2, "column 'a': 'nan' is not a finite float"},
      {"a:bool\nyes\n", 2, "column 'a': 'yes' is not a bool (true, false, 1, 0)"},
      {"a:time\n2026-02-30\n", 2,
       "column 'a': '2026-02-30' is not a time (YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS)"},
      {"a:string,b:int\n\"x\ny\nz\",1\n\"open\n", 5, "unterminated quoted field"},
      {"a:string\n\"x\"y\n", 2, "unexpected text after a closing quote"},
      {"a:string,b:int\n\"multi\nline\",1\nok,bad\n", 4, "column 'b': 'bad' is not an int"},
  };
  for (const auto& c : kCases) {
    RecordTable table("Row");
    CsvError error;
    EXPECT_FALSE(ReadCsvTable(c.text, table, nullptr, error)) << c.text;
    EXPECT_EQ(error.line, c.line) << c.text;
    EXPECT_EQ(error.message, c.message) << c.text;
  }
}

// Plain records are converted a column at a time; a bad value still stops
// the read at the first bad record in the file, whatever its column, and
// skipping leaves out that record alone.
TEST(CsvTable, AColumnWiseReadReportsTheFirstBadRecord) {
  std::string text = "a:int,b:int\n";
  for (int i = 0; i < 40; ++i) {
    const std::string n = std::to_string(i);
    text += i == 20 ? n + ",x\n" : i == 30 ? "y," + n + "\n" : n + "," + n + "\n";
  }
  RecordTable table("Row");
  CsvError error;
  EXPECT_FALSE(ReadCsvTable(text, table, nullptr, error));
  EXPECT_EQ(error.line, 22);
  EXPECT_EQ(error.message, "column 'b': 'x' is not an int");

  CsvReader reader(text);
  reader.SkipBadRows(true);
  std::vector<CsvColumnSpec> columns;
  CsvChunk chunk;
  ASSERT_TRUE(reader.ReadHeader(columns, error) && reader.ReadChunk(chunk, error));
  EXPECT_EQ(reader.badRows(), 2);
  EXPECT_EQ(reader.firstBadRow().line, 22);
  ASSERT_EQ(chunk.rows(), 38);
  for (std::int64_t row = 0; row < 38; ++row) {
    const int n = static_cast<int>(row + (row >= 20) + (row >= 29));
    EXPECT_EQ(chunk.columns[0].ints[static_cast<std::size_t>(row)], n);
    EXPECT_EQ(chunk.records[static_cast<std::size_t>(row)],
              std::to_string(n) + "," + std::to_string(n));
  }
}

}  // namespace
}  // namespace idxbase_tool
