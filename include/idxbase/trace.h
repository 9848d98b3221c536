// Time-stamped traces, dump files, redirection of the standard streams and
// the names of the monitor directories.
#ifndef IDXBASE_TRACE_H_
#define IDXBASE_TRACE_H_

#include <cstdarg>

#include "idxbase/export.h"
#include "idxbase/kor_string.h"

// The library's trace facility. All operations are static.
//
// A trace line is the local time stamp "[%Y %b %d %H:%M:%S]" (for example
// "[2026 Nov 16 18:20:05]", C-locale month names) directly followed by the
// message and "\n". Standard output is flushed after every line, and a
// trace file is opened for appending and closed again by every call, so
// lines are never lost when the process dies. A file that cannot be opened
// is reported as "Error opening file <name>" on standard output; no
// operation fails otherwise.
//
// Threads: no lock is taken; lines of concurrent calls may interleave.
// SetReportBaseDir is meant to run before other threads read the monitor
// directory.
class IDXBASE_API IDX_Base_Trace {
 public:
  IDX_Base_Trace& operator=(const IDX_Base_Trace&) { return *this; }
  IDX_Base_Trace& operator=(IDX_Base_Trace&&) noexcept { return *this; }

  // One trace line on standard output.
  static void Debug(const char* format, ...) IDXBASE_PRINTF(1, 2);
  // One trace line on standard output when `toStdout`, and appended to
  // `file` when it is not empty.
  static void Debug_Impl(KORUnicodeString file, const char* format, va_list args, bool toStdout)
      IDXBASE_PRINTF(2, 0);
  // Appends the formatted text, with neither time stamp nor line end, to
  // the file base + "." + suffix.
  static void Dump_Impl(KORUnicodeString base, KORUnicodeString suffix, const char* format,
                        va_list args) IDXBASE_PRINTF(3, 0);
  // One trace line on standard output; the message is cut after 9999
  // bytes.
  static void Info(const char* format, ...) IDXBASE_PRINTF(1, 2);

  // Sends standard output and standard error of the process to the file
  // `path`, created or emptied, for the rest of the process; progress is
  // reported on standard output. 1 on success; 0 for a null path or a file
  // that cannot be opened. The results of redirecting each stream are
  // reported as "rc:<n>" but do not change the result.
  static int RedirectStdoutToTraces(const char* path);

  // Sets the monitor directory to directory + "/" + "BBDMonitor"; an empty
  // `directory` leaves it unchanged.
  static void SetReportBaseDir(const KORUnicodeString& directory);
  // The monitor directory: the one set by SetReportBaseDir, or else
  // base + "/" + "BBDMonitor".
  static void GetBBDMonitorDir(const KORUnicodeString& base, KORUnicodeString& result);
  // Its sibling check directory: the monitor directory followed by
  // "Check", or else base + "/" + "BBDMonitorCheck".
  static void GetBBDMonitorCheckDir(const KORUnicodeString& base, KORUnicodeString& result);

 private:
  static KORUnicodeString m_BBDMonitorDir;
};

#endif  // IDXBASE_TRACE_H_
