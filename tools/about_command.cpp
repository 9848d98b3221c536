#include <cstdio>

#include "command_line.h"
#include "commands.h"
#include "idxbase/idxbase.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{"about", "",
                            "Prints the library's version and the date and time of its "
                            "build.\n"};

}  // namespace

int AboutCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(kHelp, argc, argv, {}, arguments)) return kExitUsage;
  if (arguments.help) return PrintHelp(kHelp);
  if (!arguments.operands.empty() || arguments.sawSeparator) {
    return UsageError(kHelp, "takes no arguments");
  }
  KORListValKORUnicodeString info;
  GetAboutInfo(info);
  std::printf("idxbase %s.%s.%s, built %s\n", info[3].ConvertToChar(), info[4].ConvertToChar(),
              info[5].ConvertToChar(), info[2].ConvertToChar());
  return kExitSuccess;
}

}  // namespace idxbase_tool
