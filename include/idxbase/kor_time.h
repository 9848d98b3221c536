// Date and time of the foundation layer.
#ifndef IDXBASE_KOR_TIME_H_
#define IDXBASE_KOR_TIME_H_

#include <cstdint>

#include "idxbase/export.h"
#include "idxbase/kor_string.h"

// Time-zone code given to the calendar reads and to formatting. Callers
// pass plain integers: 0 is the process's local time zone (as set by TZ),
// 1 is universal time; any other value reads as local time.
using KORTz = int;
constexpr KORTz KORTzLocal = 0;
constexpr KORTz KORTzUTC = 1;

// A date and time to the second, held as seconds since 1970-01-01 00:00:00
// UTC, so it orders and compares the same in every time zone.
//
// A plain value: copies are independent; one thread at a time per object.
class IDXBASE_API KORTime {
 public:
  // The current date and time.
  KORTime();
  // The given calendar date and time in the process's local time zone.
  // Out-of-range fields are normalised the way mktime does (month 13 is
  // January of the next year); a date that cannot be represented gives
  // 1970-01-01 00:00:00 UTC.
  KORTime(int year, int month, int day, int hour, int minute, int second);
  KORTime(const KORTime&) = default;
  KORTime& operator=(const KORTime&) = default;
  ~KORTime() = default;

  // The moment `seconds` after 1970-01-01 00:00:00 UTC.
  static KORTime FromEpochSeconds(std::int64_t seconds);
  std::int64_t GetEpochSeconds() const { return m_Seconds; }

  bool operator<(const KORTime& other) const { return m_Seconds < other.m_Seconds; }
  bool operator<=(const KORTime& other) const { return m_Seconds <= other.m_Seconds; }
  bool operator>(const KORTime& other) const { return m_Seconds > other.m_Seconds; }
  bool operator>=(const KORTime& other) const { return m_Seconds >= other.m_Seconds; }
  bool operator==(const KORTime& other) const { return m_Seconds == other.m_Seconds; }
  bool operator!=(const KORTime& other) const { return m_Seconds != other.m_Seconds; }

  // Calendar fields in the given time zone: the full year, month 1-12,
  // day 1-31, day of year 1-366 (1 for 1 January), hour 0-23, minute
  // 0-59, second 0-60.
  int GetYear(KORTz tz) const;
  int GetMonth(KORTz tz) const;
  int GetDay(KORTz tz) const;
  int GetDayOfYear(KORTz tz) const;
  int GetHour(KORTz tz) const;
  int GetMinute(KORTz tz) const;
  int GetSecond(KORTz tz) const;

  // The time formatted with strftime conversions in the given zone, in the
  // C locale's month and day names. A null format, or a result longer than
  // 1023 bytes, gives the empty string.
  KORUnicodeString ConvertToString(const char* strftimeFormat, KORTz tz) const;

 private:
  explicit KORTime(std::int64_t seconds) : m_Seconds(seconds) {}

  std::int64_t m_Seconds;
};

#endif  // IDXBASE_KOR_TIME_H_
