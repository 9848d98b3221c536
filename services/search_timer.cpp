#include "idxbase/kor_system.h"
#include "idxbase/kor_time.h"
#include "idxbase/performance.h"
#include "services/calendar_seconds.h"

namespace {

constexpr std::uint64_t kUnitsPerMillisecond = 10000;  // of 100 ns

int Milliseconds(std::uint64_t now, std::uint64_t start) {
  return static_cast<int>((now - start) / kUnitsPerMillisecond);
}

}  // namespace

PLMSearchTimer::~PLMSearchTimer() = default;

void PLMSearchTimer::StartTimer() {
  m_TickStart = KORGetTickCount();
  KORGetProcessTimes(m_KernelStart, m_UserStart);
}

void PLMSearchTimer::StopTimer() {
  std::uint64_t kernel = 0;
  std::uint64_t user = 0;
  KORGetProcessTimes(kernel, user);
  m_CPUKernel = Milliseconds(kernel, m_KernelStart);
  m_CPUUser = Milliseconds(user, m_UserStart);
  m_Elapsed = static_cast<int>(KORGetTickCount() - m_TickStart);
}

unsigned int PLMSearchTimer::GetTime() {
  const KORTime now;
  return idxbase::detail::CalendarSeconds(now.GetYear(0), now.GetDayOfYear(0), now.GetHour(0),
                                          now.GetMinute(0), now.GetSecond(0));
}

namespace idxbase::detail {

unsigned int CalendarSeconds(int year, int dayOfYear, int hour, int minute, int second) {
  auto u = [](int value) { return static_cast<unsigned int>(value); };
  return ((u(year) - 1970u) * 366u + u(dayOfYear)) * 86400u + u(hour) * 3600u + u(minute) * 60u +
         u(second);
}

}  // namespace idxbase::detail
