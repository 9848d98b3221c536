// idxbase checksum: writes and verifies the ".checksum" files of the
// library's IDX_Checksum, and speaks md5sum's checksum lines too.
#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "byte_units.h"
#include "checksum_lines.h"
#include "command_line.h"
#include "commands.h"
#include "idxbase/checksum.h"
#include "idxbase/kor_file.h"
#include "input_file.h"
#include "progress_bar.h"
#include "removal_on_signal.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "checksum", "[-c|--check] [--gnu] [--quiet] [-j N] FILE...",
    "Writes FILE.checksum for each FILE: the MD5 digest of FILE as 32 upper-case\n"
    "hexadecimal digits without a line end, as IDX_Checksum::ComputeCheckSum\n"
    "writes it. The new checksum replaces the old one only once it is complete:\n"
    "a run that fails or is killed leaves the old checksum file as it was.\n"
    "With --check, verifies each FILE against its FILE.checksum instead.\n"
    "\n"
    "  -c, --check  verify; prints \"FILE: OK\" for each file that matches\n"
    "  --gnu        md5sum's format: print \"<digest>  FILE\" lines instead of\n"
    "               writing .checksum files; with --check, each operand is such\n"
    "               a list (a SUMFILE) whose files are verified\n"
    "  -j N         digest up to N files at once (default: the number of\n"
    "               processors); the output keeps the order of the files\n"
    "  --quiet      print neither the OK lines nor the summary\n"
    "\n"
    "With --check, an operand without a FILE.checksum whose first line is a\n"
    "checksum line is read as a SUMFILE too, as md5sum -c reads it. Checksum\n"
    "lines are md5sum's: 32 hexadecimal digits in either case, two blanks (or a\n"
    "blank and '*'), the name; a line that starts with '\\' has its name's\n"
    "backslashes and line ends escaped as \\\\ and \\n. \"-\" is standard input,\n"
    "for a SUMFILE or with --gnu. Only regular files are read: a FIFO or a\n"
    "device is refused as \"not a regular file\".\n"
    "\n"
    "A summary line ends the run (not with --gnu when writing): files, bytes\n"
    "read, time and throughput. A file of 64 MiB or more gets a progress bar on\n"
    "standard error when that is a terminal and files are digested one at a\n"
    "time.\n"
    "\n"
    "Exit status: 0 when every checksum was written or matches; 1 when a file\n"
    "cannot be read, a checksum cannot be written, a checksum file or line is\n"
    "missing, unreadable or malformed, or a file does not match its checksum\n"
    "(one line on standard error for each); 2 on a usage error.\n"};

constexpr char kName[] = "checksum";
constexpr std::size_t kDigits = idxbase::kDigestDigits;
constexpr std::size_t kMaxSumFileBytes = std::size_t{1} << 30;
// Enough of a file to hold its first checksum line, whatever its name.
constexpr std::size_t kFirstLineBytes = 16384;

enum class Task { kWrite, kPrintLine, kCheck };

// One file to digest and what to do with its digest.
struct Job {
  Task task = Task::kWrite;
  std::string path;
  std::string expected;    // kCheck: the recorded digest, upper case
  std::string recordedIn;  // kCheck: where it is recorded
  std::string failure;     // a failure found before digesting, reported in its turn
};

// What a job has to say, held until its turn so that the output follows
// the order of the arguments.
struct Outcome {
  bool ok = true;
  bool digested = false;
  std::uint64_t bytes = 0;
  enum Kind { kOutput, kInfo, kError };  // kInfo is silenced by --quiet
  std::vector<std::pair<Kind, std::string>> lines;

  void Say(Kind kind, std::string text) { lines.emplace_back(kind, std::move(text)); }
  void Fail(std::string text) {
    ok = false;
    lines.emplace_back(kError, std::move(text));
  }
};

struct Totals {
  int files = 0;
  std::uint64_t bytes = 0;
  bool allGood = true;
};

Job Failed(std::string message) {
  Job job;
  job.failure = std::move(message);
  return job;
}

// The digest recorded in `checksumPath`, upper-cased; a line end after it
// is tolerated, for files written by hand. Sets `failure` when there is none.
std::string ReadRecordedDigest(const std::string& checksumPath, std::string& failure) {
  InputFile file;
  std::string digest;
  if (!file.Open(checksumPath.c_str()) || !file.ReadAll(kDigits + 3, digest)) {
    failure = checksumPath + ": cannot read: " + file.error();
    return {};
  }
  while (!digest.empty() && std::isspace(static_cast<unsigned char>(digest.back()))) {
    digest.pop_back();
  }
  if (!IsDigest(digest)) {
    failure = checksumPath + ": not a checksum file (expected 32 hexadecimal digits)";
    return {};
  }
  return ToCase(digest, true);
}

Job CheckAgainstOwnFile(const char* path) {
  Job job;
  job.task = Task::kCheck;
  job.path = path;
  job.recordedIn = job.path + ".checksum";
  job.expected = ReadRecordedDigest(job.recordedIn, job.failure);
  return job;
}

// One job per line of `text`, the content of SUMFILE `sumFile`.
void AddLineJobs(const char* sumFile, std::string_view text, std::vector<Job>& jobs) {
  const std::size_t before = jobs.size();
  int number = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ++number;
    if (line.empty()) continue;
    Job job;
    job.task = Task::kCheck;
    job.recordedIn = sumFile;
    if (!ParseChecksumLine(line, job.expected, job.path)) {
      job.failure = std::string(sumFile) + ":" + std::to_string(number) +
                    ": not a checksum line (expected 32 hexadecimal digits, two blanks, "
                    "a name)";
    }
    jobs.push_back(std::move(job));
  }
  if (jobs.size() == before) jobs.push_back(Failed(std::string(sumFile) + ": no checksum lines"));
}

// The jobs of operand `path` with --check: its own .checksum file, or the
// lines of a SUMFILE (always with --gnu; otherwise when it has no
// .checksum file and its first line is a checksum line).
void AddCheckJobs(const char* path, bool gnu, std::vector<Job>& jobs) {
  const bool standardInput = std::strcmp(path, "-") == 0;
  if (!gnu && !standardInput && PathExists((std::string(path) + ".checksum").c_str())) {
    jobs.push_back(CheckAgainstOwnFile(path));
    return;
  }
  InputFile file;
  std::string text;
  if (!file.Open(path) || !file.ReadAll(kFirstLineBytes, text)) {
    jobs.push_back(gnu || standardInput
                       ? Failed(std::string(path) + ": cannot read: " + file.error())
                       : CheckAgainstOwnFile(path));
    return;
  }
  if (!gnu && !standardInput && !StartsWithChecksumLine(text)) {
    jobs.push_back(CheckAgainstOwnFile(path));
    return;
  }
  std::string rest;
  if (!file.ReadAll(kMaxSumFileBytes + 1, rest)) {
    jobs.push_back(Failed(std::string(path) + ": cannot read: " + file.error()));
    return;
  }
  if (text.size() + rest.size() > kMaxSumFileBytes) {
    jobs.push_back(Failed(std::string(path) + ": too large for a list of checksums"));
    return;
  }
  AddLineJobs(path, text + rest, jobs);
}

// What is done with a digest once the file is read.
void Conclude(const Job& job, const idxbase::FileDigest& digest, idxbase::FileReplacement& output,
              Outcome& outcome) {
  const std::string_view digits(digest.digits, kDigits);
  if (job.task == Task::kPrintLine) {
    outcome.Say(Outcome::kOutput, ChecksumLine(digits, job.path));
  } else if (job.task == Task::kWrite) {
    int error = output.Write(digits.data(), digits.size());
    if (error == 0) error = output.Commit();
    if (error != 0) {
      outcome.Fail(job.path + ": cannot write " + job.path + ".checksum: " + std::strerror(error));
    }
  } else if (digits != job.expected) {
    outcome.Fail(job.path + ": checksum mismatch (" + job.recordedIn + " records " + job.expected +
                 ", the file's digest is " + std::string(digits) + ")");
  } else {
    outcome.Say(Outcome::kInfo, ShownName(job.path) + ": OK");
  }
}

Outcome Run(const Job& job, bool showProgress) {
  Outcome outcome;
  if (!job.failure.empty()) {
    outcome.Fail(job.failure);
    return outcome;
  }
  InputFile input;
  if (!input.Open(job.path.c_str())) {
    outcome.Fail(job.path + ": cannot read: " + input.error());
    return outcome;
  }
  // The checksum file is prepared before the long read, so that a file
  // that cannot be written is reported at once.
  idxbase::FileReplacement output;
  if (job.task == Task::kWrite) {
    const std::string checksumPath = job.path + ".checksum";
    if (const int error = output.Open(checksumPath.c_str()); error != 0) {
      outcome.Fail(job.path + ": cannot write " + checksumPath + ": " + std::strerror(error));
      return outcome;
    }
  }
  // A run killed while it reads removes the unfinished checksum file.
  const RemovedOnSignal unfinished(output.temporary());
  std::optional<ProgressBar> progress;
  if (showProgress) progress.emplace(job.path, input.size());
  const idxbase::FileDigest digest =
      idxbase::DigestDescriptor(input.fd(), [&](std::uint64_t bytes) {
        if (progress) progress->Advance(bytes);
      });
  progress.reset();
  if (digest.readError != 0) {
    outcome.Fail(job.path + ": cannot read: " + std::strerror(digest.readError));
    return outcome;
  }
  outcome.digested = true;
  outcome.bytes = digest.bytesRead;
  Conclude(job, digest, output, outcome);
  return outcome;
}

void Report(const Outcome& outcome, bool quiet, Totals& totals) {
  for (const auto& [kind, text] : outcome.lines) {
    if (kind == Outcome::kError) {
      ReportError(kName, "%s", text.c_str());
    } else if (kind == Outcome::kOutput || !quiet) {
      std::printf("%s\n", text.c_str());
    }
  }
  if (outcome.digested) {
    ++totals.files;
    totals.bytes += outcome.bytes;
  }
  totals.allGood = totals.allGood && outcome.ok;
}

// Runs the jobs on up to `workers` threads and reports each outcome in
// the order of the jobs, as soon as it and all before it are done.
void RunAll(const std::vector<Job>& jobs, unsigned int workers, bool quiet, Totals& totals) {
  if (workers <= 1 || jobs.size() <= 1) {
    for (const Job& job : jobs) Report(Run(job, true), quiet, totals);
    return;
  }
  std::vector<std::optional<Outcome>> outcomes(jobs.size());
  std::mutex mutex;
  std::condition_variable finished;
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i; (i = next++) < jobs.size();) {
      Outcome outcome = Run(jobs[i], false);
      const std::lock_guard<std::mutex> lock(mutex);
      outcomes[i] = std::move(outcome);
      finished.notify_all();
    }
  };
  std::vector<std::thread> threads;
  for (unsigned int i = 0; i < std::min<std::size_t>(workers, jobs.size()); ++i) {
    threads.emplace_back(work);
  }
  for (std::optional<Outcome>& outcome : outcomes) {
    std::unique_lock<std::mutex> lock(mutex);
    finished.wait(lock, [&] { return outcome.has_value(); });
    lock.unlock();
    Report(*outcome, quiet, totals);
  }
  for (std::thread& thread : threads) thread.join();
}

void PrintSummary(const Totals& totals, double seconds) {
  std::printf("%d file%s, %s in %.2f s (%s)\n", totals.files, totals.files == 1 ? "" : "s",
              FormatBytes(static_cast<double>(totals.bytes)).c_str(), seconds,
              FormatRate(totals.bytes, seconds).c_str());
}

}  // namespace

int ChecksumCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(
          kHelp, argc, argv,
          {{"--check", false, "-c"}, {"--gnu", false}, {"--quiet", false}, {"--jobs", true, "-j"}},
          arguments)) {
    return kExitUsage;
  }
  if (arguments.help) return PrintHelp(kHelp);
  std::vector<char*> files = arguments.operands;
  files.insert(files.end(), arguments.rest.begin(), arguments.rest.end());
  if (files.empty()) return UsageError(kHelp, "no file given");
  unsigned int workers = std::max(1u, std::thread::hardware_concurrency());
  if (const char* text = arguments.Value("--jobs")) {
    int value = 0;
    if (!ParseInt(text, value) || value < 1) {
      return UsageError(kHelp, "-j takes a number of files above 0, not '%s'", text);
    }
    workers = static_cast<unsigned int>(value);
  }

  const bool check = arguments.Has("--check");
  const bool gnu = arguments.Has("--gnu");
  const bool quiet = arguments.Has("--quiet");
  const auto start = std::chrono::steady_clock::now();
  std::vector<Job> jobs;
  for (const char* file : files) {
    if (check) {
      AddCheckJobs(file, gnu, jobs);
      continue;
    }
    Job job;
    job.task = gnu ? Task::kPrintLine : Task::kWrite;
    job.path = file;
    if (!gnu && job.path == "-") {
      job.failure = "-: standard input has no checksum file (give --gnu to print its line)";
    }
    jobs.push_back(std::move(job));
  }
  Totals totals;
  {
    const RemovalOnSignals removal;
    RunAll(jobs, workers, quiet, totals);
  }
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  if (!quiet && (check || !gnu)) PrintSummary(totals, elapsed.count());
  return totals.allGood ? kExitSuccess : kExitNegative;
}

}  // namespace idxbase_tool
