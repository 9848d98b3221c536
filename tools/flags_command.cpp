// idxbase flags: the development switches as the library describes them
// (idxbase/dev_flags.h), with the values the library read.
#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "idxbase/dev_flags.h"

namespace idxbase_tool {
namespace {

using idxbase::DevFlagInfo;
using idxbase::FlagValue;

// The help, with the rules as the switch table states them.
const CommandHelp& Help() {
  static const std::string details = [] {
    std::string text =
        "Lists every development switch: its name (member or accessor of IDX_DEV_LA),\n"
        "the environment variable it reads, its rule, its value when the variable is\n"
        "not defined, and its value in this process.\n"
        "\n"
        "  --json   print a JSON array of objects with the keys name, variable,\n"
        "           rule, default and value (true/false, numbers, strings or null)\n"
        "\n"
        "Rules:\n";
    std::size_t count = 0;
    const idxbase::FlagRuleInfo* rules = idxbase::DescribeFlagRules(count);
    for (std::size_t i = 0; i < count; ++i) {
      char line[160];
      std::snprintf(line, sizeof line, "  %-10s  %s\n", rules[i].name, rules[i].meaning);
      text += line;
    }
    return text +
           "\"per call\" switches are read at every call; the others once, when the\n"
           "library is loaded.\n";
  }();
  static const CommandHelp help{"flags", "[--json]", details.c_str()};
  return help;
}

using Row = std::array<std::string, 5>;

std::string Variables(const DevFlagInfo& flag) {
  std::string text = flag.variable;
  if (flag.secondVariable != nullptr) text += std::string(",") + flag.secondVariable;
  return text;
}

std::string Rule(const DevFlagInfo& flag) {
  return std::string(flag.rule->name) + (flag.readAtEachCall ? ", per call" : "");
}

std::string Plain(const FlagValue& value) {
  switch (value.kind) {
    case FlagValue::Kind::kTruth:
      return value.number != 0 ? "true" : "false";
    case FlagValue::Kind::kNumber:
      return std::to_string(value.number);
    case FlagValue::Kind::kText:
      break;
  }
  return value.text == nullptr ? "(null)" : std::string("\"") + value.text + "\"";
}

std::string JsonString(const std::string& text) {
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      quoted += escape;
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::string Json(const FlagValue& value) {
  if (value.kind != FlagValue::Kind::kText) return Plain(value);
  return value.text == nullptr ? "null" : JsonString(value.text);
}

void PrintTable() {
  std::vector<Row> rows = {{"NAME", "VARIABLE", "RULE", "DEFAULT", "VALUE"}};
  for (std::size_t i = 0; i < idxbase::DevFlagCount(); ++i) {
    const DevFlagInfo flag = idxbase::DescribeDevFlag(i);
    rows.push_back(
        {flag.name, Variables(flag), Rule(flag), Plain(flag.fallback), Plain(flag.current)});
  }
  std::array<int, 4> widths{};
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
      widths[column] = std::max(widths[column], static_cast<int>(row[column].size()));
    }
  }
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
      std::printf("%-*s  ", widths[column], row[column].c_str());
    }
    std::printf("%s\n", row[4].c_str());
  }
}

void PrintJson() {
  std::printf("[");
  const char* separator = "\n";
  for (std::size_t i = 0; i < idxbase::DevFlagCount(); ++i) {
    const DevFlagInfo flag = idxbase::DescribeDevFlag(i);
    std::printf(
        "%s  {\"name\": %s, \"variable\": %s, \"rule\": %s, \"default\": %s, \"value\": %s}",
        separator, JsonString(flag.name).c_str(), JsonString(Variables(flag)).c_str(),
        JsonString(Rule(flag)).c_str(), Json(flag.fallback).c_str(), Json(flag.current).c_str());
    separator = ",\n";
  }
  std::printf("\n]\n");
}

}  // namespace

int FlagsCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(Help(), argc, argv, {{"--json", false}}, arguments)) return kExitUsage;
  if (arguments.help) return PrintHelp(Help());
  if (!arguments.operands.empty() || arguments.sawSeparator) {
    return UsageError(Help(), "takes no operands");
  }
  if (arguments.Has("--json")) {
    PrintJson();
  } else {
    PrintTable();
  }
  return kExitSuccess;
}

}  // namespace idxbase_tool
