#include "idxbase/kor_time.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "scoped_env.h"

namespace {

// A zone with daylight saving that needs no zone database: UTC-5, and UTC-4
// from the second Sunday of March to the first Sunday of November.
constexpr const char* kNewYorkRules = "EST5EDT,M3.2.0,M11.1.0";

// year, month, day, hour, minute, second
std::vector<int> Fields(const KORTime& time, KORTz tz) {
  return {time.GetYear(tz), time.GetMonth(tz),  time.GetDay(tz),
          time.GetHour(tz), time.GetMinute(tz), time.GetSecond(tz)};
}

TEST(KORTime, LocalConstructorRoundTripsInUtc) {
  idxbase_test::ScopedEnv env;
  env.Set("TZ", "UTC");
  const KORTime time(2024, 2, 29, 13, 45, 30);
  EXPECT_EQ(1709214330, time.GetEpochSeconds());
  EXPECT_EQ(std::vector<int>({2024, 2, 29, 13, 45, 30}), Fields(time, KORTzLocal));
  EXPECT_EQ(Fields(time, KORTzLocal), Fields(time, KORTzUTC));
  EXPECT_EQ(-1, KORTime(1969, 12, 31, 23, 59, 59).GetEpochSeconds());  // not a failure
  EXPECT_EQ(std::vector<int>({2025, 1, 1, 0, 0, 0}),
            Fields(KORTime(2024, 13, 1, 0, 0, 0), KORTzUTC));  // normalised
  // Unrepresentable dates give the epoch.
  EXPECT_EQ(0, KORTime(INT_MIN, 1, 1, 0, 0, 0).GetEpochSeconds());
  EXPECT_EQ(0, KORTime(INT_MAX, INT_MAX, 1, 0, 0, 0).GetEpochSeconds());
  EXPECT_EQ(0, KORTime(2024, INT_MIN, 1, 0, 0, 0).GetEpochSeconds());
  // The day of the year starts at 1.
  EXPECT_EQ(1, KORTime(2023, 1, 1, 0, 0, 0).GetDayOfYear(KORTzLocal));
  EXPECT_EQ(366, KORTime(2024, 12, 31, 23, 59, 59).GetDayOfYear(KORTzLocal));
}

TEST(KORTime, LocalConstructorFollowsTheZoneAndItsDaylightSaving) {
  idxbase_test::ScopedEnv env;
  env.Set("TZ", kNewYorkRules);
  const KORTime summer(2024, 7, 1, 12, 0, 0);  // EDT, UTC-4
  EXPECT_EQ(1719849600, summer.GetEpochSeconds());
  EXPECT_EQ(std::vector<int>({2024, 7, 1, 12, 0, 0}), Fields(summer, KORTzLocal));
  EXPECT_EQ(std::vector<int>({2024, 7, 1, 16, 0, 0}), Fields(summer, KORTzUTC));
  EXPECT_EQ(5, KORTime(2024, 1, 1, 0, 0, 0).GetHour(KORTzUTC));  // EST, UTC-5
  EXPECT_EQ(2023, KORTime::FromEpochSeconds(1704067200).GetYear(KORTzLocal));
  EXPECT_EQ(12, summer.GetHour(7));  // any code but 1 reads local time
  // Noon in New York comes after 13:00 in UTC the same day.
  env.Set("TZ", "UTC");
  EXPECT_TRUE(KORTime(2024, 7, 1, 13, 0, 0) < summer);
}

TEST(KORTime, ConvertToStringUsesCLocaleNames) {
  idxbase_test::ScopedEnv env;
  env.Set("TZ", kNewYorkRules);
  const KORTime time = KORTime::FromEpochSeconds(1709214330);  // 2024-02-29 13:45:30 UTC
  EXPECT_STREQ("[2024 Feb 29 13:45:30]",
               time.ConvertToString("[%Y %b %d %H:%M:%S]", KORTzUTC).ConvertToChar());
  EXPECT_STREQ("Thursday 08:45 EST",
               time.ConvertToString("%A %H:%M %Z", KORTzLocal).ConvertToChar());
  EXPECT_STREQ("", time.ConvertToString(nullptr, KORTzUTC).ConvertToChar());
  const std::string longest(1023, 'x');
  EXPECT_EQ(longest, time.ConvertToString(longest.c_str(), KORTzUTC).ConvertToChar());
  EXPECT_STREQ("", time.ConvertToString((longest + "x").c_str(), KORTzUTC).ConvertToChar());
}

TEST(KORTime, OrdersByTheMoment) {
  const KORTime earlier = KORTime::FromEpochSeconds(100);
  const KORTime later = KORTime::FromEpochSeconds(101);
  EXPECT_TRUE(earlier < later && earlier <= later && earlier != later);
  EXPECT_TRUE(later > earlier && later >= earlier);
  EXPECT_FALSE(later < earlier || later <= earlier || earlier == later);
  EXPECT_TRUE(earlier == KORTime::FromEpochSeconds(100));
  EXPECT_TRUE(KORTime::FromEpochSeconds(1709214330) < KORTime());  // the clock
}

}  // namespace
