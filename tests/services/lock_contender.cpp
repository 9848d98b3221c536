// A process that takes the lock of a directory, for the lock tests.
//
//   lock_contender hold <directory> <owner> <ready file>
//     Takes the lock, creates <ready file>, and holds the lock until it is
//     killed. Exits with 3 when the lock cannot be taken.
//   lock_contender contend <directory> <owner> <count> <marker> <seconds>
//     Takes and releases the lock <count> times, giving up after <seconds>,
//     as owner <owner> * 10000 + the number of the attempt.
//     While it holds the lock it places <marker> as below, keeps it for a
//     while and removes it before unlocking: finding the marker already
//     there means that another process holds the lock too. Prints
//     "acquired <n> violations <v>"; exits with 1 when v > 0.
//   lock_contender stress <directory> <owner> <marker>
//     Takes and releases the lock until it is killed, as owner
//     <owner> * 10000 + the number of the attempt, and reports on
//     descriptor 3, one line per event, with CLOCK_MONOTONIC nanoseconds:
//       acquired <pid> <lock owner> <hold milliseconds> <ns>
//       violation <pid> <ns>     (the marker was already there)
//       released <pid> <ns>
//     While it holds the lock its marker holds its process id: it is
//     linked into place, which fails when another holder's marker is
//     there.
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "idxbase/kor_system.h"
#include "idxbase/lock.h"

namespace {

int Hold(const char* directory, int owner, const char* readyFile) {
  BBDLock lock;
  if (lock.Lock(directory, owner) != KOR_S_OK) return 3;
  const int ready = open(readyFile, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (ready >= 0) close(ready);
  for (;;) KORSleep(1000);
}

long long MonotonicNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

// One line on descriptor 3; a pipe takes it whole (under PIPE_BUF bytes).
void Report(const std::string& line) {
  const std::string text = line + " " + std::to_string(MonotonicNanoseconds()) + "\n";
  ssize_t ignored = write(3, text.data(), text.size());
  static_cast<void>(ignored);
}

// Puts a marker holding our process id at `marker`; false when one is
// there already.
bool PlaceMarker(const std::string& marker) {
  const std::string mine = marker + "." + std::to_string(getpid());
  const int fd = open(mine.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (fd < 0) return false;
  const std::string pid = std::to_string(getpid());
  ssize_t ignored = write(fd, pid.data(), pid.size());
  static_cast<void>(ignored);
  close(fd);
  const bool placed = link(mine.c_str(), marker.c_str()) == 0;
  unlink(mine.c_str());
  return placed;
}

int Contend(const char* directory, int owner, int count, const std::string& marker, int seconds) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(seconds);
  std::minstd_rand random(static_cast<unsigned int>(owner) * 7919u +
                          static_cast<unsigned>(getpid()));
  // Some holds outlast the 1.5-second heartbeat period, so that waiting
  // processes also meet a sequence that moves on.
  std::uniform_int_distribution<unsigned int> holdTime(100, 3000);
  std::uniform_int_distribution<unsigned int> pause(0, 800);
  int acquired = 0;
  int violations = 0;
  // Each attempt takes a fresh owner identifier: a file name that comes
  // back within another process's 2-second wait would pass for the dead
  // sequence it waits on.
  for (int attempt = 0; acquired < count && Clock::now() < deadline; ++attempt) {
    BBDLock lock;
    if (lock.Lock(directory, owner * 10000 + attempt) == KOR_S_OK) {
      if (PlaceMarker(marker)) {
        KORSleep(holdTime(random));
        unlink(marker.c_str());
      } else {
        ++violations;
      }
      lock.Unlock();
      ++acquired;
    }
    KORSleep(pause(random));
  }
  std::printf("\nacquired %d violations %d\n", acquired, violations);
  return violations == 0 ? 0 : 1;
}

int Stress(const char* directory, int owner, const std::string& marker) {
  std::minstd_rand random(static_cast<unsigned int>(owner) * 7919u +
                          static_cast<unsigned>(getpid()));
  // Holds from well inside to beyond the 1.5-second heartbeat period.
  std::uniform_int_distribution<unsigned int> holdTime(100, 2200);
  std::uniform_int_distribution<unsigned int> pause(0, 200);
  const std::string pid = std::to_string(getpid());
  KORSleep(std::uniform_int_distribution<unsigned int>(0, 1000)(random));
  for (int attempt = 0;; ++attempt) {
    BBDLock lock;
    const int lockOwner = owner * 10000 + attempt % 10000;
    if (lock.Lock(directory, lockOwner) == KOR_S_OK) {
      const unsigned int hold = holdTime(random);
      const bool placed = PlaceMarker(marker);
      if (!placed) Report("violation " + pid);
      Report("acquired " + pid + " " + std::to_string(lockOwner) + " " + std::to_string(hold));
      KORSleep(hold);
      if (placed) unlink(marker.c_str());
      Report("released " + pid);
      lock.Unlock();
    }
    KORSleep(pause(random));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 5 && std::strcmp(argv[1], "hold") == 0) {
    return Hold(argv[2], std::atoi(argv[3]), argv[4]);
  }
  if (argc == 7 && std::strcmp(argv[1], "contend") == 0) {
    return Contend(argv[2], std::atoi(argv[3]), std::atoi(argv[4]), argv[5], std::atoi(argv[6]));
  }
  if (argc == 5 && std::strcmp(argv[1], "stress") == 0) {
    return Stress(argv[2], std::atoi(argv[3]), argv[4]);
  }
  std::fprintf(stderr, "usage: lock_contender hold|contend|stress ...\n");
  return 2;
}
