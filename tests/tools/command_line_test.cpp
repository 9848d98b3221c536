// The tool's command dispatch, help and usage errors, and its argument
// helpers.
#include "command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_runner.h"

namespace idxbase_test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const char* const kCommands[] = {"about", "checksum", "flags",  "islocked",
                                 "lock",  "names",    "version"};

TEST(ToolCommandLine, HelpForEveryCommand) {
  ChildResult list = RunTool({"help"});
  EXPECT_EQ(0, list.exitCode);
  for (const std::string command : kCommands) {
    EXPECT_THAT(list.output, HasSubstr("\n  " + command + " ")) << command;
    ChildResult help = RunTool({"help", command});
    EXPECT_EQ(0, help.exitCode) << help.output;
    EXPECT_THAT(help.output, StartsWith("usage: idxbase " + command));
    EXPECT_EQ(help.output, RunTool({command, "--help"}).output);
  }
}

TEST(ToolCommandLine, UsageErrorsExitWithTwo) {
  const struct {
    std::vector<std::string> arguments;
    std::string message;
  } cases[] = {
      {{}, "usage: idxbase <command>"},
      {{"frobnicate"}, "idxbase: unknown command 'frobnicate'"},
      {{"help", "frobnicate"}, "idxbase: unknown command 'frobnicate'"},
      {{"help", "lock", "flags"}, "idxbase help: give one command name"},
      {{"about", "extra"}, "idxbase about: takes no arguments"},
      {{"flags", "--jsn"}, "idxbase flags: unknown option '--jsn'"},
      {{"flags", "--json=yes"}, "idxbase flags: unknown option '--json=yes'"},
      {{"names", "x"}, "idxbase names: takes no operands"},
      {{"checksum"}, "idxbase checksum: no file given"},
      {{"checksum", "--verify", "x"}, "idxbase checksum: unknown option '--verify'"},
      {{"checksum", "-j", "0", "x"}, "idxbase checksum: -j takes a number of files above 0"},
      {{"version", "x"}, "idxbase version: takes no arguments"},
  };
  for (const auto& c : cases) {
    ChildResult run = RunTool(c.arguments);
    EXPECT_EQ(2, run.exitCode) << c.message << ": " << run.output;
    EXPECT_THAT(run.output, HasSubstr(c.message));
  }
}

TEST(ToolCommandLine, AboutAndVersionPrintTheVersion) {
  ChildResult about = RunTool({"about"});
  EXPECT_EQ(0, about.exitCode);
  EXPECT_THAT(about.output, testing::MatchesRegex("idxbase [0-9]+\\.[0-9]+\\.[0-9]+, built .+\n"));
  // The tool's version is the library's it runs with.
  const std::string version = about.output.substr(0, about.output.find(','));
  for (const char* argument : {"--version", "version"}) {
    ChildResult run = RunTool({argument});
    EXPECT_EQ(0, run.exitCode) << argument;
    EXPECT_EQ(version + "\n", run.output) << argument;
  }
}

TEST(ParseArguments, SortsOptionsOperandsAndTheRest) {
  const idxbase_tool::CommandHelp help{"test", "", ""};
  std::string texts[] = {"a", "--owner=5", "-",  "-q",      "--owner", "7",
                         "b", "-j4",       "--", "--quiet", "c"};
  std::vector<char*> argv;
  for (std::string& text : texts) argv.push_back(text.data());
  idxbase_tool::ParsedArguments parsed;
  ASSERT_TRUE(idxbase_tool::ParseArguments(
      help, static_cast<int>(argv.size()), argv.data(),
      {{"--owner", true}, {"--quiet", false, "-q"}, {"--jobs", true, "-j"}}, parsed));
  EXPECT_FALSE(parsed.help);
  EXPECT_STREQ("7", parsed.Value("--owner"));
  EXPECT_STREQ("4", parsed.Value("--jobs"));
  EXPECT_TRUE(parsed.Has("--quiet"));
  EXPECT_FALSE(parsed.Has("--check"));
  ASSERT_EQ(3u, parsed.operands.size());
  EXPECT_STREQ("-", parsed.operands[1]);
  EXPECT_STREQ("b", parsed.operands[2]);
  EXPECT_TRUE(parsed.sawSeparator);
  ASSERT_EQ(2u, parsed.rest.size());
  EXPECT_STREQ("--quiet", parsed.rest[0]);
}

TEST(ParseInt, TakesWholeIntsOnly) {
  const struct {
    const char* text;
    bool valid;
    int value;
  } cases[] = {
      {"0", true, 0},
      {"-12", true, -12},
      {"2147483647", true, 2147483647},
      {"-2147483648", true, -2147483647 - 1},
      {"2147483648", false, 0},
      {"", false, 0},
      {" 1", false, 0},
      {"+1", false, 0},
      {"1 ", false, 0},
      {"0x10", false, 0},
      {"abc", false, 0},
  };
  for (const auto& c : cases) {
    int value = 0;
    EXPECT_EQ(c.valid, idxbase_tool::ParseInt(c.text, value)) << c.text;
    EXPECT_EQ(c.valid ? c.value : 0, value) << c.text;
  }
}

}  // namespace
}  // namespace idxbase_test
