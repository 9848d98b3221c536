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

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_SUPPORT_STDOUT_CAPTURE_H_
