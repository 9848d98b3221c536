// Runs programs in child processes: to completion with an environment of
// the test's choosing, collecting what they write, or in the background.
#ifndef IDXBASE_TESTS_SUPPORT_CHILD_PROCESS_H_
#define IDXBASE_TESTS_SUPPORT_CHILD_PROCESS_H_

#include <sys/types.h>

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

// `argv[0]` started with arguments `argv` and this process's environment,
// writing its standard output and standard error to the file `log`, with
// `descriptor3` (unless -1) as its descriptor 3. Killed, if it still runs,
// and reaped when the object goes away.
class RunningChild {
 public:
  RunningChild(const std::vector<std::string>& argv, const std::string& log, int descriptor3 = -1);
  ~RunningChild() { Kill(); }
  RunningChild(const RunningChild&) = delete;
  RunningChild& operator=(const RunningChild&) = delete;

  pid_t pid() const { return pid_; }
  // Kills and reaps the child; false when it had ended by itself.
  bool Kill();
  // Waits for the child: its exit code, or 128 + the signal that ended it.
  int Wait();

 private:
  pid_t pid_ = -1;  // -1 once reaped
};

// The path of a program built in this build tree (from the test's
// IDXBASE_TEST_BINARY_DIR variable).
std::string BuiltProgram(const std::string& relativePath);

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_SUPPORT_CHILD_PROCESS_H_
