// Reading ISO dates and times into KORTime.
#include <cstdint>

#include "idxbase/filter_parser.h"

namespace {

// Reads exactly `count` decimal digits at `at`; false when one is missing.
bool Digits(std::string_view text, std::size_t at, std::size_t count, int& value) {
  if (at + count > text.size()) return false;
  value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    value = value * 10 + (text[i] - '0');
  }
  return true;
}

bool IsLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(int year, int month) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

// Days from 1970-01-01 to the given proleptic Gregorian date (the
// civil-from-days inverse of Howard Hinnant's date algorithms).
std::int64_t DaysFromCivil(int year, int month, int day) {
  const int y = year - (month <= 2 ? 1 : 0);
  const int era = (y >= 0 ? y : y - 399) / 400;
  const int yearOfEra = y - era * 400;
  const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return static_cast<std::int64_t>(era) * 146097 + dayOfEra - 719468;
}

}  // namespace

bool BBDFilterParser::ParseTime(std::string_view text, KORTime& time) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (!Digits(text, 0, 4, year) || text.size() < 10 || text[4] != '-' ||
      !Digits(text, 5, 2, month) || text[7] != '-' || !Digits(text, 8, 2, day)) {
    return false;
  }
  std::size_t end = 10;
  if (text.size() > end && text[end] == 'T') {
    if (text.size() < 19 || !Digits(text, 11, 2, hour) || text[13] != ':' ||
        !Digits(text, 14, 2, minute) || text[16] != ':' || !Digits(text, 17, 2, second)) {
      return false;
    }
    end = 19;
  }
  if (text.size() > end && text[end] == 'Z') ++end;
  if (end != text.size()) return false;
  if (year < 1 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month) ||
      hour > 23 || minute > 59 || second > 59) {
    return false;
  }
  time = KORTime::FromEpochSeconds(DaysFromCivil(year, month, day) * 86400 + hour * 3600 +
                                   minute * 60 + second);
  return true;
}
