#include "idxbase/trace.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>

#include "support/stdout_capture.h"
#include "support/temp_dir.h"

namespace {

using idxbase_test::ReadFile;
using idxbase_test::StdoutCapture;
using idxbase_test::TempDir;

// True when `line` starts with a time stamp such as "[2026 Nov 16 18:20:05]".
bool StartsWithStamp(const std::string& line) {
  const std::string shape = "[dddd Mmm dd dd:dd:dd]";
  if (line.size() < shape.size()) return false;
  for (size_t i = 0; i < shape.size(); ++i) {
    const bool digit = std::isdigit(static_cast<unsigned char>(line[i])) != 0;
    if (shape[i] == 'd' ? !digit : shape[i] != 'M' && shape[i] != 'm' && line[i] != shape[i]) {
      return false;
    }
  }
  const std::size_t month =
      std::string("JanFebMarAprMayJunJulAugSepOctNovDec").find(line.substr(6, 3));
  return month != std::string::npos && month % 3 == 0;
}

// The text with the time stamp removed from the start of every line; a
// line without a stamp is a failure.
std::string Unstamped(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(StartsWithStamp(line)) << "no time stamp: " << line;
    result += (StartsWithStamp(line) ? line.substr(22) : line) + "\n";
  }
  return result;
}

void DebugTo(const std::string& file, bool toStdout, const char* format, ...) IDXBASE_PRINTF(3, 4);
void DebugTo(const std::string& file, bool toStdout, const char* format, ...) {
  va_list args;
  va_start(args, format);
  IDX_Base_Trace::Debug_Impl(KORUnicodeString(file.c_str()), format, args, toStdout);
  va_end(args);
}

void DumpTo(const std::string& base, const char* suffix, const char* format, ...)
    IDXBASE_PRINTF(3, 4);
void DumpTo(const std::string& base, const char* suffix, const char* format, ...) {
  va_list args;
  va_start(args, format);
  IDX_Base_Trace::Dump_Impl(KORUnicodeString(base.c_str()), KORUnicodeString(suffix), format, args);
  va_end(args);
}

TEST(Trace, DebugWritesOneStampedLine) {
  StdoutCapture capture;
  IDX_Base_Trace::Debug("x");
  const std::string out = capture.Finish();
  EXPECT_EQ("x\n", Unstamped(out));
  EXPECT_EQ(24u, out.size());
}

TEST(Trace, DebugImplWritesTheSameLineToStdoutAndAppendsToTheFile) {
  TempDir dir;
  const std::string file = dir.Join("trace.txt");
  StdoutCapture capture;
  DebugTo(file, true, "%s=%d", "count", 7);
  DebugTo(file, false, "%s=%d", "count", 8);
  DebugTo("", false, "nothing %d", 1);
  EXPECT_EQ("count=7\n", Unstamped(capture.Finish()));
  EXPECT_EQ("count=7\ncount=8\n", Unstamped(ReadFile(file)));
}

TEST(Trace, UnopenableTraceFileIsReportedAfterTheStdoutLine) {
  TempDir dir;
  const std::string file = dir.Join("missing/trace.txt");
  StdoutCapture capture;
  DebugTo(file, true, "lost");
  const std::string out = capture.Finish();
  const std::string error = "Error opening file " + file + "\n";
  ASSERT_GT(out.size(), error.size());
  EXPECT_EQ(error, out.substr(out.size() - error.size()));
  EXPECT_EQ("lost\n", Unstamped(out.substr(0, out.size() - error.size())));
}

TEST(Trace, DumpAppendsTheBareTextToBaseDotSuffix) {
  TempDir dir;
  const std::string base = dir.Join("trace");
  DumpTo(base, "log", "a=%d;", 1);
  DumpTo(base, "log", "b=%s", "two");
  EXPECT_EQ("a=1;b=two", ReadFile(base + ".log"));

  StdoutCapture capture;
  DumpTo(dir.Join("missing/trace"), "log", "x");
  EXPECT_EQ("Error opening file " + dir.Join("missing/trace") + ".log\n", capture.Finish());
}

// The message goes out as bytes: a cut inside a multi-byte character and
// bytes that are not UTF-8 are written unchanged.
TEST(Trace, InfoWritesTheMessageBytesCutAfter9999) {
  const std::string longMessage(12000, 'm');
  const std::string cutCharacter = std::string(9998, 'm') + "\xC3\xA9";
  StdoutCapture capture;
  IDX_Base_Trace::Info("%s", longMessage.c_str());
  IDX_Base_Trace::Info("n=%d", 3);
  IDX_Base_Trace::Info("%s", cutCharacter.c_str());
  IDX_Base_Trace::Info("caf\xE9");
  EXPECT_EQ(std::string(9999, 'm') + "\nn=3\n" + std::string(9998, 'm') + "\xC3\ncaf\xE9\n",
            Unstamped(capture.Finish()));
}

// The monitor directory is process state that is never cleared, so the
// whole life cycle is one test.
TEST(Trace, MonitorDirectoriesFollowTheReportBase) {
  KORUnicodeString dir;
  KORUnicodeString check;
  IDX_Base_Trace::GetBBDMonitorDir("/idx", dir);
  IDX_Base_Trace::GetBBDMonitorCheckDir("/idx", check);
  EXPECT_STREQ("/idx/BBDMonitor", dir.ConvertToChar());
  EXPECT_STREQ("/idx/BBDMonitorCheck", check.ConvertToChar());

  IDX_Base_Trace::SetReportBaseDir("/rep");
  IDX_Base_Trace::SetReportBaseDir("");
  IDX_Base_Trace::GetBBDMonitorDir("/idx", dir);
  IDX_Base_Trace::GetBBDMonitorCheckDir("/other", check);
  EXPECT_STREQ("/rep/BBDMonitor", dir.ConvertToChar());
  EXPECT_STREQ("/rep/BBDMonitorCheck", check.ConvertToChar());
}

TEST(TraceRedirect, NullPathDoesNothingAndUnopenableFileIsReported) {
  TempDir dir;
  const std::string path = dir.Join("missing/out.txt");
  StdoutCapture capture;
  EXPECT_EQ(0, IDX_Base_Trace::RedirectStdoutToTraces(nullptr));
  EXPECT_EQ(0, IDX_Base_Trace::RedirectStdoutToTraces(path.c_str()));
  EXPECT_EQ("redirecting output to file (1) [" + path + "].\nError opening file " + path + "\n",
            capture.Finish());
}

// The redirection lasts for the rest of the process, so it runs in a child.
TEST(TraceRedirect, SendsBothStreamsToTheFile) {
  TempDir dir;
  const std::string path = dir.Join("out.txt");
  idxbase_test::WriteFile(path, "old content\n");
  EXPECT_EXIT(
      {
        const int result = IDX_Base_Trace::RedirectStdoutToTraces(path.c_str());
        std::printf("result %d\n", result);
        std::fflush(stdout);
        std::fprintf(stderr, "to stderr\n");
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
  const std::string content = ReadFile(path);
  EXPECT_EQ(std::string::npos, content.find("old content"));
  EXPECT_NE(std::string::npos, content.find("redirecting stdout rc:1\n")) << content;
  EXPECT_NE(std::string::npos,
            content.find("  stderr to file " + path + "\nredirecting stderr rc:2\n"))
      << content;
  EXPECT_NE(std::string::npos, content.find("result 1\nto stderr\n")) << content;
}

}  // namespace
