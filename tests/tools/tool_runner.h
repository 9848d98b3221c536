// Runs the built idxbase tool for the tool tests: a fixture with a
// temporary directory, helpers that run "idxbase <arguments>" directly or
// from a shell script, and a table runner for runs judged by their exit
// status and output.
#ifndef IDXBASE_TESTS_TOOLS_TOOL_RUNNER_H_
#define IDXBASE_TESTS_TOOLS_TOOL_RUNNER_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/temp_dir.h"

namespace idxbase_test {

using Env = std::map<std::string, std::string>;

// Runs `prefix`, the tool and `arguments` with, besides `env`, a PATH for
// the commands that the tests run.
inline ChildResult RunTool(const std::vector<std::string>& arguments, Env env = {},
                           std::vector<std::string> prefix = {}) {
  prefix.push_back(BuiltProgram("tools/idxbase"));
  prefix.insert(prefix.end(), arguments.begin(), arguments.end());
  env.emplace("PATH", "/usr/bin:/bin");
  return RunChild(prefix, env);
}

// Runs `script` with sh, $0 being the tool and $1... `arguments`.
inline ChildResult RunShell(const std::string& script, const std::vector<std::string>& arguments) {
  std::vector<std::string> argv = {"/bin/sh", "-c", script, BuiltProgram("tools/idxbase")};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return RunChild(argv, {{"PATH", "/usr/bin:/bin"}});
}

// A run of the tool and what it must give: its exit status, and its
// standard output and standard error together (a string matches the
// whole; HasSubstr and the like match a part).
struct ToolRun {
  std::vector<std::string> arguments;
  int exitCode;
  ::testing::Matcher<const std::string&> output;
};

// Runs each of `runs` under timeout(1), so that a run that blocks fails
// with status 124 instead of hanging the test.
inline void ExpectRuns(const std::vector<ToolRun>& runs) {
  for (const ToolRun& run : runs) {
    std::string shown = "idxbase";
    for (const std::string& argument : run.arguments) shown += " " + argument;
    SCOPED_TRACE(shown);
    const ChildResult result = RunTool(run.arguments, {}, {"/usr/bin/timeout", "20"});
    EXPECT_EQ(run.exitCode, result.exitCode) << result.output;
    EXPECT_THAT(result.output, run.output);
  }
}

class ToolTest : public ::testing::Test {
 protected:
  std::string Path(const std::string& name) const { return dir_.Join(name); }
  // Writes file `name` of the directory; its path.
  std::string Write(const std::string& name, const std::string& content) const {
    WriteFile(Path(name), content);
    return Path(name);
  }

  TempDir dir_;
};

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_TOOLS_TOOL_RUNNER_H_
