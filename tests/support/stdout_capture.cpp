#include "support/stdout_capture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace idxbase_test {
namespace {

// True when `line` starts with a time stamp such as "[2026 Nov 16 18:20:05]".
// Checked by hand: std::regex trips g++'s maybe-uninitialized warning in
// the sanitizer builds.
bool StartsWithStamp(const std::string& line) {
  static const char kShape[] = "[#### ... ## ##:##:##]";  // # a digit, ... the month
  if (line.size() < sizeof kShape - 1) return false;
  for (std::size_t k = 0; k < sizeof kShape - 1; ++k) {
    const char c = line[k];
    const bool fits = kShape[k] == '#' ? c >= '0' && c <= '9' : kShape[k] == '.' || c == kShape[k];
    if (!fits) return false;
  }
  const std::string months = "JanFebMarAprMayJunJulAugSepOctNovDec";
  const std::size_t at = months.find(line.substr(6, 3));
  return at != std::string::npos && at % 3 == 0;
}

}  // namespace

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

std::string Unstamped(const std::string& text, bool firstLineOnly) {
  std::string result;
  for (std::size_t start = 0, end = 0; start < text.size(); start = end) {
    end = std::min(text.find('\n', start), text.size() - 1) + 1;
    std::string line = text.substr(start, end - start);
    if (start == 0 || !firstLineOnly) {
      if (StartsWithStamp(line)) {
        line.erase(0, 22);
      } else {
        ADD_FAILURE() << "no time stamp: " << line;
      }
    }
    result += line;
  }
  return result;
}

}  // namespace idxbase_test
