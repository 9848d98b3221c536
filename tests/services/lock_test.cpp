#include "idxbase/lock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
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

// A lock_contender process with `arguments`, writing to `log`.
std::unique_ptr<RunningChild> Contender(Names arguments, const std::string& log) {
  arguments.insert(arguments.begin(), idxbase_test::BuiltProgram("tests/services/lock_contender"));
  return std::make_unique<RunningChild>(arguments, log);
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
  void Touch(const std::string& name) const {
    std::filesystem::create_directories(LockDir());
    idxbase_test::WriteFile(LockDir() + "/" + name, "");
  }
  // Starts a process that holds the lock for `owner` and waits until it
  // does.
  std::unique_ptr<RunningChild> StartHolder(int owner) const {
    const std::string ready = dir_.Join("ready");
    auto holder =
        Contender({"hold", dir_.path(), std::to_string(owner), ready}, dir_.Join("holder.log"));
    EXPECT_TRUE(WaitUntil([&] { return FileExists(ready); }, 20s)) << "the holder did not lock";
    return holder;
  }

  TempDir dir_;
};

TEST_F(BBDLockTest, LockTakesFileZeroAndTheHeartbeatReplacesIt) {
  BBDLock lock;
  const Clock::time_point start = Clock::now();
  ASSERT_EQ(KOR_S_OK, lock.Lock(Dir(), 7));
  EXPECT_EQ(Names{"lock.7.0"}, Listing());
  ASSERT_TRUE(WaitUntil([&] { return Listing() == Names{"lock.7.1"}; }, 5s)) << Listing().size();
  EXPECT_GE(Clock::now() - start, 1400ms);

  const Clock::time_point unlock = Clock::now();
  lock.Unlock();
  EXPECT_LT(Clock::now() - unlock, 500ms) << "Unlock waited for the heartbeat period";
  EXPECT_EQ(Names{}, Listing());
  EXPECT_FALSE(lock.IsRunning());
}

TEST_F(BBDLockTest, UnlockDeletesTheCurrentFileAndItsNeighboursOnly) {
  BBDLock lock;
  ASSERT_EQ(KOR_S_OK, lock.Lock(Dir(), 7));
  for (const char* name : {"lock.7.1", "lock.7.-1", "lock.7.2", "lock.8.0", "readme"}) Touch(name);
  lock.Unlock();
  EXPECT_EQ((Names{"lock.7.2", "lock.8.0", "readme"}), Listing());
}

// Its own living files count as another owner's, so the lock stays as it
// was and its sequence goes on until the object is destroyed.
TEST_F(BBDLockTest, LockingAgainAnswersThatTheLockIsHeld) {
  {
    BBDLock lock;
    ASSERT_EQ(KOR_S_OK, lock.Lock(Dir(), 7));
    ASSERT_TRUE(WaitUntil([&] { return Listing() == Names{"lock.7.1"}; }, 5s));
    StdoutCapture capture;
    EXPECT_EQ(KOR_S_FALSE, lock.Lock(Dir(), 7));
    EXPECT_EQ(kQuestion + "no\n", capture.Finish());
    EXPECT_TRUE(lock.IsRunning());
    const Names files = Listing();
    EXPECT_TRUE(files == Names{"lock.7.2"} || files == Names{"lock.7.3"}) << files.size();
  }
  EXPECT_EQ(Names{}, Listing()) << "destruction left the heartbeat's file";
}

// The current directory while the object exists.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::string& path) : previous_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~WorkingDirectory() { std::filesystem::current_path(previous_); }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::filesystem::path previous_;
};

// "" is the current directory, and trailing separators change nothing: the
// lock files are made, listed and followed in one place.
TEST_F(BBDLockTest, EverySpellingOfTheDirectoryNamesTheSameLockFiles) {
  const WorkingDirectory inside(dir_.path());
  for (const std::string& directory : {std::string(), std::string("./"), dir_.path() + "//"}) {
    SCOPED_TRACE("directory \"" + directory + "\"");
    {
      BBDLock holder;
      ASSERT_EQ(KOR_S_OK, holder.Lock(directory.c_str(), 7));
      EXPECT_EQ(Names{"lock.7.0"}, Listing());
      EXPECT_TRUE(BBDLock::IsLocked(directory.c_str(), 8, true));
      EXPECT_FALSE(Listing().empty()) << "the living holder's files were deleted";
    }
    EXPECT_EQ(Names{}, Listing()) << "the holder's files outlived it";
  }
}

TEST_F(BBDLockTest, LockFailsWhenTheFirstFileCannotBeCreated) {
  BBDLock lock;
  EXPECT_EQ(KOR_E_FAIL, lock.Lock(dir_.Join("missing/index").c_str(), 7));
  EXPECT_FALSE(lock.IsRunning());
}

TEST_F(BBDLockTest, CopiesNameTheSameFilesWithAnIdleThread) {
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
  Touch("lock.7.0");
  assigned.Unlock();
  EXPECT_EQ(Names{}, Listing());
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
  for (const std::string& file : c.files) Touch(file);

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
  const std::unique_ptr<RunningChild> holder = StartHolder(1);
  StdoutCapture living;
  BBDLock lock;
  EXPECT_EQ(KOR_S_FALSE, lock.Lock(Dir(), 2));
  EXPECT_EQ(kQuestion + "no\n", living.Finish());
  const Names files = Listing();
  EXPECT_FALSE(files.empty());
  for (const std::string& name : files) EXPECT_EQ(0u, name.rfind("lock.1.", 0)) << name;

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
  const std::string marker = dir_.Join("marker");
  std::vector<std::unique_ptr<RunningChild>> contenders;
  for (int owner = 1; owner <= kContenders; ++owner) {
    contenders.push_back(
        Contender({"contend", dir_.path(), std::to_string(owner), "2", marker, "40"},
                  dir_.Join("log" + std::to_string(owner))));
  }
  int total = 0;
  for (int owner = 1; owner <= kContenders; ++owner) {
    EXPECT_EQ(0, contenders[owner - 1]->Wait()) << "contender " << owner;
    const std::string log = idxbase_test::ReadFile(dir_.Join("log" + std::to_string(owner)));
    int acquired = -1;
    int violations = -1;
    const std::size_t summary = log.rfind("acquired ");
    ASSERT_NE(std::string::npos, summary) << log;
    ASSERT_EQ(
        2, std::sscanf(log.c_str() + summary, "acquired %d violations %d", &acquired, &violations));
    EXPECT_EQ(0, violations) << "contender " << owner;
    total += acquired;
  }
  EXPECT_GE(total, kContenders);
  EXPECT_FALSE(FileExists(marker));
  EXPECT_EQ(Names{}, Listing()) << "lock files left behind";
}

INSTANTIATE_TEST_SUITE_P(BBDLock, LockContentionTest, ::testing::Range(1, 4));

}  // namespace
