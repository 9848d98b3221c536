// Runs a program in a child process with an environment of the test's
// choosing and collects what it writes.
#ifndef IDXBASE_TESTS_SUPPORT_CHILD_PROCESS_H_
#define IDXBASE_TESTS_SUPPORT_CHILD_PROCESS_H_

#include <map>
#include <string>
#include <vector>

namespace idxbase_test {

struct ChildResult {
  int exitCode = -1;   // the exit status, or -1 when the child did not exit
  int signal = 0;      // the signal that ended the child, or 0
  std::string output;  // standard output and standard error, interleaved
};

// Runs `argv[0]` with arguments `argv` and exactly the variables of `env`
// (nothing is inherited), and waits for it to end.
ChildResult RunChild(const std::vector<std::string>& argv,
                     const std::map<std::string, std::string>& env);

// The path of a program built in this build tree (from the test's
// IDXBASE_TEST_BINARY_DIR variable).
std::string BuiltProgram(const std::string& relativePath);

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_SUPPORT_CHILD_PROCESS_H_
