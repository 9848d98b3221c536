#include "idxbase/trace.h"

#include <cstdio>

#include "idxbase/kor_system.h"
#include "idxbase/kor_time.h"
#include "idxbase/settings.h"

KORUnicodeString IDX_Base_Trace::m_BBDMonitorDir;

namespace {

constexpr char kTimeStampFormat[] = "[%Y %b %d %H:%M:%S]";
constexpr char kLineEnd[] = "\n";
constexpr int kInfoBufferSize = 10000;

KORUnicodeString TimeStamp() { return KORTime().ConvertToString(kTimeStampFormat, 0); }

const KORUnicodeString& MonitorDirName() {
  static const KORUnicodeString name("BBDMonitor");
  return name;
}

const KORUnicodeString& MonitorCheckDirName() {
  static const KORUnicodeString name("BBDMonitorCheck");
  return name;
}

KORUnicodeString Under(const KORUnicodeString& base, const KORUnicodeString& name) {
  return base + IDX_Base_Constants::PATH_SEPARATOR_STR + name;
}

// Opens `name` for appending, or reports that it cannot.
FILE* OpenForAppend(const KORUnicodeString& name) {
  FILE* file = std::fopen(name.ConvertToChar(), "ab+");
  if (file == nullptr) std::printf("Error opening file %s\n", name.ConvertToChar());
  return file;
}

void CloseFlushed(FILE* file) {
  std::fflush(file);
  std::fclose(file);
}

}  // namespace

void IDX_Base_Trace::Debug(const char* format, ...) {
  va_list args;
  va_start(args, format);
  Debug_Impl(KORUnicodeString(), format, args, true);
  va_end(args);
}

void IDX_Base_Trace::Debug_Impl(KORUnicodeString file, const char* format, va_list args,
                                bool toStdout) {
  const bool toFile = file.GetLengthInChar() > 0;
  if (!toStdout && !toFile) return;
  const KORUnicodeString stamp = TimeStamp();
  if (toStdout) {
    va_list copy;
    va_copy(copy, args);
    std::fputs(stamp.ConvertToChar(), stdout);
    std::vfprintf(stdout, format, copy);
    std::fputs(kLineEnd, stdout);
    std::fflush(stdout);
    va_end(copy);
  }
  if (!toFile) return;
  FILE* out = OpenForAppend(file);
  if (out == nullptr) return;
  std::fputs(stamp.ConvertToChar(), out);
  std::vfprintf(out, format, args);
  std::fputs(kLineEnd, out);
  CloseFlushed(out);
}

void IDX_Base_Trace::Dump_Impl(KORUnicodeString base, KORUnicodeString suffix, const char* format,
                               va_list args) {
  FILE* out = OpenForAppend(base + "." + suffix);
  if (out == nullptr) return;
  std::vfprintf(out, format, args);
  CloseFlushed(out);
}

// The message is written as bytes, as Debug writes it: a cut inside a
// multi-byte character, or text that is not UTF-8, reaches the output
// unchanged instead of being rewritten by a Unicode string.
void IDX_Base_Trace::Info(const char* format, ...) {
  const KORUnicodeString stamp = TimeStamp();
  char message[kInfoBufferSize];
  va_list args;
  va_start(args, format);
  std::vsnprintf(message, sizeof message, format, args);
  va_end(args);
  std::fputs(stamp.ConvertToChar(), stdout);
  std::fputs(message, stdout);
  std::fputs(kLineEnd, stdout);
  std::fflush(stdout);
}

int IDX_Base_Trace::RedirectStdoutToTraces(const char* path) {
  if (path == nullptr) return 0;
  std::printf("redirecting output to file (1) [%s].\n", path);
  std::fflush(stdout);
  FILE* file = std::fopen(path, "wb+");
  if (file == nullptr) {
    std::printf("Error opening file %s\n", path);
    return 0;
  }
  const int fd = fileno(file);
  if (fd == -1) return 0;
  std::printf("redirecting fd:%d output to file %s\n", fd, path);
  std::printf("redirecting stdout rc:%d\n", KORDuplicateDescriptor(fd, fileno(stdout)));
  std::printf("redirecting fd:%d  stderr to file %s\n", fd, path);
  std::printf("redirecting stderr rc:%d\n", KORDuplicateDescriptor(fd, fileno(stderr)));
  std::fflush(stdout);
  // The file stays open: its descriptor now serves both standard streams.
  return 1;
}

void IDX_Base_Trace::SetReportBaseDir(const KORUnicodeString& directory) {
  if (directory.GetLengthInChar() > 0) m_BBDMonitorDir = Under(directory, MonitorDirName());
}

void IDX_Base_Trace::GetBBDMonitorDir(const KORUnicodeString& base, KORUnicodeString& result) {
  result = m_BBDMonitorDir.GetLengthInChar() > 0 ? m_BBDMonitorDir : Under(base, MonitorDirName());
}

void IDX_Base_Trace::GetBBDMonitorCheckDir(const KORUnicodeString& base, KORUnicodeString& result) {
  result = m_BBDMonitorDir.GetLengthInChar() > 0 ? m_BBDMonitorDir + "Check"
                                                 : Under(base, MonitorCheckDirName());
}
