// idxbase filter: evaluates a filter over the records of a typed CSV file.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "chunk_filter.h"
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
    "       [--skip-bad] [--var NAME=VALUE]... DATA.csv|-",
    "Prints the header and every record of DATA.csv (\"-\": standard input, a\n"
    "pipe too) for which the filter holds, as written, in order.\n"
    "\n"
    "  --where EXPR        the filter, e.g. 'mass > 2.5 AND name LIKE \"bolt*\"'\n"
    "  --file F            read the filter from file F instead\n"
    "  --count             print only how the records answered\n"
    "  --explain           print the compiled filter to standard error first, in\n"
    "                      the filter language (it reads back as --where)\n"
    "  --case-insensitive  compare strings without case (A-Z as a-z)\n"
    "  --skip-bad          leave out records that are not rows of the header's\n"
    "                      types, and count them on standard error\n"
    "  --var NAME=VALUE    give $NAME the string VALUE (repeatable)\n"
    "\n"
    "The header types the columns: name:string, mass:float, count:int,\n"
    "released:bool, modified:time (2026-11-22 or 2026-11-22T10:30:00, UTC).\n"
    "An empty field is not available: a comparison on it is undecidable, and\n"
    "the record is not printed. The file is read as a stream, in constant\n"
    "memory, whatever its size; a record over 64 MiB is refused. A bad record\n"
    "stops the run with its line (the records before it are printed).\n"
    "\n"
    "Filters: comparisons = <> < <= > >=, x BETWEEN lo AND hi, x IN {1 2 3},\n"
    "x LIKE \"*pattern*\" (\"*\" is any run; matches anywhere), NOT_LIKE,\n"
    "combined with NOT, AND, OR and parentheses; @2026-11-22 is a time.\n"
    "\n"
    "Exit status: 0 when some record matches, 1 when none does or a file cannot\n"
    "be read or parsed, 2 on a usage error or a filter that does not parse.\n"};

constexpr char kName[] = "filter";
constexpr std::size_t kMaxFilterBytes = std::size_t{1} << 20;

bool ReadFilterFile(const char* path, std::string& text) {
  InputFile file;
  if (!file.Open(path) || !file.ReadAll(kMaxFilterBytes + 1, text)) {
    ReportError(kName, "%s: %s", path, file.error().c_str());
    return false;
  }
  if (text.size() > kMaxFilterBytes) {
    ReportError(kName, "%s: a filter file is at most 1 MiB", path);
    return false;
  }
  return true;
}

// The data file's bytes for the CSV reader.
class FileBytes : public ByteSource {
 public:
  explicit FileBytes(InputFile& file) : file_(file) {}
  long Read(char* buffer, std::size_t capacity) override { return file_.Read(buffer, capacity); }

 private:
  InputFile& file_;
};

void WriteRecord(std::string_view record) {
  std::fwrite(record.data(), 1, record.size(), stdout);
  std::putc('\n', stdout);
}

// Reads the records chunk by chunk and prints those where the filter
// holds (or, with `count`, how they answered); false after reporting a
// fault of the data.
bool FilterRecords(CsvReader& reader, ChunkFilter& filter, bool count, const char* name,
                   Answers& answers) {
  CsvChunk chunk;
  CsvError error;
  for (;;) {
    if (!reader.ReadChunk(chunk, error)) {
      std::fflush(stdout);
      ReportError(kName, "%s: line %lld: %s", name, error.line, error.message.c_str());
      return false;
    }
    if (chunk.rows() == 0) return true;
    if (count) {
      filter.Count(chunk, answers);
      continue;
    }
    const std::vector<std::int64_t>& rows = filter.Select(chunk);
    answers.holds += static_cast<long long>(rows.size());
    for (const std::int64_t row : rows) WriteRecord(chunk.records[static_cast<std::size_t>(row)]);
  }
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
                       {"--skip-bad", false},
                       {"--var", true}},
                      args)) {
    return kExitUsage;
  }
  if (args.help) return PrintHelp(kHelp);
  if (args.operands.size() != 1) return UsageError(kHelp, "give one DATA.csv file");
  if (args.Has("--where") == args.Has("--file")) {
    return UsageError(kHelp, "give the filter with either --where or --file");
  }
  const char* dataPath = args.operands[0];
  const bool dataIsInput = std::strcmp(dataPath, "-") == 0;
  if (args.Has("--file") && dataIsInput && std::strcmp(args.Value("--file"), "-") == 0) {
    return UsageError(kHelp, "the filter and the data cannot both come from standard input");
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
  } else if (!ReadFilterFile(args.Value("--file"), filterText)) {
    return kExitNegative;
  }
  const char* shownPath = dataIsInput ? "standard input" : dataPath;
  InputFile data;
  if (!data.Open(dataPath)) {
    ReportError(kName, "%s: %s", shownPath, data.error().c_str());
    return kExitNegative;
  }
  FileBytes bytes(data);
  CsvReader reader(bytes);
  reader.SkipBadRows(args.Has("--skip-bad"));
  std::vector<CsvColumnSpec> columns;
  CsvError csvError;
  if (!reader.ReadHeader(columns, csvError)) {
    ReportError(kName, "%s: line %lld: %s", shownPath, csvError.line, csvError.message.c_str());
    return kExitNegative;
  }
  BBDFilterSimpleSchema schema("Row", 0);
  for (const CsvColumnSpec& column : columns) schema.Add(column.name, column.type);

  BBDFilterParser parser(&schema);
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
    std::string text;
    if (parser.Format(filter.get(), text) == KOR_S_OK) {
      std::fprintf(stderr, "filter: %s\n", text.c_str());
    } else {
      KORUnicodeString rendering;
      filter->toString(rendering);
      std::fprintf(stderr, "filter (as rendered; not filter text): %s\n",
                   rendering.ConvertToChar());
    }
  }

  // Records are written in large blocks.
  static char outputBuffer[1 << 16];
  std::setvbuf(stdout, outputBuffer, _IOFBF, sizeof outputBuffer);
  const bool count = args.Has("--count");
  if (!count) WriteRecord(reader.header());
  ChunkFilter chunkFilter(*filter, !args.Has("--case-insensitive"));
  Answers answers;
  const bool read = FilterRecords(reader, chunkFilter, count, shownPath, answers);
  if (read && count) {
    std::printf("%lld holds, %lld does not hold, %lld undecidable, of %lld records\n",
                answers.holds, answers.doesNotHold, answers.undecidable,
                answers.holds + answers.doesNotHold + answers.undecidable);
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    ReportError(kName, "cannot write the output: %s", std::strerror(errno));
    return kExitNegative;
  }
  if (reader.badRows() > 0) {
    const CsvError& first = reader.firstBadRow();
    ReportError(kName, "%s: skipped %lld bad records; the first, at line %lld: %s", shownPath,
                reader.badRows(), first.line, first.message.c_str());
  }
  if (!read) return kExitNegative;
  return answers.holds > 0 ? kExitSuccess : kExitNegative;
}

}  // namespace idxbase_tool
