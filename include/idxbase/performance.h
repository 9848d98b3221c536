// Measuring and identifying a run of the engine: the performance trace
// interface, the search timer and the about information.
#ifndef IDXBASE_PERFORMANCE_H_
#define IDXBASE_PERFORMANCE_H_

#include <cstdint>
#include <cstdio>

#include "idxbase/export.h"
#include "idxbase/kor_collections.h"
#include "idxbase/kor_types.h"

// The step-by-step performance trace. In this library it checks its
// arguments and keeps track of an output file but opens none and writes
// nothing. All operations are static; no lock is taken.
//
// A violated precondition ends the process through KORFatalError with the
// message "AssertionFailed:<condition>" and the source name
// "PLMIdxPerfTrace".
class IDXBASE_API PLMIdxPerfTrace {
 public:
  PLMIdxPerfTrace& operator=(const PLMIdxPerfTrace&) { return *this; }
  PLMIdxPerfTrace& operator=(PLMIdxPerfTrace&&) noexcept { return *this; }

  // Requires: path != nullptr. True when a trace output file is open (never
  // here: `path` is not opened).
  static bool OpenTrace(const char* path);
  // Requires: step != nullptr. Writes nothing.
  static void Trace(const char* step);
  // Requires: step != nullptr and strlen(step) < 1000. Builds the label
  // "<step>_<count>";
  // writes nothing.
  static void Trace(const char* step, unsigned int count);
  // Closes the output file if one is open and forgets it.
  static void CloseTrace();
  // Sets the three results to 0 and returns KOR_E_NOTIMPL (0x80004001);
  // the last argument is ignored.
  static KORStatus GetMemInfo(std::uint32_t& first, std::uint32_t& second, std::uint32_t& third,
                              int);

 private:
  static FILE* _pOut;
};

// Measures one interval: elapsed milliseconds (tick count) and the user
// and kernel CPU milliseconds of the whole process (all threads).
//
// A plain value: copies take every field. One thread at a time per object.
// StopTimer may be called several times after one StartTimer; each call
// measures from the same start. CPU differences use the full 64-bit counts,
// so they do not wrap for long intervals.
class IDXBASE_API PLMSearchTimer {
 public:
  PLMSearchTimer() = default;
  PLMSearchTimer(const PLMSearchTimer&) = default;
  PLMSearchTimer& operator=(const PLMSearchTimer&) = default;
  virtual ~PLMSearchTimer();

  void StartTimer();
  void StopTimer();

  int GetElapsed() const { return m_Elapsed; }
  int GetCPUUser() const { return m_CPUUser; }
  int GetCPUKernel() const { return m_CPUKernel; }
  int GetCPU() const { return m_CPUUser + m_CPUKernel; }

  // A seconds count of the current local date and time in which every year
  // has 366 days: ((year - 1970) * 366 + day of year) * 86400 + hour * 3600
  // + minute * 60 + second, modulo 2^32. It increases with time and serves
  // to subtract times; it is not a calendar epoch count.
  static unsigned int GetTime();

 private:
  int m_Elapsed = 0;
  int m_CPUUser = 0;
  int m_CPUKernel = 0;
  std::uint64_t m_KernelStart = 0;  // 100 ns units
  std::uint64_t m_UserStart = 0;    // 100 ns units
  std::uint32_t m_TickStart = 0;    // milliseconds
};

// Replaces the content of `info` with six strings describing this build:
// the day of the build stamp, the build stamp "year-month-day.hour.minute"
// itself, then the major, minor and patch versions and the hot-fix number.
IDXBASE_API void GetAboutInfo(KORListValKORUnicodeString& info);

#endif  // IDXBASE_PERFORMANCE_H_
