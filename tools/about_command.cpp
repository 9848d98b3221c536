#include <cstdio>

#include "commands.h"
#include "idxbase/idxbase.h"

namespace idxbase_tool {

int AboutCommand(int argc, char**) {
  if (argc != 0) {
    std::fprintf(stderr, "idxbase about: takes no arguments\n");
    return 2;
  }
  KORListValKORUnicodeString info;
  GetAboutInfo(info);
  std::printf("idxbase %s.%s.%s, built %s\n", info[3].ConvertToChar(), info[4].ConvertToChar(),
              info[5].ConvertToChar(), info[2].ConvertToChar());
  return 0;
}

}  // namespace idxbase_tool
