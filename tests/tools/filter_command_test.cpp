// idxbase filter and idxbase demo, run as a user runs them: results on
// generated CSV files checked against the same conditions computed here,
// the options, and the errors.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tool_runner.h"

namespace idxbase_test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct Row {
  std::optional<std::string> name;
  std::optional<double> mass;  // quarters: exact as floats
  std::optional<int> count;
  std::optional<bool> released;
  std::optional<int> day;  // of November 2026
};

constexpr char kHeader[] = "name:string,mass:float,count:int,released:bool,modified:time";

std::string Line(const Row& row) {
  char mass[32] = "";
  if (row.mass) std::snprintf(mass, sizeof mass, "%.2f", *row.mass);
  char day[32] = "";
  if (row.day) std::snprintf(day, sizeof day, "2026-11-%02dT12:00:00", *row.day);
  return row.name.value_or("") + "," + mass + "," + (row.count ? std::to_string(*row.count) : "") +
         "," + (row.released ? (*row.released ? "true" : "false") : "") + "," + day;
}

std::vector<Row> RandomRows(int n) {
  std::mt19937 random(11);
  static const char* const kNames[] = {"bolt", "Bolt", "nut", "washer", "gear"};
  std::vector<Row> rows(n);
  for (Row& row : rows) {
    if (random() % 10 != 0)
      row.name = std::string(kNames[random() % 5]) + std::to_string(random() % 10);
    if (random() % 10 != 0) row.mass = static_cast<double>(random() % 40) / 4;
    if (random() % 10 != 0) row.count = static_cast<int>(random() % 30) - 10;
    if (random() % 10 != 0) row.released = random() % 2 == 0;
    if (random() % 10 != 0) row.day = static_cast<int>(random() % 30) + 1;
  }
  return rows;
}

class FilterCommand : public ToolTest {
 protected:
  std::string WriteRows(const std::vector<Row>& rows) {
    std::string text = std::string(kHeader) + "\n";
    for (const Row& row : rows) text += Line(row) + "\n";
    return Write("rows.csv", text);
  }
};

// Every case reads the file through a pipe on standard input.
TEST_F(FilterCommand, PrintsExactlyTheRowsWhereTheFilterHolds) {
  const std::vector<Row> rows = RandomRows(300);
  const std::string csv = WriteRows(rows);
  const std::pair<const char*, bool (*)(const Row&)> kCases[] = {
      {"mass > 2.5 AND released = true",
       [](const Row& r) { return r.mass && r.released && *r.mass > 2.5 && *r.released; }},
      {"name LIKE 'olt' OR count IN {1 2 3}",
       [](const Row& r) {
         return (r.name && r.name->find("olt") != std::string::npos) ||
                (r.count && *r.count >= 1 && *r.count <= 3);
       }},
      {"count BETWEEN -2 AND 4 AND NOT mass >= 5",
       [](const Row& r) {
         return r.count && r.mass && *r.count >= -2 && *r.count <= 4 && !(*r.mass >= 5);
       }},
      {"modified < @2026-11-10 | name = \"nut3\"",
       [](const Row& r) { return (r.day && *r.day < 10) || (r.name && *r.name == "nut3"); }},
  };
  for (const auto& [filter, holds] : kCases) {
    std::string expected = std::string(kHeader) + "\n";
    for (const Row& row : rows) {
      if (holds(row)) expected += Line(row) + "\n";
    }
    const ChildResult result =
        RunShell("cat \"$2\" | \"$0\" filter --where \"$1\" -", {filter, csv});
    EXPECT_EQ(result.exitCode, 0) << filter;
    EXPECT_EQ(result.output, expected) << filter;
  }
}

TEST_F(FilterCommand, CountsExplainsVariablesAndCase) {
  const std::string header = std::string(kHeader) + "\n";
  const std::string csv =
      Write("five.csv", header + "Bolt,,0,,\nbolt,,1,,\nnut,,2,,\n,,3,,\nBOLT,,4,,\n");
  const std::string filterFile = Write("filter.txt", "count >= 3\n  AND count <> 4\n");
  ExpectRuns({
      {{"filter", "--count", "--where", "name = 'bolt'", csv},
       0,
       "1 holds, 3 does not hold, 1 undecidable, of 5 records\n"},
      {{"filter", "--count", "--case-insensitive", "--where", "name = 'bolt'", csv},
       0,
       "3 holds, 1 does not hold, 1 undecidable, of 5 records\n"},
      {{"filter", "--explain", "--var", "who=nut", "--where", "name = $who AND count > 1", csv},
       0,
       "filter: (Row.name = $who AND Row.count > 1)\n" + header + "nut,,2,,\n"},
      {{"filter", "--file", filterFile, csv}, 0, header + ",,3,,\n"},
      {{"filter", "--where", "count > 10", csv}, 1, header},  // no record matches
      {{"filter", "--where", "count > 2.5", csv},
       2,
       "idxbase filter: the filter does not parse: line 1, column 1: type mismatch: 'count' is "
       "an integer but '2.5' is a float\ncount > 2.5\n^\n"},
      {{"filter", "--where", "name = $nobody", csv}, 2, HasSubstr("unknown variable '$nobody'")},
      {{"filter", csv}, 2, HasSubstr("usage: idxbase filter")},
      {{"filter", "--where", "a=1"}, 2, HasSubstr("usage: idxbase filter")},
      {{"filter", "--where", "a=1", "--file", "f", csv}, 2, HasSubstr("usage: idxbase filter")},
      {{"filter", "--var", "x", "--where", "a=1", csv}, 2, HasSubstr("usage: idxbase filter")},
  });
}

// Records as written, odd ones included, and the errors of bad files,
// each naming its file and line: a bad record stops the run after the
// records before it, unless --skip-bad leaves it out.
TEST_F(FilterCommand, PrintsRecordsAsWrittenAndNamesBadOnes) {
  const std::string nul(1, '\0');
  const std::string nulCsv = Write("nul.csv", "name:string,n:int\n" + ("a" + nul + "b,1\n") +
                                                  "ab,2\n" + ("\"q" + nul + "\",3\n"));
  const std::string bom = Write("bom.csv", "\xEF\xBB\xBFname:string,n:int\nbolt,1\nnut,2\n");
  const std::string bad = Write("bad.csv", "a:int,b:float\n1,2\n\"x\ny\",3\n4,5x\n");
  const std::string skip = Write("skip.csv", "a:int,b:string\n1,x\nnope,y\n1\n\"q\"z,1\n1,w\n");
  const std::string longField = Write("long.csv", "n:int\n1\n" + std::string(2000000, '7') + "x\n");
  const std::string plain = Write("plain.csv", "name,mass,count,released\nbolt,1.5,3,true\n");
  const std::string error = "idxbase filter: ";
  ExpectRuns({
      {{"filter", "--where", "mass >= 1.25 AND modified >= @2026-10-01",
        std::string(IDXBASE_SOURCE_DIR) + "/examples/data/parts.csv"},
       0,
       "name:string,mass:float,count:int,released:bool,modified:time\n"
       "\"bracket, left\",1.250,12,true,2026-10-11T14:00:00\n"
       "\"bracket, right\",1.250,12,,2026-10-11T14:00:00\n"
       "housing,12.400,1,true,2026-11-20T09:15:00\n"},
      // NUL bytes are bytes of a record like any other.
      {{"filter", "--where", "name LIKE 'b'", nulCsv},
       0,
       "name:string,n:int\n" + ("a" + nul + "b,1\n") + "ab,2\n"},
      {{"filter", "--where", "n = 2", bom}, 0, "name:string,n:int\nnut,2\n"},
      {{"filter", "--where", "a = 1", bad},
       1,
       "a:int,b:float\n1,2\n" + error + bad + ": line 3: column 'a': 'x\ny' is not an int\n"},
      {{"filter", "--skip-bad", "--where", "a = 1", skip},
       0,
       "a:int,b:string\n1,x\n1,w\n" + error + skip +
           ": skipped 3 bad records; the first, at line 3: column 'a': 'nope' is not an int\n"},
      {{"filter", "--count", "--where", "n = 1", longField},
       1,
       error + longField + ": line 3: column 'n': '" + std::string(60, '7') +
           "...' (2000001 bytes) is not an int\n"},
      {{"filter", "--where", "count = 3", plain},
       1,
       error + plain +
           ": line 1: the header gives no column types: write each column as name:type, with "
           "type one of string, int, float, bool, time (e.g. "
           "name:string,mass:string,count:string,...)\n"},
      {{"filter", "--where", "a = 1", Path("missing.csv")},
       1,
       StartsWith(error + Path("missing.csv") + ": ")},
  });
}

// The data streams: a record too long to hold is refused, naming its line,
// after the records before it.
TEST_F(FilterCommand, RefusesARecordOver64MiBNamingItsLine) {
  const ChildResult result = RunShell(
      "{ echo n:string; echo ok; head -c 70000000 /dev/zero | tr '\\0' a; echo; } | "
      "\"$0\" filter --where 'n = \"ok\"' -",
      {});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output,
            "n:string\nok\nidxbase filter: standard input: line 3: a record longer than 64 MiB "
            "starts here; records that long are not read\n");
}

// --explain writes filter text on standard error, which reads back as
// --where and selects the same records: sets, times, quotes, variables.
TEST_F(FilterCommand, ExplainedFilterReadsBack) {
  const std::string csv = WriteRows(RandomRows(300));
  for (const char* where :
       {"count IN {1 2 3} OR modified BETWEEN @2026-11-03 AND @2026-11-20T06:00:00",
        "NOT (name IN {'nut3', \"say \"\"hi\"\"\", $who} OR mass >= 2) AND released <> false",
        "name LIKE 'olt' AND NOT name NOT LIKE 'B' OR mass IN {2.5, 3, 0.25}"}) {
    const ChildResult explained = RunShell(
        "\"$0\" filter --explain --count --var who=gear1 --where \"$1\" \"$2\" 2>&1 >/dev/null",
        {where, csv});
    ASSERT_EQ(explained.output.rfind("filter: ", 0), 0u) << explained.output;
    const std::string text = explained.output.substr(8, explained.output.size() - 9);
    const ChildResult original = RunTool({"filter", "--var", "who=gear1", "--where", where, csv});
    const ChildResult readBack = RunTool({"filter", "--var", "who=gear1", "--where", text, csv});
    EXPECT_EQ(readBack.output, original.output) << text;
    EXPECT_GT(std::count(original.output.begin(), original.output.end(), '\n'), 1) << where;
  }
}

// The demo's report: every filter answered for every part, with both
// timings, and the filter that does not parse shown with its error.
TEST(DemoCommand, ReportsEveryFilterOverEveryPart) {
  for (const std::string rows : {"20000", "1000000"}) {
    const ChildResult result =
        rows == "1000000" ? RunTool({"demo"}) : RunTool({"demo", "--rows", rows});
    ASSERT_EQ(result.exitCode, 0) << result.output;
    EXPECT_THAT(result.output, StartsWith(rows + " parts: name:string, mass:float, count:int, "
                                                 "released:bool, modified:time\n"));
    EXPECT_THAT(result.output, HasSubstr("line 1, column 1: type mismatch"));
    int filters = 0, compiled = 0, speeds = 0;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
      long holds = 0, doesNot = 0, undecidable = 0;
      double byRecord = 0, byColumn = 0;
      int end = 0;
      if (std::sscanf(line.c_str(), "  holds %ld, does not hold %ld, undecidable %ld%n", &holds,
                      &doesNot, &undecidable, &end) == 3 &&
          end == static_cast<int>(line.size())) {
        ++filters;
        EXPECT_EQ(holds + doesNot + undecidable, std::stol(rows));
        EXPECT_GT(holds, 0) << line;
      }
      compiled += line.rfind("  compiled      ( ", 0) == 0 ? 1 : 0;
      end = 0;
      if (std::sscanf(line.c_str(),
                      "  %lf ns/record one at a time, %lf ns/record column-at-a-time%n", &byRecord,
                      &byColumn, &end) == 2 &&
          end == static_cast<int>(line.size()) && byRecord > 0 && byColumn > 0) {
        ++speeds;
      }
    }
    EXPECT_EQ(filters, 6);
    EXPECT_EQ(compiled, 6);
    EXPECT_EQ(speeds, 6);
  }
  EXPECT_EQ(RunTool({"demo", "--rows", "0"}).exitCode, 2);
}

}  // namespace
}  // namespace idxbase_test
