#include <gtest/gtest.h>

#include <cstdio>

#include "idxbase/kor_system.h"

namespace {

TEST(KORGetMERLOLevelInfo, GivesProjectVersionAndBuildStamp) {
  KORLevelInfo info;
  info.hotFix = 99;
  KORGetMERLOLevelInfo(info);
  EXPECT_EQ(0, info.version);
  EXPECT_EQ(1, info.release);
  EXPECT_EQ(0, info.servicePack);
  EXPECT_EQ(0, info.hotFix);
  ASSERT_NE(nullptr, info.level);

  int year = 0, month = 0, day = 0, hour = -1, minute = -1;
  char extra = '\0';
  EXPECT_EQ(
      5, std::sscanf(info.level, "%d-%d-%d.%d.%d%c", &year, &month, &day, &hour, &minute, &extra))
      << info.level;
  EXPECT_GE(year, 2024);
  EXPECT_TRUE(month >= 1 && month <= 12) << month;
  EXPECT_TRUE(day >= 1 && day <= 31) << day;
  EXPECT_TRUE(hour >= 0 && hour <= 23) << hour;
  EXPECT_TRUE(minute >= 0 && minute <= 59) << minute;
}

}  // namespace
