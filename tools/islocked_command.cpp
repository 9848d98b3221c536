// idxbase islocked: asks whether a living owner holds a directory's
// BBDLock.
#include <cstdio>

#include "command_line.h"
#include "commands.h"
#include "idxbase/lock.h"
#include "stdout_to_stderr.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "islocked", "DIR [--owner N] [--quiet]",
    "Tells whether a living owner holds the lock of directory DIR\n"
    "(BBDLock::IsLocked), printing \"locked\" or \"not locked\". The library's\n"
    "messages about the lock files it finds go to standard error.\n"
    "\n"
    "  --owner N   ignore the lock files of owner N (default: consider every owner)\n"
    "  --quiet     print nothing, not even the library's liveness messages\n"
    "\n"
    "Each foreign lock file found costs a 2-second wait, to tell a living holder\n"
    "from a dead one; files of dead holders are removed.\n"
    "\n"
    "Exit status: 0 when locked, 1 when not, 2 on a usage error or when DIR is\n"
    "not a directory.\n"};

constexpr char kName[] = "islocked";

}  // namespace

int IsLockedCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(kHelp, argc, argv, {{"--owner", true}, {"--quiet", false}}, arguments)) {
    return kExitUsage;
  }
  if (arguments.help) return PrintHelp(kHelp);
  if (arguments.operands.size() != 1 || arguments.sawSeparator) {
    return UsageError(kHelp, "give exactly one directory");
  }
  int owner = -1;
  const char* ownerText = arguments.Value("--owner");
  if (ownerText != nullptr && !ParseInt(ownerText, owner)) {
    return UsageError(kHelp, "the owner must be an integer, not '%s'", ownerText);
  }
  const char* directory = arguments.operands[0];
  if (!CheckDirectory(kName, directory)) return kExitUsage;

  const bool quiet = arguments.Has("--quiet");
  bool locked = false;
  {
    const StdoutToStderr libraryMessages;
    locked = BBDLock::IsLocked(directory, owner, quiet);
  }
  if (!quiet) std::puts(locked ? "locked" : "not locked");
  return locked ? kExitSuccess : kExitNegative;
}

}  // namespace idxbase_tool
