// A process that takes the lock of a directory, for the lock tests.
//
//   lock_contender hold <directory> <owner> <ready file>
//     Takes the lock, creates <ready file>, and holds the lock until it is
//     killed. Exits with 3 when the lock cannot be taken.
//   lock_contender contend <directory> <owner> <count> <marker> <seconds>
//     Takes and releases the lock <count> times, giving up after <seconds>,
//     as owner <owner> * 10000 + the number of the attempt.
//     While it holds the lock it creates <marker> exclusively, keeps it for
//     a while and removes it before unlocking: finding the marker already
//     there means that another process holds the lock too. Prints
//     "acquired <n> violations <v>"; exits with 1 when v > 0.
#include <fcntl.h>
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

// Holds the lock once, with the marker; false when the marker was there.
bool HoldOnce(const char* marker, unsigned int milliseconds) {
  const int fd = open(marker, O_WRONLY | O_CREAT | O_EXCL, 0600);
  if (fd < 0) return false;
  close(fd);
  KORSleep(milliseconds);
  unlink(marker);
  return true;
}

int Contend(const char* directory, int owner, int count, const char* marker, int seconds) {
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
      if (!HoldOnce(marker, holdTime(random))) ++violations;
      lock.Unlock();
      ++acquired;
    }
    KORSleep(pause(random));
  }
  std::printf("\nacquired %d violations %d\n", acquired, violations);
  return violations == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 5 && std::strcmp(argv[1], "hold") == 0) {
    return Hold(argv[2], std::atoi(argv[3]), argv[4]);
  }
  if (argc == 7 && std::strcmp(argv[1], "contend") == 0) {
    return Contend(argv[2], std::atoi(argv[3]), std::atoi(argv[4]), argv[5], std::atoi(argv[6]));
  }
  std::fprintf(stderr, "usage: lock_contender hold|contend ...\n");
  return 2;
}
