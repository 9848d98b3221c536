#include "support/stdout_capture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

namespace idxbase_test {

StdoutCapture::StdoutCapture() {
  std::fflush(stdout);
  savedStdout_ = dup(STDOUT_FILENO);
  int file = open(dir_.Join("stdout").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (savedStdout_ < 0 || file < 0 || dup2(file, STDOUT_FILENO) < 0) {
    ADD_FAILURE() << "cannot capture standard output";
  }
  if (file >= 0) close(file);
}

StdoutCapture::~StdoutCapture() {
  if (savedStdout_ >= 0) Finish();
}

std::string StdoutCapture::Finish() {
  std::fflush(stdout);
  if (savedStdout_ >= 0) {
    dup2(savedStdout_, STDOUT_FILENO);
    close(savedStdout_);
    savedStdout_ = -1;
  }
  return ReadFile(dir_.Join("stdout"));
}

}  // namespace idxbase_test
