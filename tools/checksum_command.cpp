// idxbase checksum: writes and verifies the ".checksum" files of the
// library's IDX_Checksum.
#include <cctype>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "byte_units.h"
#include "command_line.h"
#include "commands.h"
#include "file_digest.h"
#include "idxbase/checksum.h"
#include "input_file.h"
#include "progress_bar.h"

namespace idxbase_tool {
namespace {

constexpr CommandHelp kHelp{
    "checksum", "[--check] [--quiet] FILE...",
    "Writes FILE.checksum for each FILE: the MD5 digest of FILE as 32 upper-case\n"
    "hexadecimal digits without a line end, through the library's\n"
    "IDX_Checksum::ComputeCheckSum. With --check, verifies each FILE against its\n"
    "FILE.checksum instead.\n"
    "\n"
    "  --check   verify; prints \"FILE: OK\" for each file that matches\n"
    "  --quiet   print neither the OK lines nor the summary\n"
    "\n"
    "A summary line ends the run: files, bytes, time and throughput. A file of\n"
    "64 MiB or more gets a progress bar on standard error when that is a\n"
    "terminal; the tool then reads the file itself, block by block, with the\n"
    "library's MD5 primitives (verifying always does).\n"
    "\n"
    "Exit status: 0 when every checksum was written or matches; 1 when a file\n"
    "cannot be read, a checksum file is missing, unreadable or malformed, or a\n"
    "file does not match its checksum (one line on standard error for each);\n"
    "2 on a usage error.\n"};

constexpr char kName[] = "checksum";
constexpr std::size_t kDigestLength = 32;

struct Totals {
  int files = 0;
  std::uint64_t bytes = 0;
};

// Writes `digest` as a checksum file: the 32 digits, no line end.
bool WriteDigest(const std::string& checksumPath, const std::string& digest) {
  std::FILE* out = std::fopen(checksumPath.c_str(), "wb");
  if (out == nullptr) return false;
  const bool written = std::fwrite(digest.data(), 1, digest.size(), out) == digest.size();
  return std::fclose(out) == 0 && written;
}

bool WriteChecksum(const char* path, Totals& totals) {
  // ComputeCheckSum creates the checksum file before it opens its input,
  // and leaves it empty when the input cannot be read: check first.
  InputFile input;
  if (!input.Open(path)) {
    ReportError(kName, "%s: cannot read: %s", path, input.error().c_str());
    return false;
  }
  // A large file on a terminal gets a progress bar: the tool digests it
  // itself, block by block, and writes the same 32 digits as the library.
  ProgressBar progress(path, input.size());
  const std::string checksumPath = std::string(path) + ".checksum";
  if (progress.active()) {
    std::string digest;
    if (!DigestFile(input, progress, digest)) {
      ReportError(kName, "%s: cannot read: %s", path, input.error().c_str());
      return false;
    }
    if (!WriteDigest(checksumPath, digest)) {
      ReportError(kName, "%s: cannot write %s", path, checksumPath.c_str());
      return false;
    }
  } else if (IDX_Checksum::ComputeCheckSum(path) != KOR_S_OK) {
    ReportError(kName, "%s: cannot write %s", path, checksumPath.c_str());
    return false;
  }
  ++totals.files;
  totals.bytes += input.size();
  return true;
}

bool IsDigest(const std::string& text) {
  if (text.size() != kDigestLength) return false;
  for (char c : text) {
    if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

// The digest recorded in `checksumPath`, upper-cased; a line end after it
// is tolerated, for files written by hand.
bool ReadRecordedDigest(const std::string& checksumPath, std::string& digest) {
  InputFile file;
  if (!file.Open(checksumPath.c_str()) || !file.ReadAll(kDigestLength + 3, digest)) {
    ReportError(kName, "%s: cannot read: %s", checksumPath.c_str(), file.error().c_str());
    return false;
  }
  while (!digest.empty() && std::isspace(static_cast<unsigned char>(digest.back()))) {
    digest.pop_back();
  }
  if (!IsDigest(digest)) {
    ReportError(kName, "%s: not a checksum file (expected 32 hexadecimal digits)",
                checksumPath.c_str());
    return false;
  }
  for (char& c : digest) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return true;
}

bool VerifyChecksum(const char* path, bool quiet, Totals& totals) {
  const std::string checksumPath = std::string(path) + ".checksum";
  std::string recorded;
  if (!ReadRecordedDigest(checksumPath, recorded)) return false;
  InputFile input;
  std::string actual;
  bool read = input.Open(path);
  if (read) {
    ProgressBar progress(path, input.size());
    read = DigestFile(input, progress, actual);
  }
  if (!read) {
    ReportError(kName, "%s: cannot read: %s", path, input.error().c_str());
    return false;
  }
  ++totals.files;
  totals.bytes += input.size();
  if (actual != recorded) {
    ReportError(kName, "%s: checksum mismatch (%s records %s, the file's digest is %s)", path,
                checksumPath.c_str(), recorded.c_str(), actual.c_str());
    return false;
  }
  if (!quiet) std::printf("%s: OK\n", path);
  return true;
}

void PrintSummary(const Totals& totals, double seconds) {
  std::printf("%d file%s, %s in %.2f s (%s)\n", totals.files, totals.files == 1 ? "" : "s",
              FormatBytes(static_cast<double>(totals.bytes)).c_str(), seconds,
              FormatRate(totals.bytes, seconds).c_str());
}

}  // namespace

int ChecksumCommand(int argc, char** argv) {
  ParsedArguments arguments;
  if (!ParseArguments(kHelp, argc, argv, {{"--check", false}, {"--quiet", false}}, arguments)) {
    return kExitUsage;
  }
  if (arguments.help) return PrintHelp(kHelp);
  std::vector<char*> files = arguments.operands;
  files.insert(files.end(), arguments.rest.begin(), arguments.rest.end());
  if (files.empty()) return UsageError(kHelp, "no file given");

  const bool check = arguments.Has("--check");
  const bool quiet = arguments.Has("--quiet");
  const auto start = std::chrono::steady_clock::now();
  Totals totals;
  bool allGood = true;
  for (const char* file : files) {
    const bool good = check ? VerifyChecksum(file, quiet, totals) : WriteChecksum(file, totals);
    allGood = allGood && good;
  }
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  if (!quiet) PrintSummary(totals, elapsed.count());
  return allGood ? kExitSuccess : kExitNegative;
}

}  // namespace idxbase_tool
