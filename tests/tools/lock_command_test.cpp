// idxbase lock and islocked with real processes. A holder's lock files
// are recognised as alive (or dead) only after a 2-second wait, so the
// cases that meet a lock take a few seconds each.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <string>
#include <thread>

#include "tool_runner.h"

namespace idxbase_test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class LockCommand : public ToolTest {
 protected:
  std::string LockSubdirectory() const { return Path("lock"); }

  // The names of the lock files now in the directory's lock subdirectory.
  std::vector<std::string> LockFiles() const {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(LockSubdirectory(), error)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  // Waits up to 10 seconds for a lock file to appear.
  bool WaitForLockFile() const {
    for (int i = 0; i < 200; ++i) {
      if (!LockFiles().empty()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
  }
};

TEST_F(LockCommand, AHolderLocksOutOthersUntilItsCommandEnds) {
  std::future<ChildResult> holder = std::async(std::launch::async, [&] {
    return RunTool({"lock", dir_.path(), "--owner", "4242", "--", "sleep", "7"});
  });
  ASSERT_TRUE(WaitForLockFile());
  EXPECT_THAT(LockFiles()[0], HasSubstr("lock.4242."));

  // Standard output holds the answer alone: the library's messages about
  // the lock files go to standard error.
  ChildResult query = RunChild({"/bin/sh", "-c", "\"$0\" islocked \"$1\" 2>/dev/null",
                                BuiltProgram("tools/idxbase"), dir_.path()},
                               {});
  EXPECT_EQ(0, query.exitCode) << query.output;
  EXPECT_EQ("locked\n", query.output);
  // The holder's own files do not count for it.
  ChildResult asHolder = RunTool({"islocked", dir_.path(), "--owner", "4242", "--quiet"});
  EXPECT_EQ(1, asHolder.exitCode) << asHolder.output;
  EXPECT_EQ("", asHolder.output);

  // Both give up while the holder still holds: at once, and after a wait.
  std::future<ChildResult> waiting = std::async(std::launch::async, [&] {
    return RunTool({"lock", dir_.path(), "--wait", "0.5", "--", "true"});
  });
  ChildResult contender = RunTool({"lock", dir_.path(), "-n", "--", "true"});
  EXPECT_EQ(75, contender.exitCode) << contender.output;
  EXPECT_THAT(contender.output,
              HasSubstr("idxbase lock: " + dir_.path() + " is locked by another living owner\n"));
  ChildResult waited = waiting.get();
  EXPECT_EQ(75, waited.exitCode) << waited.output;

  ChildResult held = holder.get();
  EXPECT_EQ(0, held.exitCode) << held.output;
  EXPECT_THAT(LockFiles(), IsEmpty());
  ChildResult after = RunTool({"islocked", dir_.path()});
  EXPECT_EQ(1, after.exitCode) << after.output;
  EXPECT_EQ("not locked\n", after.output);
}

// A holder killed with SIGKILL cannot release anything: its command must
// die with it, so that the next holder does not run beside it. The
// library's message about the dead holder's files stays off the next
// command's standard output.
TEST_F(LockCommand, AKilledHolderTakesItsCommandWithIt) {
  const char* script = R"sh(
    pidfile=$2/command.pid
    "$0" lock "$1" -- sh -c 'echo $$ > "$0"; exec sleep 100' "$pidfile" &
    holder=$!
    i=0
    until [ -s "$pidfile" ]; do i=$((i + 1)); [ $i -gt 1000 ] && exit 90; sleep 0.01; done
    kill -KILL $holder
    wait $holder 2>/dev/null
    command=$(cat "$pidfile")
    # Gone, or a zombie that no one has reaped yet.
    i=0
    while [ -e /proc/$command ] && [ "$(cut -d' ' -f3 /proc/$command/stat)" != Z ]; do
      i=$((i + 1)); [ $i -gt 500 ] && { kill $command; exit 91; }; sleep 0.01
    done
    "$0" lock "$1" -n -- echo next 2>/dev/null
  )sh";
  std::filesystem::create_directory(Path("index"));
  const ChildResult run =
      RunChild({"/bin/sh", "-c", script, BuiltProgram("tools/idxbase"), Path("index"), dir_.path()},
               {{"PATH", "/usr/bin:/bin"}});
  EXPECT_EQ(0, run.exitCode) << run.output;
  EXPECT_EQ("next\n", run.output);
}

TEST_F(LockCommand, ReturnsTheCommandsStatusAndReleasesTheLock) {
  const struct {
    std::vector<std::string> command;
    int exitCode;
  } cases[] = {
      {{"true"}, 0},
      {{"sh", "-c", "exit 7"}, 7},
      {{"sh", "-c", "kill -TERM $$"}, 128 + 15},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"lock", dir_.path(), "--"};
    arguments.insert(arguments.end(), c.command.begin(), c.command.end());
    ChildResult run = RunTool(arguments);
    EXPECT_EQ(c.exitCode, run.exitCode) << c.command.back() << ": " << run.output;
    EXPECT_THAT(LockFiles(), IsEmpty()) << c.command.back();
  }
  // Arguments after "--" belong to the command, options included.
  EXPECT_EQ("--owner x\n", RunTool({"lock", dir_.path(), "--", "echo", "--owner", "x"}).output);
}

TEST_F(LockCommand, ReportsWhatCannotBeRunOrLocked) {
  ChildResult missing = RunTool({"lock", dir_.path(), "--", "no-such-command-here"});
  EXPECT_EQ(127, missing.exitCode) << missing.output;
  EXPECT_THAT(missing.output, HasSubstr("idxbase lock: cannot run 'no-such-command-here': "));
  EXPECT_THAT(LockFiles(), IsEmpty());

  const std::string nowhere = Path("nowhere");
  ChildResult noDirectory = RunTool({"lock", nowhere, "--", "true"});
  EXPECT_EQ(1, noDirectory.exitCode) << noDirectory.output;
  EXPECT_EQ("idxbase lock: " + nowhere + ": No such file or directory\n", noDirectory.output);

  ChildResult query = RunTool({"islocked", nowhere});
  EXPECT_EQ(2, query.exitCode) << query.output;
  EXPECT_EQ("idxbase islocked: " + nowhere + ": No such file or directory\n", query.output);
}

TEST_F(LockCommand, UsageErrors) {
  const std::vector<std::string> cases[] = {
      {"lock"},
      {"lock", dir_.path()},
      {"lock", dir_.path(), "true"},
      {"lock", dir_.path(), "--"},
      {"lock", dir_.path(), "--owner", "12x", "--", "true"},
      {"lock", dir_.path(), "--owner", "99999999999", "--", "true"},
      {"lock", dir_.path(), "--owner"},
      {"lock", dir_.path(), "--owner", "-1", "--", "true"},
      {"lock", dir_.path(), "--wait", "soon", "--", "true"},
      {"lock", dir_.path(), "-n", "--wait", "1", "--", "true"},
      {"islocked"},
      {"islocked", dir_.path(), dir_.path()},
      {"islocked", dir_.path(), "--owner", ""},
      {"islocked", dir_.path(), "--loud"},
  };
  for (const auto& arguments : cases) {
    ChildResult run = RunTool(arguments);
    EXPECT_EQ(2, run.exitCode) << arguments.back() << ": " << run.output;
    EXPECT_THAT(run.output, HasSubstr("idxbase " + arguments[0] + ": "));
    EXPECT_THAT(run.output, HasSubstr("usage: idxbase " + arguments[0] + " DIR"));
  }
  EXPECT_THAT(LockFiles(), IsEmpty());
}

}  // namespace
}  // namespace idxbase_test
