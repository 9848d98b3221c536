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

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class LockCommand : public ToolTest {
 protected:
  // The names of the lock files now in the directory's lock subdirectory.
  std::vector<std::string> LockFiles() const {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(Path("lock"), error)) {
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
  ChildResult query = RunShell("\"$0\" islocked \"$1\" 2>/dev/null", {dir_.path()});
  EXPECT_EQ(0, query.exitCode) << query.output;
  EXPECT_EQ("locked\n", query.output);
  // The holder's own files do not count for it.
  ExpectRuns({{{"islocked", dir_.path(), "--owner", "4242", "--quiet"}, 1, ""}});

  // Others give up while the holder still holds: at once, and after a wait.
  std::future<ChildResult> waiting = std::async(std::launch::async, [&] {
    return RunTool({"lock", dir_.path(), "--wait", "0.5", "--", "true"});
  });
  ExpectRuns(
      {{{"lock", dir_.path(), "-n", "--", "true"},
        75,
        HasSubstr("idxbase lock: " + dir_.path() + " is locked by another living owner\n")}});
  EXPECT_EQ(75, waiting.get().exitCode);

  EXPECT_EQ(0, holder.get().exitCode);
  EXPECT_THAT(LockFiles(), IsEmpty());
  ExpectRuns({{{"islocked", dir_.path()}, 1, "not locked\n"}});
}

// A holder killed with SIGKILL cannot release anything: its command must
// die with it, so that the next holder does not run beside it. The
// library's message about the dead holder's files stays off the next
// command's standard output.
TEST_F(LockCommand, AKilledHolderTakesItsCommandWithIt) {
  const char* script = R"sh(
    pidfile=$1/command.pid
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
  const ChildResult run = RunShell(script, {dir_.path()});
  EXPECT_EQ(0, run.exitCode) << run.output;
  EXPECT_EQ("next\n", run.output);
}

// The command's status, or why it cannot be run or locked, or why the
// arguments are not understood; the lock is released whatever happens.
// Arguments after "--" belong to the command, options included.
TEST_F(LockCommand, ReturnsTheCommandsStatusOrSaysWhyNot) {
  const std::string dir = dir_.path();
  const std::string nowhere = Path("nowhere");
  std::vector<ToolRun> runs = {
      {{"lock", dir, "--", "true"}, 0, ""},
      {{"lock", dir, "--", "sh", "-c", "exit 7"}, 7, ""},
      {{"lock", dir, "--", "sh", "-c", "kill -TERM $$"}, 128 + 15, ""},
      {{"lock", dir, "--", "echo", "--owner", "x"}, 0, "--owner x\n"},
      {{"lock", dir, "--", "no-such-command-here"},
       127,
       HasSubstr("idxbase lock: cannot run 'no-such-command-here': ")},
      {{"lock", nowhere, "--", "true"},
       1,
       "idxbase lock: " + nowhere + ": No such file or directory\n"},
      {{"islocked", nowhere}, 2, "idxbase islocked: " + nowhere + ": No such file or directory\n"},
  };
  const std::vector<std::string> usageErrors[] = {
      {"lock"},
      {"lock", dir},
      {"lock", dir, "true"},
      {"lock", dir, "--"},
      {"lock", dir, "--owner", "12x", "--", "true"},
      {"lock", dir, "--owner"},
      {"lock", dir, "--owner", "-1", "--", "true"},
      {"lock", dir, "--wait", "soon", "--", "true"},
      {"lock", dir, "-n", "--wait", "1", "--", "true"},
      {"islocked"},
      {"islocked", dir, dir},
      {"islocked", dir, "--owner", ""},
      {"islocked", dir, "--loud"},
  };
  for (const auto& arguments : usageErrors) {
    runs.push_back({arguments, 2,
                    AllOf(HasSubstr("idxbase " + arguments[0] + ": "),
                          HasSubstr("usage: idxbase " + arguments[0] + " DIR"))});
  }
  ExpectRuns(runs);
  EXPECT_THAT(LockFiles(), IsEmpty());
}

}  // namespace
}  // namespace idxbase_test
