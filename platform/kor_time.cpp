#include "idxbase/kor_time.h"

#include <locale.h>
#include <time.h>

#include <climits>
#include <cstdint>
#include <ctime>

static_assert(sizeof(std::time_t) >= sizeof(std::int64_t),
              "KORTime needs a 64-bit time_t to hold its seconds");

namespace {

constexpr std::int64_t kEpoch = 0;
constexpr int kTmYearBase = 1900;
constexpr std::size_t kFormatCapacity = 1024;  // 1023 bytes and the zero

// Fills `fields` with `seconds` broken down in zone `tz`. False when the
// year does not fit the calendar fields of an int.
bool BreakDown(std::int64_t seconds, KORTz tz, std::tm& fields) {
  const auto when = static_cast<std::time_t>(seconds);
  const std::tm* result = tz == KORTzUTC ? gmtime_r(&when, &fields) : localtime_r(&when, &fields);
  if (result == nullptr) return false;
  return static_cast<std::int64_t>(fields.tm_year) + kTmYearBase <= INT_MAX;
}

// Calendar fields of `seconds` in `tz`; a moment whose year cannot be
// represented reads as the epoch, the same fallback as the constructor's.
std::tm Fields(std::int64_t seconds, KORTz tz) {
  std::tm fields{};
  if (!BreakDown(seconds, tz, fields)) BreakDown(kEpoch, tz, fields);
  return fields;
}

// The "C" locale, created once; null if it cannot be created, in which
// case formatting falls back to the process's locale.
locale_t CLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", locale_t{});
  return locale;
}

// The caller's format is passed on as it is: strftime takes no variable
// arguments, so an unexpected conversion can do no harm.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::size_t Format(char* buffer, const char* format, const std::tm& fields) {
  const locale_t locale = CLocale();
  if (locale == locale_t{}) return std::strftime(buffer, kFormatCapacity, format, &fields);
  return strftime_l(buffer, kFormatCapacity, format, &fields, locale);
}
#pragma GCC diagnostic pop

}  // namespace

KORTime::KORTime() : m_Seconds(static_cast<std::int64_t>(std::time(nullptr))) {}

KORTime::KORTime(int year, int month, int day, int hour, int minute, int second)
    : m_Seconds(kEpoch) {
  // Fields whose conversion to struct tm would overflow are unrepresentable.
  if (year < INT_MIN + kTmYearBase || month == INT_MIN) return;
  std::tm fields{};
  fields.tm_year = year - kTmYearBase;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = -1;  // let the zone's rules decide on daylight saving
  // mktime returns -1 both on failure and for 1969-12-31 23:59:59 UTC; only
  // a success normalises tm_wday into 0..6.
  fields.tm_wday = -1;
  const std::time_t result = std::mktime(&fields);
  if (fields.tm_wday < 0) return;
  m_Seconds = static_cast<std::int64_t>(result);
}

KORTime KORTime::FromEpochSeconds(std::int64_t seconds) { return KORTime(seconds); }

int KORTime::GetYear(KORTz tz) const { return Fields(m_Seconds, tz).tm_year + kTmYearBase; }
int KORTime::GetMonth(KORTz tz) const { return Fields(m_Seconds, tz).tm_mon + 1; }
int KORTime::GetDay(KORTz tz) const { return Fields(m_Seconds, tz).tm_mday; }
int KORTime::GetDayOfYear(KORTz tz) const { return Fields(m_Seconds, tz).tm_yday + 1; }
int KORTime::GetHour(KORTz tz) const { return Fields(m_Seconds, tz).tm_hour; }
int KORTime::GetMinute(KORTz tz) const { return Fields(m_Seconds, tz).tm_min; }
int KORTime::GetSecond(KORTz tz) const { return Fields(m_Seconds, tz).tm_sec; }

KORUnicodeString KORTime::ConvertToString(const char* strftimeFormat, KORTz tz) const {
  if (strftimeFormat == nullptr) return KORUnicodeString();
  const std::tm fields = Fields(m_Seconds, tz);
  char buffer[kFormatCapacity];
  // strftime gives 0, leaving the buffer content undefined, when the result
  // does not fit.
  if (Format(buffer, strftimeFormat, fields) == 0) return KORUnicodeString();
  return KORUnicodeString(buffer);
}
