// The seconds count of PLMSearchTimer::GetTime, from calendar fields.
#ifndef IDXBASE_SERVICES_CALENDAR_SECONDS_H_
#define IDXBASE_SERVICES_CALENDAR_SECONDS_H_

namespace idxbase::detail {

// ((year - 1970) * 366 + dayOfYear) * 86400 + hour * 3600 + minute * 60
// + second, in unsigned 32-bit arithmetic.
unsigned int CalendarSeconds(int year, int dayOfYear, int hour, int minute, int second);

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_CALENDAR_SECONDS_H_
