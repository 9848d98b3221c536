#include "idxbase/lock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.h"
#include "support/stdout_capture.h"
#include "support/temp_dir.h"

namespace {

using idxbase_test::FileExists;
using idxbase_test::RunningChild;
using idxbase_test::StdoutCapture;
using idxbase_test::TempDir;
using Clock = std::chrono::steady_clock;
using Names = std::vector<std::string>;
using namespace std::chrono_literals;

const std::string kQuestion =
    "Found a lock, waiting to see if it corresponds to a dead process... ";

std::string Repeat(const std::string& text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

bool WaitUntil(const std::function<bool()>& condition, Clock::duration timeout) {
  const Clock::time_point deadline = Clock::now() + timeout;
  while (!condition()) {
    if (Clock::now() > deadline) return false;
    std::this_thread::sleep_for(20ms);
  }
  return true;
}

class BBDLockTest : public ::testing::Test {
 protected:
  KORUnicodeString Dir() const { return dir_.path().c_str(); }
  std::string LockDir() const { return dir_.Join("lock"); }
  // The names in the lock directory, sorted.
  Names Listing() const {
    Names names;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(LockDir(), ignored)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  // Empty files in the lock directory.
  void Touch(const Names& names) const {
    for (const std::string& name : names) {
      std::filesystem::create_directories(LockDir());
      idxbase_test::WriteFile(LockDir() + "/" + name, "");
    }
  }
  std::string Marker() const { return dir_.Join("marker"); }
  std::string Log(int owner) const { return dir_.Join("log" + std::to_string(owner)); }
  // A lock_contender as `owner` (lock owners owner * 10000 + attempt) with
  // `plan`: count, seconds, longest first pause, shortest and longest hold,
  // longest pause (milliseconds).
  std::unique_ptr<RunningChild> Contender(int owner, Names plan) const {
    plan.insert(plan.begin(), {idxbase_test::BuiltProgram("tests/services/lock_contender"),
                               dir_.path(), std::to_string(owner), Marker()});
    plan.push_back("1");  // reports to its log
    return std::make_unique<RunningChild>(plan, Log(owner));
  }

  TempDir dir_;
};

// Locking again finds its own living files, which count as another
// owner's: the lock stays as it was and its sequence goes on.
TEST_F(BBDLockTest, LockTakesFileZeroTheHeartbeatReplacesItAndLockingAgainFindsItHeld) {
  BBDLock lock;
  const Clock::time_point start = Clock::now();
  ASSERT_EQ(KOR_S_OK, lock.Lock(Dir(), 7));
  EXPECT_EQ(Names{"lock.7.0"}, Listing());
  ASSERT_TRUE(WaitUntil([&] { return Listing() == Names{"lock.7.1"}; }, 5s)) << Listing().size();
  EXPECT_GE(Clock::now() - start, 1400ms);
  StdoutCapture capture;
  EXPECT_EQ(KOR_S_FALSE, lock.Lock(Dir(), 7));
  EXPECT_EQ(kQuestion + "no\n", capture.Finish());
  EXPECT_TRUE(lock.IsRunning());
  const Names files = Listing();
  EXPECT_TRUE(files == Names{"lock.7.2"} || files == Names{"lock.7.3"}) << files.size();

  const Clock::time_point unlock = Clock::now();
  lock.Unlock();
  EXPECT_LT(Clock::now() - unlock, 500ms) << "Unlock waited for the heartbeat period";
  EXPECT_EQ(Names{}, Listing());
  EXPECT_FALSE(lock.IsRunning());
}

// "" is the current directory, and trailing separators change nothing: the
// lock files are made, listed and followed in one place. Destruction
// releases the lock.
TEST_F(BBDLockTest, EverySpellingOfTheDirectoryNamesTheSameLockFiles) {
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(dir_.path());
  for (const std::string& directory : {std::string(), std::string("./"), dir_.path() + "//"}) {
    SCOPED_TRACE("directory \"" + directory + "\"");
    {
      BBDLock holder;
      EXPECT_EQ(KOR_S_OK, holder.Lock(directory.c_str(), 7));
      EXPECT_EQ(Names{"lock.7.0"}, Listing());
      EXPECT_TRUE(BBDLock::IsLocked(directory.c_str(), 8, true));
      EXPECT_FALSE(Listing().empty()) << "the living holder's files were deleted";
    }
    EXPECT_EQ(Names{}, Listing()) << "the holder's files outlived it";
  }
  std::filesystem::current_path(previous);
}

TEST_F(BBDLockTest, LockFailsWhenTheFirstFileCannotBeCreated) {
  BBDLock lock;
  EXPECT_EQ(KOR_E_FAIL, lock.Lock(dir_.Join("missing/index").c_str(), 7));
  EXPECT_FALSE(lock.IsRunning());
}

// Copies name the same files with an idle thread. Any of them unlocks: the
// current file and its two neighbours go, nothing else.
TEST_F(BBDLockTest, CopiesNameTheSameFilesWithAnIdleThreadAndUnlockAlike) {
  BBDLock original;
  ASSERT_EQ(KOR_S_OK, original.Lock(Dir(), 7));
  BBDLock copy(original);
  BBDLock assigned;
  assigned = original;
  EXPECT_TRUE(original.IsRunning());
  EXPECT_FALSE(copy.IsRunning());
  EXPECT_FALSE(assigned.IsRunning());

  copy.Unlock();
  EXPECT_EQ(Names{}, Listing());
  Touch({"lock.7.0", "lock.7.1", "lock.7.-1", "lock.7.2", "lock.8.0", "readme"});
  assigned.Unlock();
  EXPECT_EQ((Names{"lock.7.2", "lock.8.0", "readme"}), Listing());
}

// IsLocked over lock directories whose files no living process advances.
struct ScanCase {
  const char* name;
  bool makeLockDir;
  Names files;
  int owner;
  bool quiet;
  int deadLocks;  // files examined, found dead and deleted
  Names remaining;
};

void PrintTo(const ScanCase& c, std::ostream* out) { *out << c.name; }

class LockScanTest : public BBDLockTest, public ::testing::WithParamInterface<ScanCase> {};

TEST_P(LockScanTest, DeletesDeadLocksAndReportsThem) {
  const ScanCase& c = GetParam();
  if (c.makeLockDir) std::filesystem::create_directories(LockDir());
  Touch(c.files);

  StdoutCapture capture;
  const Clock::time_point start = Clock::now();
  EXPECT_FALSE(BBDLock::IsLocked(Dir(), c.owner, c.quiet));
  const Clock::duration elapsed = Clock::now() - start;
  EXPECT_EQ(c.quiet ? "" : Repeat(kQuestion + "yes\n", c.deadLocks), capture.Finish());
  EXPECT_EQ(c.remaining, Listing());
  EXPECT_GE(elapsed, c.deadLocks * 2000ms);
  EXPECT_LT(elapsed, c.deadLocks * 2000ms + 1000ms);
}

const Names kNotLockFiles = {"Lock.1.2", "lock.",     "lock.5", "lock.5.x",
                             "lock.x.y", "locks.1.2", "readme"};

INSTANTIATE_TEST_SUITE_P(
    BBDLock, LockScanTest,
    ::testing::Values(
        ScanCase{"MissingLockDirectory", false, {}, -1, false, 0, {}},
        ScanCase{"EmptyLockDirectory", true, {}, -1, false, 0, {}},
        ScanCase{"NotLockFiles", true, kNotLockFiles, -1, false, 0, kNotLockFiles},
        ScanCase{"OwnFilesDoNotCount", true, {"lock.7.3"}, 7, false, 0, {"lock.7.3"}},
        ScanCase{"OwnerMinusOneExaminesEveryFile", true, {"lock.7.3"}, -1, false, 1, {}},
        ScanCase{"DeadLock", true, {"lock.9.4"}, 7, false, 1, {}},
        ScanCase{"QuietWritesNothing", true, {"lock.9.4"}, 7, true, 1, {}},
        ScanCase{"DeadLockAmongOtherNames",
                 true,
                 {"lock.-3.-1", "lock.x.y", "readme"},
                 7,
                 false,
                 1,
                 {"lock.x.y", "readme"}},
        // Killed between creating its next file and deleting the current one.
        ScanCase{"DeadOwnerWithTwoFiles", true, {"lock.9.4", "lock.9.5"}, 7, false, 2, {}}),
    [](const ::testing::TestParamInfo<ScanCase>& param) { return param.param.name; });

TEST_F(BBDLockTest, LivingHolderKeepsTheLockUntilItIsKilled) {
  const auto holder = Contender(1, {"1", "600", "0", "600000", "600000", "0"});
  ASSERT_TRUE(WaitUntil([&] { return FileExists(Marker()); }, 20s)) << "the holder did not lock";
  StdoutCapture living;
  BBDLock lock;
  EXPECT_EQ(KOR_S_FALSE, lock.Lock(Dir(), 2));
  EXPECT_EQ(kQuestion + "no\n", living.Finish());
  const Names files = Listing();
  EXPECT_FALSE(files.empty());
  for (const std::string& name : files) EXPECT_EQ(0u, name.rfind("lock.10000.", 0)) << name;

  const auto pid = static_cast<unsigned int>(holder->pid());
  EXPECT_EQ(1, RealIsProcessAlive(pid));
  holder->Kill();
  EXPECT_EQ(0, RealIsProcessAlive(pid));
  StdoutCapture dead;
  EXPECT_EQ(KOR_S_OK, lock.Lock(Dir(), 2));
  const std::string output = dead.Finish();
  EXPECT_TRUE(output == Repeat(kQuestion + "yes\n", 1) || output == Repeat(kQuestion + "yes\n", 2))
      << output;
  EXPECT_EQ(Names{"lock.2.0"}, Listing());
}

// Four processes take and release the lock of one directory repeatedly;
// each round is an independent directory.
class LockContentionTest : public BBDLockTest, public ::testing::WithParamInterface<int> {};

TEST_P(LockContentionTest, AtMostOneProcessHoldsTheLock) {
  constexpr int kContenders = 4;
  std::vector<std::unique_ptr<RunningChild>> contenders;
  // Some holds outlast the 1.5-second heartbeat period, so that waiting
  // processes also meet a sequence that moves on.
  for (int owner = 1; owner <= kContenders; ++owner) {
    contenders.push_back(Contender(owner, {"2", "40", "0", "100", "3000", "800"}));
  }
  int acquisitions = 0;
  for (int owner = 1; owner <= kContenders; ++owner) {
    EXPECT_EQ(0, contenders[owner - 1]->Wait()) << "contender " << owner << " met another holder";
    const std::string log = idxbase_test::ReadFile(Log(owner));
    for (auto at = log.find("acquired "); at != std::string::npos;
         at = log.find("acquired ", at + 1)) {
      ++acquisitions;
    }
  }
  EXPECT_GE(acquisitions, kContenders);
  EXPECT_EQ(Names{}, Listing()) << "lock files left behind";
}

INSTANTIATE_TEST_SUITE_P(BBDLock, LockContentionTest, ::testing::Range(1, 4));

}  // namespace
