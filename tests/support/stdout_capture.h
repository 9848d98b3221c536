// Captures what the process writes to standard output (descriptor 1, so
// printf and direct writes alike) between construction and Finish.
#ifndef IDXBASE_TESTS_SUPPORT_STDOUT_CAPTURE_H_
#define IDXBASE_TESTS_SUPPORT_STDOUT_CAPTURE_H_

#include <string>

#include "support/temp_dir.h"

namespace idxbase_test {

class StdoutCapture {
 public:
  StdoutCapture();
  // Restores standard output if Finish was not called.
  ~StdoutCapture();
  StdoutCapture(const StdoutCapture&) = delete;
  StdoutCapture& operator=(const StdoutCapture&) = delete;

  // Restores standard output and returns everything written meanwhile.
  std::string Finish();

 private:
  TempDir dir_;
  int savedStdout_ = -1;
};

// What `action` writes on standard output.
template <typename Action>
std::string OutputOf(Action action) {
  StdoutCapture capture;
  action();
  return capture.Finish();
}

// `text` with the time stamp of the traces ("[2026 Nov 16 18:20:05]")
// removed from the start of each line, or of the first one only for one
// trace of several lines; a missing stamp is a failure.
std::string Unstamped(const std::string& text, bool firstLineOnly = false);

// What `action` writes on standard output: one trace, its stamp removed.
template <typename Action>
std::string TraceOf(Action action) {
  return Unstamped(OutputOf(action), true);
}

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_SUPPORT_STDOUT_CAPTURE_H_
