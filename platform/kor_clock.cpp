#include <time.h>

#include <chrono>
#include <cstdint>
#include <thread>

#include "idxbase/kor_system.h"

void KORSleep(unsigned int milliseconds) {
  // sleep_for resumes after interruptions until the whole delay has passed.
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

std::uint32_t KORGetTickCount() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const auto milliseconds = static_cast<std::uint64_t>(now.tv_sec) * 1000u +
                            static_cast<std::uint64_t>(now.tv_nsec) / 1000000u;
  return static_cast<std::uint32_t>(milliseconds);
}
