#include "idxbase/trace.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <regex>
#include <string>

#include "support/stdout_capture.h"
#include "support/temp_dir.h"

namespace {

using idxbase_test::ReadFile;
using idxbase_test::StdoutCapture;
using idxbase_test::TempDir;

const char kStamp[] = R"(\[\d{4} (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) \d{2} )"
                      R"(\d{2}:\d{2}:\d{2}\])";

std::regex Lines(const std::string& body) { return std::regex(body); }

void DebugTo(const std::string& file, bool toStdout, const char* format, ...)
    IDXBASE_PRINTF(3, 4);
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
  IDX_Base_Trace::Dump_Impl(KORUnicodeString(base.c_str()), KORUnicodeString(suffix), format,
                            args);
  va_end(args);
}

TEST(Trace, DebugWritesOneStampedLine) {
  StdoutCapture capture;
  IDX_Base_Trace::Debug("x");
  EXPECT_TRUE(std::regex_match(capture.Finish(), Lines(std::string(kStamp) + "x\n")));
}

TEST(Trace, DebugImplWritesTheSameLineToStdoutAndAppendsToTheFile) {
  TempDir dir;
  const std::string file = dir.Join("trace.txt");
  StdoutCapture capture;
  DebugTo(file, true, "%s=%d", "count", 7);
  DebugTo(file, false, "%s=%d", "count", 8);
  const std::string stamped = kStamp;
  EXPECT_TRUE(std::regex_match(capture.Finish(), Lines(stamped + "count=7\n")));
  EXPECT_TRUE(std::regex_match(ReadFile(file),
                               Lines(stamped + "count=7\n" + stamped + "count=8\n")));
}

TEST(Trace, DebugImplWithoutFileOrStdoutWritesNothing) {
  StdoutCapture capture;
  DebugTo("", false, "nothing %d", 1);
  EXPECT_EQ("", capture.Finish());
}

TEST(Trace, UnopenableTraceFileIsReportedAfterTheStdoutLine) {
  TempDir dir;
  const std::string file = dir.Join("missing/trace.txt");
  StdoutCapture capture;
  DebugTo(file, true, "lost");
  EXPECT_TRUE(std::regex_match(
      capture.Finish(), Lines(std::string(kStamp) + "lost\nError opening file " + file + "\n")));
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

TEST(Trace, InfoCutsTheMessageAfter9999Bytes) {
  const std::string longMessage(12000, 'm');
  StdoutCapture capture;
  IDX_Base_Trace::Info("%s", longMessage.c_str());
  IDX_Base_Trace::Info("n=%d", 3);
  const std::string stamped = kStamp;
  EXPECT_TRUE(std::regex_match(capture.Finish(),
                               Lines(stamped + "m{9999}\n" + stamped + "n=3\n")));
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

TEST(TraceRedirect, NullPathDoesNothing) {
  StdoutCapture capture;
  EXPECT_EQ(0, IDX_Base_Trace::RedirectStdoutToTraces(nullptr));
  EXPECT_EQ("", capture.Finish());
}

TEST(TraceRedirect, UnopenableFileIsReported) {
  TempDir dir;
  const std::string path = dir.Join("missing/out.txt");
  StdoutCapture capture;
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
  EXPECT_TRUE(std::regex_search(content, std::regex("redirecting fd:\\d+  stderr to file " +
                                                    path + "\nredirecting stderr rc:2\n")))
      << content;
  EXPECT_NE(std::string::npos, content.find("result 1\nto stderr\n")) << content;
}

}  // namespace
