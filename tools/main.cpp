// idxbase: the command-line tool of the idxbase library.
#include <cstdio>
#include <cstring>

#include "commands.h"

namespace {

struct Command {
  const char* name;
  int (*run)(int argc, char** argv);
  const char* summary;
};

constexpr Command kCommands[] = {
    {"about", idxbase_tool::AboutCommand, "print the version and build information"},
    {"flags", idxbase_tool::FlagsCommand,
     "print the development switches read from the environment"},
};

void PrintUsage(FILE* out) {
  std::fprintf(out, "usage: idxbase <command> [arguments]\n\ncommands:\n");
  for (const Command& command : kCommands) {
    std::fprintf(out, "  %-8s %s\n", command.name, command.summary);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    PrintUsage(stderr);
    return 2;
  }
  if (std::strcmp(argv[1], "help") == 0 || std::strcmp(argv[1], "--help") == 0) {
    PrintUsage(stdout);
    return 0;
  }
  for (const Command& command : kCommands) {
    if (std::strcmp(argv[1], command.name) == 0) return command.run(argc - 2, argv + 2);
  }
  std::fprintf(stderr, "idxbase: unknown command '%s'\n\n", argv[1]);
  PrintUsage(stderr);
  return 2;
}
