// What every command of the idxbase tool shares: its help text, the
// sorting of its arguments into options and operands, and the form of its
// messages. Errors go to standard error as "idxbase <command>: <message>".
#ifndef IDXBASE_TOOLS_COMMAND_LINE_H_
#define IDXBASE_TOOLS_COMMAND_LINE_H_

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace idxbase_tool {

// Exit statuses shared by the commands ("lock" adds those of the command
// it runs, see child_command.h).
constexpr int kExitSuccess = 0;
constexpr int kExitNegative = 1;  // a negative answer, or a failure
constexpr int kExitUsage = 2;
constexpr int kExitLockHeld = 75;  // EX_TEMPFAIL: another owner holds the lock

// The exit statuses as "idxbase help" lists them.
extern const char kExitStatusHelp[];

// A command's description, printed by "--help": "usage: idxbase <name>
// <synopsis>", then `details` (lines ending in "\n").
struct CommandHelp {
  const char* name;
  const char* synopsis;
  const char* details;
};

// An option a command accepts: "--owner" with a value ("--owner 5" or
// "--owner=5"), or a flag such as "--quiet". `alias` is an optional short
// form ("-j"), whose value follows as the next argument or attached
// ("-j4").
struct KnownOption {
  const char* name;
  bool takesValue;
  const char* alias = nullptr;
};

// A command's arguments, sorted out by ParseArguments.
struct ParsedArguments {
  bool help = false;                                         // "--help" or "-h" was given
  std::vector<std::pair<std::string, std::string>> options;  // in the order given
  std::vector<char*> operands;
  bool sawSeparator = false;  // "--" was given
  std::vector<char*> rest;    // the arguments after "--"

  bool Has(const char* name) const;
  // The value given last for option `name`, or null.
  const char* Value(const char* name) const;
};

// Sorts `argv` (the arguments after the command's name) into options of
// `known`, operands and the arguments after "--". Returns false, after
// reporting the problem as a usage error, for an unknown option or an
// option without its value.
[[nodiscard]] bool ParseArguments(const CommandHelp& help, int argc, char** argv,
                                  std::initializer_list<KnownOption> known, ParsedArguments& out);

// Writes the full help text to standard output; returns kExitSuccess.
int PrintHelp(const CommandHelp& help);
// Writes "idxbase <name>: <message>" and the usage line to standard
// error; returns kExitUsage.
int UsageError(const CommandHelp& help, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
// Writes "idxbase <command>: <message>" and a line end to standard error.
void ReportError(const char* command, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

// True when `path` is a directory; otherwise reports why not, as
// "idxbase <command>: <path>: <reason>", and returns false.
[[nodiscard]] bool CheckDirectory(const char* command, const char* path);

// Reads a whole decimal int ("-12"); false for anything else, also out of
// range.
[[nodiscard]] bool ParseInt(const char* text, int& value);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_COMMAND_LINE_H_
