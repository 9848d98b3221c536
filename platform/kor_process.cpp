#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "idxbase/kor_system.h"

namespace {

const char* OrNull(const char* text) { return text != nullptr ? text : "(null)"; }

// A timeval in units of 100 nanoseconds.
std::uint64_t HundredsOfNanoseconds(const timeval& time) {
  return static_cast<std::uint64_t>(time.tv_sec) * 10000000u +
         static_cast<std::uint64_t>(time.tv_usec) * 10u;
}

}  // namespace

int KORSysIsProcessAlive(unsigned int processId, int /*access*/) {
  if (processId == 0 || processId > static_cast<unsigned int>(INT_MAX)) return 0;
  // Signal 0 only checks: EPERM means the process exists but belongs to
  // someone we may not signal.
  if (kill(static_cast<pid_t>(processId), 0) == 0) return 1;
  return errno == EPERM ? 1 : 0;
}

void KORFatalError(const char* message, const char* context1, const char* context2,
                   const char* context3, const char* sourceName, int line) {
  std::fprintf(stderr, "%s(%d): %s", OrNull(sourceName), line, OrNull(message));
  for (const char* context : {context1, context2, context3}) {
    if (context != nullptr) std::fprintf(stderr, " %s", context);
  }
  std::fputc('\n', stderr);
  std::fflush(stderr);
  std::abort();
}

void KORGetProcessTimes(std::uint64_t& kernelTime, std::uint64_t& userTime) {
  rusage usage{};
  if (getrusage(RUSAGE_SELF, &usage) != 0) {
    kernelTime = 0;
    userTime = 0;
    return;
  }
  kernelTime = HundredsOfNanoseconds(usage.ru_stime);
  userTime = HundredsOfNanoseconds(usage.ru_utime);
}

int KORDuplicateDescriptor(int source, int target) {
  int result = -1;
  do {
    result = dup2(source, target);
  } while (result < 0 && errno == EINTR);
  return result;
}
