// idxbase: the command-line tool of the idxbase library.
#include <cstdio>
#include <cstring>

#include "command_line.h"
#include "commands.h"

namespace {

struct Command {
  const char* name;
  int (*run)(int argc, char** argv);
  const char* summary;
};

// Each command answers "--help" itself; "idxbase help NAME" asks it.
constexpr Command kCommands[] = {
    {"about", idxbase_tool::AboutCommand, "print the version and build information"},
    {"checksum", idxbase_tool::ChecksumCommand, "write or verify the .checksum files of files"},
    {"demo", idxbase_tool::DemoCommand,
     "run filters over a built-in table of a million parts, with timings"},
    {"filter", idxbase_tool::FilterCommand,
     "print the records of a typed CSV file that match a filter"},
    {"flags", idxbase_tool::FlagsCommand,
     "list the development switches: variable, rule, default and value"},
    {"islocked", idxbase_tool::IsLockedCommand, "tell whether a directory's lock is held"},
    {"lock", idxbase_tool::LockCommand, "run a command while holding a directory's lock"},
    {"names", idxbase_tool::NamesCommand, "print the names of an index's files and directories"},
    {"version", idxbase_tool::VersionCommand, "print the version of the tool (also --version)"},
};

void PrintUsage(FILE* out) {
  std::fprintf(out,
               "usage: idxbase <command> [arguments]\n       idxbase --version\n\ncommands:\n");
  for (const Command& command : kCommands) {
    std::fprintf(out, "  %-10s %s\n", command.name, command.summary);
  }
  std::fprintf(out, "\n'idxbase help <command>' or 'idxbase <command> --help' describes one.\n\n%s",
               idxbase_tool::kExitStatusHelp);
}

const Command* Find(const char* name) {
  for (const Command& command : kCommands) {
    if (std::strcmp(name, command.name) == 0) return &command;
  }
  std::fprintf(stderr, "idxbase: unknown command '%s'\n\n", name);
  PrintUsage(stderr);
  return nullptr;
}

// "idxbase help" lists the commands; "idxbase help NAME" is "idxbase NAME
// --help".
int Help(int argc, char** argv) {
  if (argc == 0) {
    PrintUsage(stdout);
    return 0;
  }
  if (argc > 1) {
    std::fprintf(stderr, "idxbase help: give one command name\n");
    return 2;
  }
  const Command* command = Find(argv[0]);
  if (command == nullptr) return 2;
  char helpOption[] = "--help";
  char* arguments[] = {helpOption, nullptr};
  return command->run(1, arguments);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    PrintUsage(stderr);
    return 2;
  }
  if (std::strcmp(argv[1], "help") == 0 || std::strcmp(argv[1], "--help") == 0 ||
      std::strcmp(argv[1], "-h") == 0) {
    return Help(argc - 2, argv + 2);
  }
  if (std::strcmp(argv[1], "--version") == 0)
    return idxbase_tool::VersionCommand(argc - 2, argv + 2);
  const Command* command = Find(argv[1]);
  if (command == nullptr) return 2;
  return command->run(argc - 2, argv + 2);
}
