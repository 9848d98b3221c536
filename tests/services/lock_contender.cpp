// A process that takes and releases the lock of a directory, for the lock
// tests:
//   lock_contender <directory> <owner> <marker> <count> <seconds> <longest first pause>
//                  <shortest hold> <longest hold> <longest pause> <report descriptor>
// Pauses up to <longest first pause> milliseconds (so that contenders
// started together do not all meet at once), then takes the lock <count>
// times, giving up after <seconds>, as owner <owner> * 10000 + the number
// of the attempt (modulo 10000): a file name that came back within another
// process's 2-second wait would pass for the dead sequence it waits on.
// Holds it a random number of milliseconds between the two holds and
// pauses up to <longest pause> after each attempt.
// While it holds the lock its marker holds its process id: it is linked
// into place at <marker>, which fails when another holder's marker is
// there. Reports on <report descriptor>, one line per event, with
// CLOCK_MONOTONIC nanoseconds:
//   acquired <pid> <lock owner> <hold milliseconds> <ns>
//   violation <pid> <ns>     (the marker was already there)
//   released <pid> <ns>
// Exits with 1 after a violation, else 0.
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "idxbase/kor_system.h"
#include "idxbase/lock.h"

namespace {

int reportTo = 1;

// One line; a pipe takes it whole (under PIPE_BUF bytes).
void Report(const std::string& line) {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const std::string text = line + " " + std::to_string(now.tv_sec * 1000000000LL + now.tv_nsec);
  ssize_t ignored = write(reportTo, (text + "\n").data(), text.size() + 1);
  static_cast<void>(ignored);
}

// Puts a marker holding our process id at `marker`; false when one is
// there already.
bool PlaceMarker(const std::string& marker) {
  const std::string pid = std::to_string(getpid());
  const std::string mine = marker + "." + pid;
  const int fd = open(mine.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (fd < 0) return false;
  ssize_t ignored = write(fd, pid.data(), pid.size());
  static_cast<void>(ignored);
  close(fd);
  const bool placed = link(mine.c_str(), marker.c_str()) == 0;
  unlink(mine.c_str());
  return placed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 11) {
    std::fprintf(stderr, "usage: lock_contender <directory> <owner> <marker> <count> ...\n");
    return 2;
  }
  const auto number = [argv](int i) { return static_cast<unsigned int>(std::atoi(argv[i])); };
  const std::string marker = argv[3];
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(number(5));
  std::minstd_rand random(number(2) * 7919u + static_cast<unsigned int>(getpid()));
  std::uniform_int_distribution<unsigned int> holdTime(number(7), number(8));
  std::uniform_int_distribution<unsigned int> pause(0, number(9));
  reportTo = static_cast<int>(number(10));
  const std::string pid = std::to_string(getpid());
  unsigned int acquired = 0;
  bool violated = false;
  KORSleep(std::uniform_int_distribution<unsigned int>(0, number(6))(random));
  for (unsigned int attempt = 0;
       acquired < number(4) && std::chrono::steady_clock::now() < deadline; ++attempt) {
    BBDLock lock;
    const int lockOwner = static_cast<int>(number(2) * 10000 + attempt % 10000);
    if (lock.Lock(argv[1], lockOwner) == KOR_S_OK) {
      const unsigned int hold = holdTime(random);
      const bool placed = PlaceMarker(marker);
      violated = violated || !placed;
      if (!placed) Report("violation " + pid);
      Report("acquired " + pid + " " + std::to_string(lockOwner) + " " + std::to_string(hold));
      KORSleep(hold);
      if (placed) unlink(marker.c_str());
      Report("released " + pid);
      lock.Unlock();
      ++acquired;
    }
    KORSleep(pause(random));
  }
  return violated ? 1 : 0;
}
