#include "idxbase/trace.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "support/stdout_capture.h"
#include "support/temp_dir.h"

namespace {

using idxbase_test::OutputOf;
using idxbase_test::ReadFile;
using idxbase_test::TempDir;
using idxbase_test::Unstamped;

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

// Debug starts each line with its own time stamp and gives the file the
// same lines; Dump appends the bare text to <base>.<suffix>.
TEST(Trace, DebugWritesStampedLinesAndDumpAppendsTheBareText) {
  TempDir dir;
  const std::string file = dir.Join("trace.txt");
  EXPECT_EQ("x\ncount=7\n", Unstamped(OutputOf([&] {
              IDX_Base_Trace::Debug("x");
              DebugTo(file, true, "%s=%d", "count", 7);
              DebugTo(file, false, "%s=%d", "count", 8);
              DebugTo("", false, "nothing %d", 1);
            })));
  EXPECT_EQ("count=7\ncount=8\n", Unstamped(ReadFile(file)));
  DumpTo(dir.Join("trace"), "log", "a=%d;", 1);
  DumpTo(dir.Join("trace"), "log", "b=%s", "two");
  EXPECT_EQ("a=1;b=two", ReadFile(dir.Join("trace.log")));
}

// Reported on standard output, after the trace line itself.
TEST(Trace, UnopenableFilesAreReported) {
  TempDir dir;
  const std::string missing = dir.Join("missing/trace");
  const std::string error = "Error opening file " + missing;
  const std::string out = OutputOf([&] { DebugTo(missing, true, "lost"); });
  const std::size_t firstLine = out.find('\n') + 1;
  EXPECT_EQ("lost\n", Unstamped(out.substr(0, firstLine)));
  EXPECT_EQ(error + "\n", out.substr(firstLine));
  EXPECT_EQ(error + ".log\n", OutputOf([&] { DumpTo(missing, "log", "x"); }));
  EXPECT_EQ("redirecting output to file (1) [" + missing + "].\n" + error + "\n", OutputOf([&] {
              EXPECT_EQ(0, IDX_Base_Trace::RedirectStdoutToTraces(nullptr));
              EXPECT_EQ(0, IDX_Base_Trace::RedirectStdoutToTraces(missing.c_str()));
            }));
}

// The message goes out as bytes: a cut inside a multi-byte character and
// bytes that are not UTF-8 are written unchanged.
TEST(Trace, InfoWritesTheMessageBytesCutAfter9999) {
  const std::string longMessage(12000, 'm');
  const std::string cutCharacter = std::string(9998, 'm') + "\xC3\xA9";
  EXPECT_EQ(std::string(9999, 'm') + "\nn=3\n" + std::string(9998, 'm') + "\xC3\ncaf\xE9\n",
            Unstamped(OutputOf([&] {
              IDX_Base_Trace::Info("%s", longMessage.c_str());
              IDX_Base_Trace::Info("n=%d", 3);
              IDX_Base_Trace::Info("%s", cutCharacter.c_str());
              IDX_Base_Trace::Info("caf\xE9");
            })));
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
