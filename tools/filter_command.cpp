// idxbase filter: evaluates a filter over the records of a typed CSV file.
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "csv_table.h"
#include "idxbase/filter_parser.h"
#include "input_file.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "filter",
    "(--where EXPR | --file F) [--count] [--explain] [--case-insensitive]\n"
    "       [--var NAME=VALUE]... DATA.csv",
    "Prints the header and every record of DATA.csv for which the filter holds.\n"
    "\n"
    "  --where EXPR        the filter, e.g. 'mass > 2.5 AND name LIKE \"bolt*\"'\n"
    "  --file F            read the filter from file F instead\n"
    "  --count             print only how the records answered\n"
    "  --explain           print the compiled filter first, as the engine renders it\n"
    "  --case-insensitive  compare strings without case (A-Z as a-z)\n"
    "  --var NAME=VALUE    give $NAME the string VALUE (repeatable)\n"
    "\n"
    "The header types the columns: name:string, mass:float, count:int,\n"
    "released:bool, modified:time (2026-11-22 or 2026-11-22T10:30:00, UTC).\n"
    "An empty field is not available: a comparison on it is undecidable, and\n"
    "the record is not printed.\n"
    "\n"
    "Filters: comparisons = <> < <= > >=, x BETWEEN lo AND hi, x IN {1 2 3},\n"
    "x LIKE \"*pattern*\" (\"*\" is any run; matches anywhere), NOT_LIKE,\n"
    "combined with NOT, AND, OR and parentheses; @2026-11-22 is a time.\n"
    "\n"
    "Exit status: 0 when some record matches, 1 when none does or a file cannot\n"
    "be read or parsed, 2 on a usage error or a filter that does not parse.\n"};

constexpr char kName[] = "filter";
constexpr std::size_t kMaxFileBytes = std::size_t{1} << 31;

bool ReadWholeFile(const char* path, std::string& text) {
  InputFile file;
  if (!file.Open(path) || !file.ReadAll(kMaxFileBytes, text)) {
    ReportError(kName, "%s: %s", path, file.error().c_str());
    return false;
  }
  return true;
}

}  // namespace

int FilterCommand(int argc, char** argv) {
  ParsedArguments args;
  if (!ParseArguments(kHelp, argc, argv,
                      {{"--where", true},
                       {"--file", true},
                       {"--count", false},
                       {"--explain", false},
                       {"--case-insensitive", false},
                       {"--var", true}},
                      args)) {
    return kExitUsage;
  }
  if (args.help) return PrintHelp(kHelp);
  if (args.operands.size() != 1) return UsageError(kHelp, "give one DATA.csv file");
  if (args.Has("--where") == args.Has("--file")) {
    return UsageError(kHelp, "give the filter with either --where or --file");
  }

  // Variables: the parser binds the address of each value's pointer.
  std::vector<std::string> names;
  std::vector<std::unique_ptr<const char*>> values;
  for (const auto& option : args.options) {
    if (option.first != "--var") continue;
    const std::size_t equals = option.second.find('=');
    if (equals == std::string::npos || equals == 0) {
      return UsageError(kHelp, "--var takes NAME=VALUE, not '%s'", option.second.c_str());
    }
    names.push_back(option.second.substr(0, equals));
    values.push_back(std::make_unique<const char*>(option.second.c_str() + equals + 1));
  }

  std::string filterText;
  if (args.Has("--where")) {
    filterText = args.Value("--where");
  } else if (!ReadWholeFile(args.Value("--file"), filterText)) {
    return kExitNegative;
  }
  std::string data;
  if (!ReadWholeFile(args.operands[0], data)) return kExitNegative;
  RecordTable table("Row");
  CsvRecords raw;
  CsvError csvError;
  if (!ReadCsvTable(data, table, &raw, csvError)) {
    ReportError(kName, "%s: line %d: %s", args.operands[0], csvError.line,
                csvError.message.c_str());
    return kExitNegative;
  }

  BBDFilterParser parser(&table.schema());
  for (std::size_t i = 0; i < names.size(); ++i) parser.BindVariable(names[i], values[i].get());
  BBDExpression* parsed = nullptr;
  BBDFilterParseError parseError;
  if (parser.Parse(filterText, parsed, parseError) != KOR_S_OK) {
    std::fprintf(stderr, "idxbase filter: the filter does not parse: %s",
                 parseError.Describe().c_str());
    return kExitUsage;
  }
  const std::unique_ptr<BBDExpression> filter(parsed);
  if (args.Has("--explain")) {
    KORUnicodeString rendering;
    filter->toString(rendering);
    std::printf("filter: %s\n", rendering.ConvertToChar());
  }

  std::vector<int> matches;
  const Tally tally = EvaluateRows(*filter, table, !args.Has("--case-insensitive"), &matches);
  if (args.Has("--count")) {
    std::printf("%ld holds, %ld does not hold, %ld undecidable, of %d records\n", tally.holds,
                tally.doesNotHold, tally.undecidable, table.rowCount());
  } else {
    std::printf("%.*s\n", static_cast<int>(raw.header.size()), raw.header.data());
    for (const int row : matches) {
      std::printf("%.*s\n", static_cast<int>(raw.records[row].size()), raw.records[row].data());
    }
  }
  return tally.holds > 0 ? kExitSuccess : kExitNegative;
}

}  // namespace idxbase_tool
