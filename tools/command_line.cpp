#include "command_line.h"

#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

namespace idxbase_tool {
namespace {

__attribute__((format(printf, 2, 0))) void WriteMessage(const char* command, const char* format,
                                                        va_list arguments) {
  // What was printed before the message comes before it in a shared log.
  std::fflush(stdout);
  std::fprintf(stderr, "idxbase %s: ", command);
  std::vfprintf(stderr, format, arguments);
  std::fputc('\n', stderr);
}

const KnownOption* FindOption(std::initializer_list<KnownOption> known, std::string_view name) {
  for (const KnownOption& option : known) {
    if (name == option.name || (option.alias != nullptr && name == option.alias)) return &option;
  }
  return nullptr;
}

// A short option with its value attached ("-j4"): the option, with `value`
// set; null for anything else.
const KnownOption* FindAttached(std::initializer_list<KnownOption> known, std::string_view argument,
                                std::string_view& value) {
  if (argument.size() <= 2 || argument[1] == '-') return nullptr;
  const KnownOption* option = FindOption(known, argument.substr(0, 2));
  if (option == nullptr || !option->takesValue) return nullptr;
  value = argument.substr(2);
  return option;
}

void PrintUsageLine(FILE* out, const CommandHelp& help) {
  std::fprintf(out, "usage: idxbase %s%s%s\n", help.name, *help.synopsis != '\0' ? " " : "",
               help.synopsis);
}

bool IsOption(const char* argument) { return argument[0] == '-' && argument[1] != '\0'; }

}  // namespace

const char kExitStatusHelp[] =
    "Exit status: 0 success (for checksum --check, every file matches; for\n"
    "islocked, locked); 1 a negative answer or a failure, with the reason on\n"
    "standard error; 2 a usage error. lock adds: 75 when another living owner\n"
    "holds the lock, and else the status of its command: 126 when the command\n"
    "cannot be run, 127 when it is not found, 128 + n when signal n ended it.\n";

bool ParsedArguments::Has(const char* name) const { return Value(name) != nullptr; }

const char* ParsedArguments::Value(const char* name) const {
  const char* found = nullptr;
  for (const auto& [option, value] : options) {
    if (option == name) found = value.c_str();
  }
  return found;
}

bool ParseArguments(const CommandHelp& help, int argc, char** argv,
                    std::initializer_list<KnownOption> known, ParsedArguments& out) {
  for (int i = 0; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--") {
      out.sawSeparator = true;
      out.rest.assign(argv + i + 1, argv + argc);
      return true;
    }
    if (!IsOption(argv[i])) {
      out.operands.push_back(argv[i]);
      continue;
    }
    if (argument == "--help" || argument == "-h") {
      out.help = true;
      continue;
    }
    std::string_view attached;
    if (const KnownOption* option = FindAttached(known, argument, attached)) {
      out.options.emplace_back(option->name, std::string(attached));
      continue;
    }
    const std::size_t equals = argument.find('=');
    const KnownOption* option = FindOption(known, argument.substr(0, equals));
    if (option == nullptr || (equals != std::string_view::npos && !option->takesValue)) {
      UsageError(help, "unknown option '%s'", argv[i]);
      return false;
    }
    if (!option->takesValue) {
      out.options.emplace_back(option->name, "");
    } else if (equals != std::string_view::npos) {
      out.options.emplace_back(option->name, std::string(argument.substr(equals + 1)));
    } else if (i + 1 < argc) {
      out.options.emplace_back(option->name, argv[++i]);
    } else {
      UsageError(help, "option '%s' needs a value", option->name);
      return false;
    }
  }
  return true;
}

int PrintHelp(const CommandHelp& help) {
  PrintUsageLine(stdout, help);
  std::printf("\n%s", help.details);
  return kExitSuccess;
}

int UsageError(const CommandHelp& help, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  WriteMessage(help.name, format, arguments);
  va_end(arguments);
  PrintUsageLine(stderr, help);
  return kExitUsage;
}

void ReportError(const char* command, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  WriteMessage(command, format, arguments);
  va_end(arguments);
}

bool CheckDirectory(const char* command, const char* path) {
  struct stat status {};
  const int error = stat(path, &status) != 0 ? errno : S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
  if (error != 0) ReportError(command, "%s: %s", path, std::strerror(error));
  return error == 0;
}

bool ParseInt(const char* text, int& value) {
  // strtol would also take leading white space and a plus sign.
  if (*text == '\0' || *text == '+' || std::isspace(static_cast<unsigned char>(*text))) {
    return false;
  }
  char* end = nullptr;
  errno = 0;
  const long parsed = std::strtol(text, &end, 10);
  if (errno != 0 || *end != '\0' || parsed < std::numeric_limits<int>::min() ||
      parsed > std::numeric_limits<int>::max())
    return false;
  value = static_cast<int>(parsed);
  return true;
}

}  // namespace idxbase_tool
