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

// The table row of switch `name`, split into its columns.
std::vector<std::string> Row(const std::string& table, const std::string& name) {
  for (const std::string& line : Lines(table)) {
    if (line.compare(0, name.size() + 1, name + " ") == 0) return Words(line);
  }
  return {};
}

// The JSON object of switch `name`: the text between its braces.
std::string JsonObject(const std::string& json, const std::string& name) {
  const std::size_t at = json.find("{\"name\": \"" + name + "\"");
  if (at == std::string::npos) return "";
  return json.substr(at, json.find('}', at) - at + 1);
}

TEST(FlagsCommand, TableGivesVariableRuleDefaultAndValue) {
  ChildResult run = RunTool({"flags"}, {{"IDXFastCV", "NO"}, {"IDXQueryMaxDuration", "30"}});
  ASSERT_EQ(0, run.exitCode) << run.output;
  const std::vector<std::string> lines = Lines(run.output);
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(Words(lines[0]), ElementsAre("NAME", "VARIABLE", "RULE", "DEFAULT", "VALUE"));
  // Columns are aligned: every row starts its variable where the header does.
  const std::size_t variableColumn = lines[0].find("VARIABLE");
  for (const std::string& line : lines) {
    EXPECT_NE(' ', line[variableColumn]) << line;
    EXPECT_EQ(' ', line[variableColumn - 1]) << line;
  }
  EXPECT_THAT(Row(run.output, "_FastCV"),
              ElementsAre("_FastCV", "IDXFastCV", "switch", "true", "false"));
  EXPECT_THAT(
      Row(run.output, "QueryTimerMilliSecond()"),
      ElementsAre("QueryTimerMilliSecond()", "IDXQueryMaxDuration", "seconds", "0", "30000"));
  EXPECT_THAT(Row(run.output, "isPlmIndexDisabled()"),
              ElementsAre("isPlmIndexDisabled()", "PLM_INDEX_DISABLED", "defined,", "per", "call",
                          "false", "false"));
}

TEST(FlagsCommand, JsonGivesTypedValues) {
  ChildResult run = RunTool({"flags", "--json"}, {{"IDX_MaxMemorySizeForBuilderInMB", "5000"},
                                                  {"KORIndexStoragePath", "/data/\"x\"\\y"},
                                                  {"IDXEvalAllAtMaybe", ""}});
  ASSERT_EQ(0, run.exitCode) << run.output;
  EXPECT_THAT(run.output, StartsWith("[\n  {"));
  EXPECT_THAT(run.output, testing::EndsWith("}\n]\n"));
  EXPECT_EQ(
      "{\"name\": \"MaxMemorySizeForBuilderInMB()\", \"variable\": "
      "\"IDX_MaxMemorySizeForBuilderInMB\", \"rule\": \"number\", \"default\": 7000, \"value\": "
      "5000}",
      JsonObject(run.output, "MaxMemorySizeForBuilderInMB()"));
  EXPECT_THAT(JsonObject(run.output, "getKORIndexStoragePath()"),
              HasSubstr("\"default\": null, \"value\": \"/data/\\\"x\\\"\\\\y\"}"));
  EXPECT_THAT(JsonObject(run.output, "EvalAllAtMaybe()"),
              HasSubstr("\"default\": false, \"value\": true}"));
  EXPECT_THAT(JsonObject(run.output, "RunWithCVServlet()"),
              HasSubstr("\"variable\": \"RUN_WITH_CVSERVLET,IDXKeepPreviousGeneration\""));

  // One object per table row.
  const std::size_t rows = Lines(RunTool({"flags"}).output).size() - 1;
  EXPECT_EQ(rows, Lines(run.output).size() - 2);
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
