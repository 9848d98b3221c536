// Runs the built idxbase tool for the tool tests: a fixture with a
// temporary directory and a helper that runs "idxbase <arguments>".
#ifndef IDXBASE_TESTS_TOOLS_TOOL_RUNNER_H_
#define IDXBASE_TESTS_TOOLS_TOOL_RUNNER_H_

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/temp_dir.h"

namespace idxbase_test {

using Env = std::map<std::string, std::string>;

// Runs the tool with `arguments` and, besides `env`, a PATH for the
// commands that the lock tests run.
inline ChildResult RunTool(const std::vector<std::string>& arguments, Env env = {}) {
  std::vector<std::string> argv = {BuiltProgram("tools/idxbase")};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  env.emplace("PATH", "/usr/bin:/bin");
  return RunChild(argv, env);
}

class ToolTest : public ::testing::Test {
 protected:
  std::string Path(const std::string& name) const { return dir_.Join(name); }

  TempDir dir_;
};

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_TOOLS_TOOL_RUNNER_H_
