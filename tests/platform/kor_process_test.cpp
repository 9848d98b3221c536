#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <cstdint>

#include "idxbase/kor_system.h"

namespace {

TEST(KORSysIsProcessAlive, TellsLiveFromReapedAndInvalid) {
  EXPECT_EQ(1, KORSysIsProcessAlive(static_cast<unsigned int>(getpid()), 0));
  EXPECT_EQ(1, KORSysIsProcessAlive(1, 0));  // exists; maybe another user's
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(0);
  ASSERT_EQ(child, waitpid(child, nullptr, 0));
  EXPECT_EQ(0, KORSysIsProcessAlive(static_cast<unsigned int>(child), 0));
  EXPECT_EQ(0, KORSysIsProcessAlive(0, 0));
  // As a pid_t these would be negative: process groups.
  EXPECT_EQ(0, KORSysIsProcessAlive(static_cast<unsigned int>(INT_MAX) + 1u, 0));
  EXPECT_EQ(0, KORSysIsProcessAlive(UINT_MAX, 0));
}

TEST(KORFatalErrorDeathTest, PrintsWhereAndWhyThenAborts) {
  EXPECT_DEATH(KORFatalError("boom", nullptr, nullptr, nullptr, "src", 12), "src\\(12\\): boom\n");
  EXPECT_DEATH(KORFatalError("boom", "one", nullptr, "three", "src", 12),
               "src\\(12\\): boom one three\n");
  EXPECT_DEATH(KORFatalError(nullptr, nullptr, nullptr, nullptr, nullptr, -1),
               "\\(null\\)\\(-1\\): \\(null\\)\n");
}

TEST(KORGetProcessTimes, CountsCpuTimeIn100Nanoseconds) {
  std::uint64_t kernel0 = 0, user0 = 0, kernel1 = 0, user1 = 0;
  KORGetProcessTimes(kernel0, user0);
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
  while (std::chrono::steady_clock::now() < until) {
  }
  KORGetProcessTimes(kernel1, user1);
  // 200 ms of computing is 2,000,000 units: wide bounds, but not a factor 10.
  const std::uint64_t spent = (user1 - user0) + (kernel1 - kernel0);
  EXPECT_GT(spent, 200'000u);
  EXPECT_LT(spent, 20'000'000u);
}

TEST(KORGetTickCount, AdvancesInMilliseconds) {
  const std::uint32_t before = KORGetTickCount();
  KORSleep(50);
  const std::uint32_t elapsed = KORGetTickCount() - before;
  EXPECT_GE(elapsed, 50u);
  EXPECT_LT(elapsed, 5000u);
}

TEST(KORDuplicateDescriptor, TargetSharesTheSourceFile) {
  int pipeFds[2];
  ASSERT_EQ(0, pipe(pipeFds));
  const int target = open("/dev/null", O_RDONLY);
  EXPECT_EQ(target, KORDuplicateDescriptor(pipeFds[1], target));
  ASSERT_EQ(3, write(target, "abc", 3));
  char buffer[4] = {};
  EXPECT_EQ(3, read(pipeFds[0], buffer, 3));
  EXPECT_STREQ("abc", buffer);
  EXPECT_EQ(-1, KORDuplicateDescriptor(-1, target));
  for (int fd : {target, pipeFds[0], pipeFds[1]}) close(fd);
}

}  // namespace
