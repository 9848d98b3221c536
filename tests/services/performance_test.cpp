#include "idxbase/performance.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <string>
#include <thread>

#include "idxbase_build_info.h"
#include "services/about_info.h"
#include "services/calendar_seconds.h"
#include "support/temp_dir.h"

namespace {

TEST(PerfTraceDeathTest, PreconditionsEndTheProcess) {
  EXPECT_DEATH(PLMIdxPerfTrace::OpenTrace(nullptr),
               R"(PLMIdxPerfTrace\(24\): AssertionFailed:pOutputFile)");
  EXPECT_DEATH(PLMIdxPerfTrace::Trace(nullptr),
               R"(PLMIdxPerfTrace\(66\): AssertionFailed:pStepName)");
  const std::string tooLong(1000, 's');
  EXPECT_DEATH(PLMIdxPerfTrace::Trace(tooLong.c_str(), 4u),
               R"(PLMIdxPerfTrace\(119\): AssertionFailed:len<1000)");
}

TEST(PerfTrace, OpensNothingAndTracesSilently) {
  idxbase_test::TempDir dir;
  const std::string path = dir.Join("perf.txt");
  EXPECT_FALSE(PLMIdxPerfTrace::OpenTrace(path.c_str()));
  EXPECT_FALSE(idxbase_test::FileExists(path));
  PLMIdxPerfTrace::Trace("step");
  PLMIdxPerfTrace::Trace(std::string(999, 's').c_str(), 4294967295u);
  PLMIdxPerfTrace::CloseTrace();
  EXPECT_FALSE(PLMIdxPerfTrace::OpenTrace(path.c_str()));
}

TEST(PerfTrace, GetMemInfoIsNotImplementedAndZeroesItsResults) {
  std::uint32_t first = 1, second = 2, third = 3;
  EXPECT_EQ(KOR_E_NOTIMPL, PLMIdxPerfTrace::GetMemInfo(first, second, third, 9));
  EXPECT_EQ(0u, first + second + third);
}

// Tolerances are wide: these check what is measured, not how fast.
// GetTime counts calendar seconds.
TEST(SearchTimer, SleepingCountsAsElapsedButNotAsCpuAndGetTimeAdvances) {
  PLMSearchTimer timer;
  EXPECT_EQ(0, timer.GetElapsed() + timer.GetCPU() + timer.GetCPUUser() + timer.GetCPUKernel());
  const unsigned int first = PLMSearchTimer::GetTime();
  timer.StartTimer();
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  timer.StopTimer();
  const unsigned int second = PLMSearchTimer::GetTime();
  EXPECT_GE(timer.GetElapsed(), 1090);
  EXPECT_LT(timer.GetElapsed(), 4000);
  EXPECT_LT(timer.GetCPU(), 150);
  EXPECT_GE(second - first, 1u);
  EXPECT_LE(second - first, 3u);
  PLMSearchTimer copy(timer);
  EXPECT_EQ(timer.GetElapsed(), copy.GetElapsed());
}

// The busy loop runs until the process has used 200 ms of CPU by its own
// clock, however loaded the machine, so the timer must report at least
// that much (less a tick of rounding).
TEST(SearchTimer, BusyWorkCountsAsCpu) {
  const auto cpuNow = [] {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec * 1000.0 + now.tv_nsec / 1e6;
  };
  PLMSearchTimer timer;
  timer.StartTimer();
  const double end = cpuNow() + 200;
  volatile unsigned sink = 0;
  while (cpuNow() < end) sink = sink + 1;
  timer.StopTimer();
  EXPECT_GE(timer.GetCPU(), 190);
  EXPECT_LE(timer.GetCPU(), timer.GetElapsed() + 50);
  EXPECT_EQ(timer.GetCPU(), timer.GetCPUUser() + timer.GetCPUKernel());
}

TEST(SearchTimer, CalendarSecondsCountEveryYearAs366Days) {
  using idxbase::detail::CalendarSeconds;
  EXPECT_EQ(86400u, CalendarSeconds(1970, 1, 0, 0, 0));
  EXPECT_EQ(86400u + 3600u + 120u + 3u, CalendarSeconds(1970, 1, 1, 2, 3));
  EXPECT_EQ((366u + 1u) * 86400u, CalendarSeconds(1971, 1, 0, 0, 0));
  // 2040: (70 * 366 + 1) * 86400 wraps modulo 2^32.
  EXPECT_EQ(static_cast<unsigned int>((70ull * 366 + 1) * 86400 % (1ull << 32)),
            CalendarSeconds(2040, 1, 0, 0, 0));
}

TEST(AboutInfo, ListsTheDayTheLevelTextAndTheFourNumbers) {
  KORListValKORUnicodeString info;
  info.Append("stale");
  KORLevelInfo level{5, 26, 3, 1, "2014-11-23.10.30"};
  idxbase::detail::FillAboutInfo(level, info);
  ASSERT_EQ(6, info.Size());
  const char* expected[] = {"23", "2014-11-23.10.30", "5", "26", "3", "1"};
  for (int i = 0; i < 6; ++i) EXPECT_STREQ(expected[i], info[i + 1].ConvertToChar());
  // Missing numbers read as zero.
  level.level = "2014-11";
  idxbase::detail::FillAboutInfo(level, info);
  EXPECT_STREQ("0", info[1].ConvertToChar());
  level.level = nullptr;
  idxbase::detail::FillAboutInfo(level, info);
  EXPECT_STREQ("0", info[1].ConvertToChar());
  EXPECT_STREQ("", info[2].ConvertToChar());
}

// The version and the stamp are the build facts that CMake wrote.
TEST(AboutInfo, DescribesThisBuild) {
  KORListValKORUnicodeString info;
  GetAboutInfo(info);
  ASSERT_EQ(6, info.Size());
  const std::string kNumbers[] = {std::to_string(IDXBASE_VERSION_MAJOR),
                                  std::to_string(IDXBASE_VERSION_MINOR),
                                  std::to_string(IDXBASE_VERSION_PATCH), "0"};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(kNumbers[i], info[i + 3].ConvertToChar());
  EXPECT_STREQ(IDXBASE_BUILD_STAMP, info[2].ConvertToChar());
  int year = 0, month = 0, day = 0, hour = 0, minute = 0;
  ASSERT_EQ(5, std::sscanf(info[2].ConvertToChar(), "%d-%d-%d.%d.%d", &year, &month, &day, &hour,
                           &minute));
  EXPECT_GE(year, 2024);
  EXPECT_TRUE(month >= 1 && month <= 12 && hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59);
  EXPECT_EQ(std::to_string(day), info[1].ConvertToChar());
}

}  // namespace
