// idxbase lock: runs a command while holding a directory's BBDLock.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "child_command.h"
#include "command_line.h"
#include "commands.h"
#include "idxbase/kor_file.h"
#include "idxbase/kor_system.h"
#include "idxbase/lock.h"
#include "stdout_to_stderr.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "lock", "DIR [--owner N] [-n | --wait SECONDS] -- COMMAND [ARGS...]",
    "Takes the lock of directory DIR (a BBDLock: files DIR/lock/lock.<owner>.<n>\n"
    "renewed by a heartbeat), runs COMMAND while holding it, then releases it.\n"
    "COMMAND never outlives the lock: it is killed when this process ends, even\n"
    "by SIGKILL, and the hang-up, interrupt, quit and termination signals this\n"
    "process receives are passed on to it.\n"
    "\n"
    "  --owner N          the owner number in the lock file names, 0 or more\n"
    "                     (default: this process's id)\n"
    "  -n, --nonblock     fail at once when another living owner holds the lock\n"
    "  --wait SECONDS     wait at most SECONDS (a decimal number) for the lock\n"
    "\n"
    "Without -n or --wait, waits for the lock as long as it takes. Telling a\n"
    "living holder from a dead one takes 2 seconds for each foreign lock file\n"
    "found; files of dead holders are removed. The library's messages about\n"
    "them go to standard error, so that standard output is COMMAND's alone.\n"
    "\n"
    "Exit status: COMMAND's exit status, or 128 + the signal number when a\n"
    "signal ended it (127 when COMMAND is not found, 126 when it cannot be\n"
    "run); 75 when another living owner holds the lock (with -n, or when the\n"
    "wait is over); 1 when the lock cannot be taken for another reason; 2 on a\n"
    "usage error.\n"};

constexpr char kName[] = "lock";
constexpr unsigned int kRetryMilliseconds = 500;

using Clock = std::chrono::steady_clock;

// A whole or decimal number of seconds, 0 or more.
bool ParseSeconds(const char* text, double& seconds) {
  char* end = nullptr;
  errno = 0;
  seconds = std::strtod(text, &end);
  return *text >= '0' && *text <= '9' && *end == '\0' && errno == 0 && std::isfinite(seconds);
}

// Takes the lock, trying again until `deadline` (none: for ever) while a
// living owner holds it.
KORStatus TakeLock(BBDLock& lock, const char* directory, int owner,
                   std::optional<Clock::time_point> deadline) {
  const StdoutToStderr libraryMessages;
  KORStatus status = lock.Lock(directory, owner);
  bool told = false;
  while (status == KOR_S_FALSE && (!deadline || Clock::now() < *deadline)) {
    if (!told) {
      ReportError(kName, "%s is locked by another living owner; waiting", directory);
      told = true;
    }
    // Quietly until it looks free: each look at a held lock takes 2 seconds.
    if (BBDLock::IsLocked(directory, -1, true)) {
      KORSleep(kRetryMilliseconds);
    } else {
      status = lock.Lock(directory, owner);
    }
  }
  return status;
}

// Why the lock files of `directory` cannot be created, as far as access(2)
// tells (the library does not say).
const char* LockFilesError(const char* directory) {
  const std::string lockDirectory = std::string(directory) + "/lock";
  if (access(lockDirectory.c_str(), W_OK | X_OK) == 0) return "cannot create a file there";
  const int error = errno;
  if (error != ENOENT) return std::strerror(error);
  return access(directory, W_OK | X_OK) == 0 ? "cannot create its lock directory"
                                             : std::strerror(errno);
}

}  // namespace

int LockCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(kHelp, argc, argv,
                      {{"--owner", true}, {"--nonblock", false, "-n"}, {"--wait", true}},
                      arguments)) {
    return kExitUsage;
  }
  if (arguments.help) return PrintHelp(kHelp);
  if (arguments.operands.empty()) return UsageError(kHelp, "no directory given");
  if (arguments.operands.size() > 1 || !arguments.sawSeparator) {
    return UsageError(kHelp, "give the command after '--'");
  }
  if (arguments.rest.empty()) return UsageError(kHelp, "no command given after '--'");
  int owner = static_cast<int>(getpid());
  const char* ownerText = arguments.Value("--owner");
  // A negative owner would name lock files that islocked cannot tell from
  // its "every owner" (-1).
  if (ownerText != nullptr && (!ParseInt(ownerText, owner) || owner < 0)) {
    return UsageError(kHelp, "the owner must be an integer, 0 or more, not '%s'", ownerText);
  }
  std::optional<Clock::time_point> deadline;
  if (const char* waitText = arguments.Value("--wait")) {
    double seconds = 0;
    if (arguments.Has("--nonblock") || !ParseSeconds(waitText, seconds)) {
      return UsageError(kHelp, "--wait takes a number of seconds, without -n, not '%s'", waitText);
    }
    deadline = Clock::now() +
               std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  }
  if (arguments.Has("--nonblock")) deadline = Clock::now();

  const char* directory = arguments.operands[0];
  if (!CheckDirectory(kName, directory)) return kExitNegative;
  BBDLock lock;
  const KORStatus status = TakeLock(lock, directory, owner, deadline);
  if (status == KOR_S_FALSE) {
    ReportError(kName, "%s is locked by another living owner", directory);
    return kExitLockHeld;
  }
  if (status != KOR_S_OK) {
    ReportError(kName, "cannot take the lock of %s: cannot create its lock files: %s", directory,
                LockFilesError(directory));
    return kExitNegative;
  }
  std::vector<char*> command = arguments.rest;
  command.push_back(nullptr);
  const int exitStatus = RunAndWait(kName, command.data());
  lock.Unlock();
  return exitStatus;
}

}  // namespace idxbase_tool
