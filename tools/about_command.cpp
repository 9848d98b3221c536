#include <cstdio>

#include "command_line.h"
#include "commands.h"
#include "idxbase/idxbase.h"
#include "idxbase_build_info.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{"about", "",
                            "Prints the library's version and the date and time of its "
                            "build.\n"};

constexpr CommandHelp kVersionHelp{"version", "",
                                   "Prints \"idxbase\" and the version of the tool, as\n"
                                   "\"idxbase --version\" does.\n"};

}  // namespace

int VersionCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(kVersionHelp, argc, argv, {}, arguments)) return kExitUsage;
  if (arguments.help) return PrintHelp(kVersionHelp);
  if (!arguments.operands.empty() || arguments.sawSeparator) {
    return UsageError(kVersionHelp, "takes no arguments");
  }
  std::printf("idxbase %d.%d.%d\n", IDXBASE_VERSION_MAJOR, IDXBASE_VERSION_MINOR,
              IDXBASE_VERSION_PATCH);
  return kExitSuccess;
}

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
