// idxbase flags and names: the switch table under a controlled
// environment, as a table and as JSON, and the index names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tool_runner.h"

namespace idxbase_test {
namespace {

using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> Words(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream stream(line);
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// One environment read by both forms: the table, and JSON with one object
// a line for each row of the table (ToolFlagsJsonIsValid parses the whole).
TEST(FlagsCommand, TableAndJsonGiveVariableRuleDefaultAndValue) {
  const Env env = {{"IDXFastCV", "NO"},
                   {"IDXQueryMaxDuration", "30"},
                   {"IDX_MaxMemorySizeForBuilderInMB", "5000"},
                   {"KORIndexStoragePath", "/data/\"x\"\\y"},
                   {"IDXEvalAllAtMaybe", ""}};
  const ChildResult table = RunTool({"flags"}, env);
  const ChildResult json = RunTool({"flags", "--json"}, env);
  ASSERT_EQ(0, table.exitCode) << table.output;
  ASSERT_EQ(0, json.exitCode) << json.output;
  const std::vector<std::string> lines = Lines(table.output);
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(Words(lines[0]), ElementsAre("NAME", "VARIABLE", "RULE", "DEFAULT", "VALUE"));
  // Columns are aligned: every row starts its variable where the header does.
  const std::size_t variableColumn = lines[0].find("VARIABLE");
  for (const std::string& line : lines) {
    EXPECT_NE(' ', line[variableColumn]) << line;
    EXPECT_EQ(' ', line[variableColumn - 1]) << line;
  }
  EXPECT_THAT(table.output, ContainsRegex("\n_FastCV +IDXFastCV +switch +true +false\n"));
  EXPECT_THAT(table.output, ContainsRegex("\nQueryTimerMilliSecond\\(\\) +IDXQueryMaxDuration "
                                          "+seconds +0 +30000\n"));
  EXPECT_THAT(table.output, ContainsRegex("\nisPlmIndexDisabled\\(\\) +PLM_INDEX_DISABLED "
                                          "+defined, per call +false +false\n"));

  const char* const kObjects[] = {
      R"j({"name": "MaxMemorySizeForBuilderInMB()", "variable": )j"
      R"j("IDX_MaxMemorySizeForBuilderInMB", "rule": "number", "default": 7000, "value": 5000})j",
      R"j({"name": "getKORIndexStoragePath()", "variable": "KORIndexStoragePath", )j"
      R"j("rule": "text, per call", "default": null, "value": "/data/\"x\"\\y"})j",
      R"j({"name": "EvalAllAtMaybe()", "variable": "IDXEvalAllAtMaybe", "rule": "defined", )j"
      R"j("default": false, "value": true})j",
      R"j({"name": "RunWithCVServlet()", "variable": )j"
      R"j("RUN_WITH_CVSERVLET,IDXKeepPreviousGeneration", "rule": "not-NO, per call")j",
  };
  for (const char* object : kObjects) {
    EXPECT_THAT(json.output, HasSubstr(std::string("\n  ") + object));
  }
  EXPECT_EQ(lines.size() - 1, Lines(json.output).size() - 2);
}

TEST(NamesCommand, PrintsNameValueLines) {
  ChildResult run = RunTool({"names"});
  ASSERT_EQ(0, run.exitCode) << run.output;
  const std::vector<std::string> lines = Lines(run.output);
  EXPECT_EQ("SYNCHRO_INDEX_FILE_DIR_NAME IndexSynchro", lines.front());
  EXPECT_EQ("CHECKSUM_FILENAME checksum.txt", lines.back());
  for (const std::string& line : lines) EXPECT_EQ(2u, Words(line).size()) << line;

  ChildResult all = RunTool({"names", "--all"});
  ASSERT_EQ(0, all.exitCode) << all.output;
  EXPECT_THAT(all.output, StartsWith(run.output));
  EXPECT_THAT(all.output, HasSubstr("\nBEGINIDXSTEP ##BEGINIDXSTEP\n"));
  EXPECT_THAT(all.output, HasSubstr("\nMD5_BUFFERS_SIZE 1048576\n"));
}

}  // namespace
}  // namespace idxbase_test
