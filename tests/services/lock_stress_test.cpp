// Stress of the lock files: eight lock_contender processes take and
// release the lock of one directory while the test SIGKILLs holders at
// random moments, for 30 rounds (a round ends with a holder's release or
// death). Checked: mutual exclusion (no holder finds another's marker, and
// nobody takes the lock while the previous holder neither released it nor
// died), and recovery: after a kill, someone holds the lock again within
// the 2-second liveness wait per file the dead holder left (two when it
// died between creating its next file and deleting its current one) plus
// a 1.5 s margin for process start, rescans and the report pipe on a
// loaded machine; a second liveness wait would exceed it.
// The figures go to standard output for the CI log.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/temp_dir.h"

namespace {

using idxbase_test::RunningChild;
using idxbase_test::TempDir;

constexpr int kContenders = 8;
constexpr int kRounds = 30;
constexpr long long kMillisecond = 1000000;  // in nanoseconds
constexpr long long kLivenessWait = 2000 * kMillisecond;
constexpr long long kRecoveryMargin = 1500 * kMillisecond;
constexpr long long kEventTimeout = 30000 * kMillisecond;

long long Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

// One line of a contender's report.
struct Event {
  std::string what;  // acquired, violation or released
  pid_t pid = 0;
  int owner = 0;     // acquired: the lock owner identifier
  int holdMs = 0;    // acquired: how long it means to hold
  long long at = 0;  // CLOCK_MONOTONIC nanoseconds
};

// The contenders, all started at once, and the pipe they report on (their
// descriptor 3).
class Arena {
 public:
  Arena() {
    if (pipe2(pipe_, O_CLOEXEC) != 0) ADD_FAILURE() << "pipe: " << errno;
    while (lastNumber_ < kContenders) Start(++lastNumber_);
  }
  ~Arena() {
    contenders_.clear();
    close(pipe_[0]);
    close(pipe_[1]);
  }
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // Kills the holder `pid`, removes its marker, and starts a replacement
  // contender. Returns the number of lock files that the dead holder
  // `owner` left.
  int KillHolder(pid_t pid, int owner) {
    const std::unique_ptr<RunningChild>& holder = contenders_[pid];
    EXPECT_TRUE(holder && holder->Kill()) << "the holder " << pid << " had ended by itself";
    contenders_.erase(pid);
    int files = 0;
    const std::string prefix = "lock." + std::to_string(owner) + ".";
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(dir_.Join("lock"), ignored)) {
      if (entry.path().filename().string().rfind(prefix, 0) == 0) ++files;
    }
    // Nobody can hold the lock yet: the dead holder's files stand for
    // 2 seconds at least.
    if (idxbase_test::ReadFile(marker_) == std::to_string(pid)) std::remove(marker_.c_str());
    Start(++lastNumber_);
    return files;
  }

  // The next event, waiting until `deadline` at most; false on timeout.
  bool Next(Event& event, long long deadline) {
    for (;;) {
      const std::size_t end = buffer_.find('\n');
      if (end != std::string::npos) {
        std::istringstream in(buffer_.substr(0, end));
        buffer_.erase(0, end + 1);
        event = Event{};
        in >> event.what >> event.pid;
        if (event.what == "acquired") in >> event.owner >> event.holdMs;
        in >> event.at;
        return true;
      }
      const long long left = deadline - Now();
      if (left <= 0) return false;
      pollfd reader{pipe_[0], POLLIN, 0};
      if (poll(&reader, 1, static_cast<int>(left / kMillisecond) + 1) <= 0) continue;
      char chunk[4096];
      const ssize_t got = read(pipe_[0], chunk, sizeof chunk);
      if (got > 0) buffer_.append(chunk, static_cast<std::size_t>(got));
    }
  }

 private:
  // Starts contender number `number` (its lock owners are number * 10000
  // + attempt).
  void Start(int number) {
    // Holds from well inside to beyond the 1.5-second heartbeat period,
    // until it is killed, reporting on the pipe; a first pause of up to a
    // second spreads the starts.
    auto contender = std::make_unique<RunningChild>(
        std::vector<std::string>{idxbase_test::BuiltProgram("tests/services/lock_contender"),
                                 dir_.path(), std::to_string(number), marker_, "1000000", "1000000",
                                 "1000", "100", "2200", "200", "3"},
        dir_.Join("contender" + std::to_string(number) + ".log"), pipe_[1]);
    contenders_[contender->pid()] = std::move(contender);
  }

  TempDir dir_;
  const std::string marker_ = dir_.Join("marker");
  int pipe_[2] = {-1, -1};
  std::map<pid_t, std::unique_ptr<RunningChild>> contenders_;  // by process id
  int lastNumber_ = 0;
  std::string buffer_;
};

TEST(LockStress, EightProcessesWithKilledHoldersKeepExclusionAndRecover) {
  Arena arena;
  std::mt19937 random(20240611);
  int kills = 0;
  int acquisitions = 0;
  long long maxRecovery = 0;
  Event holding;           // the holder's acquisition; pid 0 when nobody holds
  long long killedAt = 0;  // when the last holder was killed, until the next acquisition
  long long recoveryBound = 0;

  // Handles the next event before `deadline`; a holder that appears while
  // another still holds is a violation.
  const auto next = [&](long long deadline) {
    Event event;
    if (!arena.Next(event, deadline)) return false;
    if (event.what == "violation") {
      ADD_FAILURE() << "process " << event.pid << " found another holder's marker";
    } else if (event.what == "acquired") {
      ++acquisitions;
      EXPECT_EQ(0, holding.pid) << "process " << event.pid << " took the lock while " << holding.pid
                                << " held it";
      holding = event;
      if (killedAt != 0) {
        const long long recovery = event.at - killedAt;
        maxRecovery = std::max(maxRecovery, recovery);
        EXPECT_LE(recovery, recoveryBound)
            << "recovery after kill " << kills << " took " << recovery / kMillisecond << " ms";
        killedAt = 0;
      }
    } else if (event.what == "released" && event.pid == holding.pid) {
      holding.pid = 0;
    }
    return true;
  };

  for (int round = 1; round <= kRounds && !HasFailure(); ++round) {
    while (holding.pid == 0) {
      ASSERT_TRUE(next(Now() + kEventTimeout)) << "nobody took the lock, round " << round;
    }
    const Event acquired = holding;
    // Every other round, on average, the holder dies before it means to
    // release, at a random moment of its hold (sometimes after a heartbeat
    // step).
    const bool killIt =
        std::uniform_int_distribution<int>(0, 1)(random) == 1 && acquired.holdMs > 250;
    long long killAt = Now() + kEventTimeout;
    if (killIt) {
      killAt = acquired.at + kMillisecond * std::uniform_int_distribution<long long>(
                                                0, acquired.holdMs - 200)(random);
    }
    while (holding.pid == acquired.pid && next(killAt)) {
    }
    if (holding.pid != acquired.pid) continue;  // it released (before its kill)
    ASSERT_TRUE(killIt) << "the holder never released";
    const long long now = Now();
    const int deadFiles = arena.KillHolder(acquired.pid, acquired.owner);
    ++kills;
    holding.pid = 0;
    killedAt = now;
    recoveryBound = std::max(deadFiles, 1) * kLivenessWait + kRecoveryMargin;
  }
  // The recovery after a kill in the last round.
  while (killedAt != 0 && !HasFailure()) {
    ASSERT_TRUE(next(Now() + kEventTimeout)) << "no recovery after the last kill";
  }

  std::printf(
      "lock stress: %d contenders, %d rounds, %d acquisitions, %d kills, max recovery %lld ms\n",
      kContenders, kRounds, acquisitions, kills, maxRecovery / kMillisecond);
  std::fflush(stdout);
  EXPECT_GE(kills, kRounds / 4) << "too few kills to stress recovery";
}

}  // namespace
