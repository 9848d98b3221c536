// idxbase filter and idxbase demo, run as a user runs them: results on
// generated CSV files checked against the same conditions computed here,
// the options, and the errors.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <random>
#include <sstream>
#include <string>
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
    WriteFile(Path("rows.csv"), text);
    return Path("rows.csv");
  }
};

TEST_F(FilterCommand, PrintsExactlyTheRowsWhereTheFilterHolds) {
  const std::vector<Row> rows = RandomRows(300);
  const std::string csv = WriteRows(rows);
  using Holds = std::function<bool(const Row&)>;
  const struct {
    const char* filter;
    Holds holds;
  } kCases[] = {
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
  for (const auto& c : kCases) {
    std::string expected = std::string(kHeader) + "\n";
    for (const Row& row : rows) {
      if (c.holds(row)) expected += Line(row) + "\n";
    }
    const ChildResult result = RunTool({"filter", "--where", c.filter, csv});
    EXPECT_EQ(result.exitCode, 0) << c.filter;
    EXPECT_EQ(result.output, expected) << c.filter;
  }
}

TEST_F(FilterCommand, CountsExplainsVariablesAndCase) {
  std::vector<Row> rows(5);
  const char* const kNames[] = {"Bolt", "bolt", "nut", "", "BOLT"};
  for (int i = 0; i < 5; ++i) {
    if (*kNames[i] != '\0') rows[i].name = kNames[i];
    rows[i].count = i;
  }
  const std::string csv = WriteRows(rows);
  ChildResult result = RunTool({"filter", "--count", "--where", "name = 'bolt'", csv});
  EXPECT_EQ(result.output, "1 holds, 3 does not hold, 1 undecidable, of 5 records\n");
  result = RunTool({"filter", "--count", "--case-insensitive", "--where", "name = 'bolt'", csv});
  EXPECT_EQ(result.output, "3 holds, 1 does not hold, 1 undecidable, of 5 records\n");
  result = RunTool(
      {"filter", "--explain", "--var", "who=nut", "--where", "name = $who AND count > 1", csv});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, std::string("filter: (Row.name = $who AND Row.count > 1)\n") + kHeader +
                               "\n" + Line(rows[2]) + "\n");
  WriteFile(Path("filter.txt"), "count >= 3\n  AND count <> 4\n");
  result = RunTool({"filter", "--file", Path("filter.txt"), csv});
  EXPECT_EQ(result.output, std::string(kHeader) + "\n" + Line(rows[3]) + "\n");
  result = RunTool({"filter", "--where", "count > 10", csv});
  EXPECT_EQ(result.exitCode, 1);  // no record matches
  EXPECT_EQ(result.output, std::string(kHeader) + "\n");
}

TEST_F(FilterCommand, ReadsTheShippedExample) {
  const std::string example = std::string(IDXBASE_SOURCE_DIR) + "/examples/data/parts.csv";
  const ChildResult result =
      RunTool({"filter", "--where", "mass >= 1.25 AND modified >= @2026-10-01", example});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output,
            "name:string,mass:float,count:int,released:bool,modified:time\n"
            "\"bracket, left\",1.250,12,true,2026-10-11T14:00:00\n"
            "\"bracket, right\",1.250,12,,2026-10-11T14:00:00\n"
            "housing,12.400,1,true,2026-11-20T09:15:00\n");
}

TEST_F(FilterCommand, ReportsBadFiltersAndFilesClearly) {
  const std::string csv = WriteRows(RandomRows(3));
  ChildResult result = RunTool({"filter", "--where", "count > 2.5", csv});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.output,
            "idxbase filter: the filter does not parse: line 1, column 1: type mismatch: 'count' "
            "is an integer but '2.5' is a float\ncount > 2.5\n^\n");
  result = RunTool({"filter", "--where", "name = $nobody", csv});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.output, HasSubstr("unknown variable '$nobody'"));

  // The records before a bad one are printed; the run stops at it.
  WriteFile(Path("bad.csv"), "a:int,b:float\n1,2\n\"x\ny\",3\n4,5x\n");
  result = RunTool({"filter", "--where", "a = 1", Path("bad.csv")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "a:int,b:float\n1,2\nidxbase filter: " + Path("bad.csv") +
                               ": line 3: column 'a': 'x\ny' is not an int\n");
  result = RunTool({"filter", "--where", "a = 1", Path("missing.csv")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, StartsWith("idxbase filter: " + Path("missing.csv") + ": "));
  for (const std::vector<std::string>& usage : {std::vector<std::string>{"filter", csv},
                                                {"filter", "--where", "a=1"},
                                                {"filter", "--where", "a=1", "--file", "f", csv},
                                                {"filter", "--var", "x", "--where", "a=1", csv}}) {
    EXPECT_EQ(RunTool(usage).exitCode, 2) << usage.back();
  }
}

// Runs `script` with sh, $0 being the tool and $1... `arguments`.
ChildResult RunShell(const std::string& script, const std::vector<std::string>& arguments) {
  std::vector<std::string> argv = {"/bin/sh", "-c", script, BuiltProgram("tools/idxbase")};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return RunChild(argv, {{"PATH", "/usr/bin:/bin"}});
}

TEST_F(FilterCommand, ReadsStandardInputFromAPipe) {
  const std::vector<Row> rows = RandomRows(200);
  const std::string csv = WriteRows(rows);
  const std::string where = "count > 3 AND name LIKE 'olt'";
  const ChildResult fromFile = RunTool({"filter", "--where", where, csv});
  const ChildResult fromPipe =
      RunShell("cat \"$2\" | \"$0\" filter --where \"$1\" -", {where, csv});
  EXPECT_EQ(fromPipe.exitCode, 0);
  EXPECT_EQ(fromPipe.output, fromFile.output);
  EXPECT_GT(std::count(fromPipe.output.begin(), fromPipe.output.end(), '\n'), 2);
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

TEST_F(FilterCommand, PrintsRecordsHoldingNulBytesWhole) {
  const std::string nul(1, '\0');
  WriteFile(Path("nul.csv"),
            "name:string,n:int\n" + ("a" + nul + "b,1\n") + "ab,2\n" + ("\"q" + nul + "\",3\n"));
  const ChildResult result = RunTool({"filter", "--where", "name LIKE 'b'", Path("nul.csv")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "name:string,n:int\n" + ("a" + nul + "b,1\n") + "ab,2\n");
}

TEST_F(FilterCommand, SkipsAByteOrderMark) {
  WriteFile(Path("bom.csv"), "\xEF\xBB\xBFname:string,n:int\nbolt,1\nnut,2\n");
  const ChildResult result = RunTool({"filter", "--where", "n = 2", Path("bom.csv")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "name:string,n:int\nnut,2\n");
}

TEST_F(FilterCommand, ShortensALongBadFieldInItsMessage) {
  WriteFile(Path("long.csv"), "n:int\n1\n" + std::string(2000000, '7') + "x\n");
  const ChildResult result = RunTool({"filter", "--count", "--where", "n = 1", Path("long.csv")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "idxbase filter: " + Path("long.csv") + ": line 3: column 'n': '" +
                               std::string(60, '7') + "...' (2000001 bytes) is not an int\n");
}

TEST_F(FilterCommand, SkipBadCountsBadRecordsAndGoesOn) {
  WriteFile(Path("bad.csv"), "a:int,b:string\n1,x\nnope,y\n1\n\"q\"z,1\n1,w\n");
  const ChildResult result = RunTool({"filter", "--skip-bad", "--where", "a = 1", Path("bad.csv")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "a:int,b:string\n1,x\n1,w\nidxbase filter: " + Path("bad.csv") +
                               ": skipped 3 bad records; the first, at line 3: column 'a': 'nope' "
                               "is not an int\n");
}

TEST_F(FilterCommand, ExplainsHowToTypeAPlainHeader) {
  WriteFile(Path("plain.csv"), "name,mass,count,released\nbolt,1.5,3,true\n");
  const ChildResult result = RunTool({"filter", "--where", "count = 3", Path("plain.csv")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "idxbase filter: " + Path("plain.csv") +
                               ": line 1: the header gives no column types: write each column as "
                               "name:type, with type one of string, int, float, bool, time (e.g. "
                               "name:string,mass:string,count:string,...)\n");
}

// --explain writes filter text on standard error, which reads back as
// --where and selects the same records: sets, times, quotes, variables.
TEST_F(FilterCommand, ExplainedFilterReadsBack) {
  const std::vector<Row> rows = RandomRows(300);
  const std::string csv = WriteRows(rows);
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

// The demo's report: every filter answered for every part.
TEST(DemoCommand, ReportsEveryFilterOverEveryPart) {
  for (const char* rows : {"20000", "1000000"}) {
    std::vector<std::string> arguments{"demo"};
    if (std::string(rows) != "1000000") arguments.insert(arguments.end(), {"--rows", rows});
    const ChildResult result = RunTool(arguments);
    ASSERT_EQ(result.exitCode, 0) << result.output;
    std::istringstream lines(result.output);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, std::string(rows) +
                        " parts: name:string, mass:float, count:int, released:bool, modified:time");
    int filters = 0, compiled = 0, speeds = 0;
    while (std::getline(lines, line)) {
      long holds = 0, doesNot = 0, undecidable = 0;
      int consumed = 0;
      if (std::sscanf(line.c_str(), "  holds %ld, does not hold %ld, undecidable %ld%n", &holds,
                      &doesNot, &undecidable, &consumed) == 3 &&
          consumed == static_cast<int>(line.size())) {
        ++filters;
        EXPECT_EQ(holds + doesNot + undecidable, std::stol(rows));
        EXPECT_GT(holds, 0) << line;
      }
      compiled += line.rfind("  compiled      ( ", 0) == 0 ? 1 : 0;
      double byRecord = 0, byColumn = 0;
      consumed = 0;
      if (std::sscanf(line.c_str(),
                      "  %lf ns/record one at a time, %lf ns/record column-at-a-time%n", &byRecord,
                      &byColumn, &consumed) == 2 &&
          consumed == static_cast<int>(line.size()) && byRecord > 0 && byColumn > 0) {
        ++speeds;
      }
    }
    EXPECT_EQ(filters, 6);
    EXPECT_EQ(compiled, 6);
    EXPECT_EQ(speeds, 6);
    EXPECT_THAT(result.output, HasSubstr("line 1, column 1: type mismatch"));
  }
  EXPECT_EQ(RunTool({"demo", "--rows", "0"}).exitCode, 2);
}

}  // namespace
}  // namespace idxbase_test
