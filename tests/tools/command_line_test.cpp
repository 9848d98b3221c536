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
using ::testing::MatchesRegex;
using ::testing::StartsWith;

const char* const kCommands[] = {"about",    "checksum", "demo",  "filter", "flags",
                                 "islocked", "lock",     "names", "version"};

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
  ExpectRuns({
      {{}, 2, HasSubstr("usage: idxbase <command>")},
      {{"frobnicate"}, 2, HasSubstr("idxbase: unknown command 'frobnicate'")},
      {{"help", "frobnicate"}, 2, HasSubstr("idxbase: unknown command 'frobnicate'")},
      {{"help", "lock", "flags"}, 2, HasSubstr("idxbase help: give one command name")},
      {{"about", "extra"}, 2, HasSubstr("idxbase about: takes no arguments")},
      {{"flags", "--jsn"}, 2, HasSubstr("idxbase flags: unknown option '--jsn'")},
      {{"flags", "--json=yes"}, 2, HasSubstr("idxbase flags: unknown option '--json=yes'")},
      {{"names", "x"}, 2, HasSubstr("idxbase names: takes no operands")},
      {{"checksum"}, 2, HasSubstr("idxbase checksum: no file given")},
      {{"checksum", "-j", "0", "x"},
       2,
       HasSubstr("idxbase checksum: -j takes a number of files above 0")},
      {{"version", "x"}, 2, HasSubstr("idxbase version: takes no arguments")},
  });
}

// The tool's version is the library's it runs with.
TEST(ToolCommandLine, AboutAndVersionPrintTheVersion) {
  const ChildResult about = RunTool({"about"});
  EXPECT_EQ(0, about.exitCode);
  EXPECT_THAT(about.output, MatchesRegex("idxbase [0-9]+\\.[0-9]+\\.[0-9]+, built .+\n"));
  const std::string version = about.output.substr(0, about.output.find(',')) + "\n";
  ExpectRuns({{{"--version"}, 0, version}, {{"version"}, 0, version}});
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
  for (const int expected : {0, -12, 2147483647, -2147483647 - 1}) {
    int value = 1;
    EXPECT_TRUE(idxbase_tool::ParseInt(std::to_string(expected).c_str(), value)) << expected;
    EXPECT_EQ(expected, value);
  }
  for (const char* text : {"2147483648", "-2147483649", "", " 1", "+1", "1 ", "0x10", "abc"}) {
    int value = 1;
    EXPECT_FALSE(idxbase_tool::ParseInt(text, value)) << text;
    EXPECT_EQ(1, value) << text;
  }
}

}  // namespace
}  // namespace idxbase_test
