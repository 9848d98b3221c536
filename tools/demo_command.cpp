// idxbase demo: the filter engine on a built-in table of parts.
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "chunk_filter.h"
#include "command_line.h"
#include "commands.h"
#include "csv_table.h"
#include "idxbase/filter_parser.h"
#include "record_table.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "demo", "[--rows N]",
    "Builds a table of N parts (1,000,000 by default; the same every run) with\n"
    "the columns name:string, mass:float, count:int, released:bool and\n"
    "modified:time, a few values of each missing. Then parses a handful of\n"
    "filters, prints each as written and as the engine renders it once\n"
    "compiled, how many parts it holds for, does not hold for and cannot\n"
    "decide, and the evaluation time per part, one part at a time (eval)\n"
    "and column-at-a-time (BBDFilterBatch), whose answers must agree.\n"};

constexpr char kName[] = "demo";

// The filters shown: the infix form, a set, LIKE, time literals, and one
// in the engine's own rendering with an unavailable operand, which
// compiling folds away.
constexpr const char* kFilters[] = {
    "mass > 2.5 AND released = true",
    "name LIKE \"bolt\" OR name LIKE \"nut\"",
    "count BETWEEN 10 AND 20 AND NOT mass >= 40",
    "count IN {1 2 3 5 8 13 21 34}",
    "modified >= @2026-01-01 AND (name NOT_LIKE \"washer\" OR mass < 0.5)",
    "( ( Part.mass > 45.000000000 ) | ( Part.count = NAOperand ) )",
};

// SplitMix64: a small generator whose sequence is the same everywhere.
class Random {
 public:
  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  // Uniform in [0, n).
  std::uint64_t Below(std::uint64_t n) { return Next() % n; }
  // True about `percent` times in a hundred.
  bool Percent(int percent) { return Below(100) < static_cast<std::uint64_t>(percent); }

 private:
  std::uint64_t state_ = 20261122;
};

// The parts as typed CSV text, missing values as empty fields.
std::string PartsCsv(int rows) {
  static const char* const kKinds[] = {"bolt",  "nut",  "washer", "bracket",
                                       "shaft", "gear", "spring", "Bolt"};
  const std::int64_t start = 1704067200;  // 2024-01-01T00:00:00Z
  std::string text = "name:string,mass:float,count:int,released:bool,modified:time\n";
  Random random;
  char field[32];
  for (int row = 0; row < rows; ++row) {
    text += kKinds[random.Below(8)];
    text += "-" + std::to_string(random.Below(1000)) + ",";
    if (!random.Percent(2)) {
      std::snprintf(field, sizeof field, "%.2f", static_cast<double>(random.Below(5000) + 1) / 100);
      text += field;
    }
    text += ",";
    if (!random.Percent(1)) text += std::to_string(random.Below(501));
    text += ",";
    if (!random.Percent(3)) text += random.Percent(70) ? "true" : "false";
    text += ",";
    if (!random.Percent(5)) {
      const KORTime modified = KORTime::FromEpochSeconds(
          start + static_cast<std::int64_t>(random.Below(3 * 365 * 86400)));
      text += modified.ConvertToString("%Y-%m-%dT%H:%M:%S", KORTzUTC).ConvertToChar();
    }
    text += "\n";
  }
  return text;
}

// The same text read twice: whole into a table that a reader serves row by
// row, and in column chunks for the column evaluator.
bool ReadParts(const std::string& text, RecordTable& table, std::vector<CsvChunk>& chunks) {
  CsvError error;
  if (!ReadCsvTable(text, table, nullptr, error)) {
    ReportError(kName, "line %lld: %s", error.line, error.message.c_str());
    return false;
  }
  CsvReader reader(text);
  std::vector<CsvColumnSpec> columns;
  if (!reader.ReadHeader(columns, error)) return false;
  for (CsvChunk chunk; reader.ReadChunk(chunk, error) && chunk.rows() > 0;) {
    chunks.push_back(std::move(chunk));
  }
  return true;
}

// How the chunks answered, column at a time, and how long it took.
Tally EvaluateChunks(BBDExpression& filter, const std::vector<CsvChunk>& chunks) {
  ChunkFilter chunkFilter(filter, true);
  Answers answers;
  const auto start = std::chrono::steady_clock::now();
  for (const CsvChunk& chunk : chunks) chunkFilter.Count(chunk, answers);
  Tally tally;
  tally.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  tally.holds = static_cast<long>(answers.holds);
  tally.doesNotHold = static_cast<long>(answers.doesNotHold);
  tally.undecidable = static_cast<long>(answers.undecidable);
  return tally;
}

}  // namespace

int DemoCommand(int argc, char** argv) {
  ParsedArguments args;
  if (!ParseArguments(kHelp, argc, argv, {{"--rows", true}}, args)) return kExitUsage;
  if (args.help) return PrintHelp(kHelp);
  if (!args.operands.empty()) return UsageError(kHelp, "takes no operands");
  int rows = 1000000;
  if (args.Has("--rows") && (!ParseInt(args.Value("--rows"), rows) || rows < 1)) {
    return UsageError(kHelp, "--rows takes a positive number, not '%s'", args.Value("--rows"));
  }

  RecordTable table("Part");
  std::vector<CsvChunk> chunks;
  if (!ReadParts(PartsCsv(rows), table, chunks)) return kExitNegative;
  std::printf("%d parts: name:string, mass:float, count:int, released:bool, modified:time\n\n",
              rows);
  BBDFilterParser parser(&table.schema());
  int number = 0;
  for (const char* text : kFilters) {
    BBDExpression* parsed = nullptr;
    BBDFilterParseError error;
    if (parser.Parse(text, parsed, error) != KOR_S_OK) {
      ReportError(kName, "built-in filter does not parse: %s", error.Describe().c_str());
      return kExitNegative;
    }
    const std::unique_ptr<BBDExpression> filter(parsed);
    KORUnicodeString rendering;
    filter->toString(rendering);
    const Tally byRecord = EvaluateRows(*filter, table, true, nullptr);
    const Tally byColumn = EvaluateChunks(*filter, chunks);
    std::printf("filter %d  %s\n", ++number, text);
    std::printf("  compiled      %s\n", rendering.ConvertToChar());
    std::printf("  holds %ld, does not hold %ld, undecidable %ld\n", byRecord.holds,
                byRecord.doesNotHold, byRecord.undecidable);
    if (byColumn.holds != byRecord.holds || byColumn.doesNotHold != byRecord.doesNotHold ||
        byColumn.undecidable != byRecord.undecidable) {
      ReportError(kName,
                  "column-at-a-time answers differ: holds %ld, does not hold %ld, "
                  "undecidable %ld",
                  byColumn.holds, byColumn.doesNotHold, byColumn.undecidable);
      return kExitNegative;
    }
    std::printf("  %.1f ns/record one at a time, %.1f ns/record column-at-a-time\n\n",
                byRecord.seconds * 1e9 / rows, byColumn.seconds * 1e9 / rows);
  }

  // What a mistake looks like.
  const char* mistake = "count > 2.5 OR name = \"gear-7\"";
  BBDExpression* parsed = nullptr;
  BBDFilterParseError error;
  if (parser.Parse(mistake, parsed, error) == KOR_S_OK) {
    delete parsed;
    ReportError(kName, "the sample mistake parsed");
    return kExitNegative;
  }
  std::printf("a filter with a mistake  %s\n%s", mistake, error.Describe().c_str());
  return kExitSuccess;
}

}  // namespace idxbase_tool
