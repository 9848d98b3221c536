// idxbase lock: runs a command while holding a directory's BBDLock.
#include <unistd.h>

#include <vector>

#include "child_command.h"
#include "command_line.h"
#include "commands.h"
#include "idxbase/lock.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "lock", "DIR [--owner N] -- COMMAND [ARGS...]",
    "Takes the lock of directory DIR (a BBDLock: files DIR/lock/lock.<owner>.<n>\n"
    "renewed by a heartbeat), runs COMMAND while holding it, then releases it.\n"
    "\n"
    "  --owner N   the owner number written in the lock file names\n"
    "              (default: this process's id)\n"
    "\n"
    "Taking the lock waits 2 seconds for each foreign lock file found, to tell\n"
    "a living holder from a dead one; files of dead holders are removed.\n"
    "\n"
    "Exit status: COMMAND's exit status, or 128 + the signal number when a\n"
    "signal ended it (127 when COMMAND is not found, 126 when it cannot be\n"
    "run); 75 when another living owner holds the lock; 1 when the lock\n"
    "cannot be taken for another reason; 2 on a usage error.\n"};

constexpr char kName[] = "lock";
constexpr int kExitLockHeld = 75;  // EX_TEMPFAIL: try again later

}  // namespace

int LockCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(kHelp, argc, argv, {{"--owner", true}}, arguments)) return kExitUsage;
  if (arguments.help) return PrintHelp(kHelp);
  if (arguments.operands.empty()) return UsageError(kHelp, "no directory given");
  if (arguments.operands.size() > 1 || !arguments.sawSeparator) {
    return UsageError(kHelp, "give the command after '--'");
  }
  if (arguments.rest.empty()) return UsageError(kHelp, "no command given after '--'");
  int owner = static_cast<int>(getpid());
  const char* ownerText = arguments.Value("--owner");
  if (ownerText != nullptr && !ParseInt(ownerText, owner)) {
    return UsageError(kHelp, "the owner must be an integer, not '%s'", ownerText);
  }

  const char* directory = arguments.operands[0];
  if (!CheckDirectory(kName, directory)) return kExitNegative;
  BBDLock lock;
  const KORStatus status = lock.Lock(directory, owner);
  if (status == KOR_S_FALSE) {
    ReportError(kName, "%s is locked by another living owner", directory);
    return kExitLockHeld;
  }
  if (status != KOR_S_OK) {
    ReportError(kName, "cannot take the lock of %s (cannot create its lock files)", directory);
    return kExitNegative;
  }
  std::vector<char*> command = arguments.rest;
  command.push_back(nullptr);
  const int exitStatus = RunAndWait(kName, command.data());
  lock.Unlock();
  return exitStatus;
}

}  // namespace idxbase_tool
