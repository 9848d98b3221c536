// idxbase checksum: writing and verifying .checksum files and md5sum's
// checksum lines, and what it does with inputs and outputs that are not
// plain files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "tool_runner.h"

namespace idxbase_test {
namespace {

using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kAbcDigest[] = "900150983CD24FB0D6963F7D28E17F72";  // RFC 1321's "abc"
constexpr char kAbcLine[] = "900150983cd24fb0d6963f7d28e17f72  ";  // md5sum's, before the name
constexpr char kError[] = "idxbase checksum: ";

using ChecksumCommand = ToolTest;

TEST_F(ChecksumCommand, WritesAndChecksDigestsNamingEachFailure) {
  const std::string abc = Write("abc", "abc");
  const std::string empty = Write("empty", "");
  const ChildResult run = RunTool({"checksum", abc, empty});
  EXPECT_EQ(0, run.exitCode) << run.output;
  EXPECT_EQ(kAbcDigest, ReadFile(abc + ".checksum"));
  EXPECT_EQ("D41D8CD98F00B204E9800998ECF8427E", ReadFile(empty + ".checksum"));
  EXPECT_THAT(run.output,
              ContainsRegex("^2 files, 3 B in [0-9]+\\.[0-9]{2} s \\([0-9.]+ [KMGTP]?i?B/s\\)\n$"));

  // Checksum files by hand: lower case and a line end, the digest of
  // another content, 31 digits, none. Checksum files that are links are
  // written where they lead: to a device that takes no bytes, which fails
  // with the reason, or to a file that the new checksum replaces.
  const std::string lower = Write("lower", "abc");
  Write("lower.checksum", std::string(kAbcLine, 32) + "\n");
  const std::string changed = Write("changed", "abd");
  Write("changed.checksum", kAbcDigest);
  const std::string garbled = Write("garbled", "abc");
  Write("garbled.checksum", std::string(kAbcDigest, 31));
  const std::string orphan = Write("orphan", "abc");
  const std::string gone = Path("gone");
  Write("gone.checksum", kAbcDigest);
  const std::string directory = Path("directory");
  std::filesystem::create_directory(directory);
  const std::string full = Write("full", "abc");
  std::filesystem::create_symlink("/dev/full", full + ".checksum");
  const std::string linked = Write("linked", "abc");
  const std::string target = Write("linked.md5", "old");
  std::filesystem::create_symlink("linked.md5", linked + ".checksum");
  ExpectRuns({
      {{"checksum", "--check", "--quiet", lower}, 0, ""},
      {{"checksum", "--check", changed, abc},
       1,
       AllOf(HasSubstr(kError + changed + ": checksum mismatch (" + changed + ".checksum records " +
                       kAbcDigest),
             Not(HasSubstr(changed + ": OK")), HasSubstr(abc + ": OK\n"))},
      {{"checksum", "--check", orphan, garbled},
       1,
       AllOf(HasSubstr(kError + orphan + ".checksum: cannot read: No such file or directory\n"),
             HasSubstr(kError + garbled +
                       ".checksum: not a checksum file (expected 32 hexadecimal digits)\n"))},
      {{"checksum", "--check", gone},
       1,
       HasSubstr(kError + gone + ": cannot read: No such file or directory\n")},
      {{"checksum", directory},
       1,
       HasSubstr(kError + directory + ": cannot read: Is a directory\n")},
      {{"checksum", full},
       1,
       HasSubstr(kError + full + ": cannot write " + full +
                 ".checksum: No space left on device\n")},
      {{"checksum", "--quiet", linked}, 0, ""},
  });
  EXPECT_FALSE(FileExists(directory + ".checksum"));
  EXPECT_TRUE(std::filesystem::is_symlink(full + ".checksum"));
  EXPECT_TRUE(std::filesystem::is_symlink(linked + ".checksum"));
  EXPECT_EQ(kAbcDigest, ReadFile(target));
}

// On a terminal a large file is digested with a progress bar; the checksum
// file must be the one written without a terminal, and md5sum's digest.
TEST_F(ChecksumCommand, OnATerminalLargeFilesShowProgressAndWriteTheSameChecksum) {
  std::string content(std::size_t{64} << 20, '\0');
  for (std::size_t i = 0; i < content.size(); i += 4096) content[i] = static_cast<char>(i >> 12);
  const std::string onTerminal = Write("terminal.bin", content);
  const std::string plain = Write("plain.bin", content);
  // script(1) gives the tool a pseudo-terminal for its standard error.
  const ChildResult run =
      RunShell("/usr/bin/script -qec \"$0 checksum $1\" /dev/null", {onTerminal});
  ASSERT_EQ(0, run.exitCode) << run.output;
  // The bar redraws ten times a second at most, and a fast digest may end
  // first; its line is erased in any case.
  EXPECT_THAT(run.output, HasSubstr("\r\033[K"));
  ExpectRuns({
      {{"checksum", plain}, 0, Not(HasSubstr("\033[K"))},
      {{"checksum", "--check", onTerminal, plain},
       0,
       AllOf(HasSubstr(onTerminal + ": OK\n"), HasSubstr(plain + ": OK\n"),
             HasSubstr("2 files, 128 MiB in "))},
      {{"checksum", "--gnu", plain}, 0, RunChild({"/usr/bin/md5sum", plain}, {}).output},
  });
  EXPECT_EQ(ReadFile(onTerminal + ".checksum"), ReadFile(plain + ".checksum"));
}

// A run killed while it digests leaves the old checksum whole, and no
// temporary file beside it. The sparse 16 GiB take far longer to digest
// than the half second before the kill, at no cost in disk space.
TEST_F(ChecksumCommand, AKilledRunKeepsTheOldChecksum) {
  const std::string big = Write("big.bin", "");
  std::filesystem::resize_file(big, std::uintmax_t{16} << 30);
  Write("big.bin.checksum", kAbcDigest);
  const ChildResult run =
      RunShell("\"$0\" checksum \"$1\" & sleep 0.5; kill -TERM $!; wait $!", {big});
  EXPECT_EQ(128 + SIGTERM, run.exitCode) << run.output;
  EXPECT_EQ(kAbcDigest, ReadFile(big + ".checksum"));
  const std::filesystem::directory_iterator files(dir_.path());
  EXPECT_EQ(2, std::distance(begin(files), end(files)));
}

// Neither a FIFO to read nor a FIFO in place of a checksum file may block
// the tool: each is refused at once.
TEST_F(ChecksumCommand, FifosAreRefusedWithoutBlocking) {
  const std::string fifo = Path("fifo");
  const std::string data = Write("data", "abc");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  ASSERT_EQ(0, mkfifo((data + ".checksum").c_str(), 0600));
  const std::string refused = ": cannot read: not a regular file\n";
  const auto filterRefused = HasSubstr("idxbase filter: " + fifo + ": not a regular file\n");
  ExpectRuns({
      {{"checksum", fifo}, 1, HasSubstr(kError + fifo + refused)},
      {{"checksum", "--check", data}, 1, HasSubstr(kError + data + ".checksum" + refused)},
      {{"checksum", "--gnu", "--check", fifo}, 1, HasSubstr(kError + fifo + refused)},
      {{"filter", "--where", "a = 1", fifo}, 1, filterRefused},
      {{"filter", "--file", fifo, data}, 1, filterRefused},
  });
}

// md5sum's lines, written and read, with names that need its escapes,
// digested in parallel and printed in the order of the arguments. md5sum
// itself reads what the tool writes.
TEST_F(ChecksumCommand, SpeaksMd5sumsChecksumLines) {
  const std::string abc = Write("abc", "abc");
  const std::string empty = Write("empty", "");
  const std::string odd = Write("back\\slash\nnew line", "abc");
  const ChildResult written = RunTool({"checksum", "--gnu", "-j", "3", abc, empty, odd});
  ASSERT_EQ(0, written.exitCode) << written.output;
  EXPECT_EQ(kAbcLine + abc + "\n" + "d41d8cd98f00b204e9800998ecf8427e  " + empty + "\n" + "\\" +
                kAbcLine + Path("back\\\\slash\\nnew line") + "\n",
            written.output);
  EXPECT_FALSE(FileExists(abc + ".checksum"));
  const std::string sums = Write("SUMS", written.output);
  const ChildResult md5sum = RunChild({"/usr/bin/md5sum", "--check", "--quiet", sums}, {});
  EXPECT_EQ(0, md5sum.exitCode) << md5sum.output;

  // Upper case, md5sum's binary marker, a mismatch and a malformed line;
  // a list without .checksum file is read as a list without --gnu.
  Write("SUMS", std::string(kAbcDigest) + " *" + abc + "\n" + kAbcLine + empty + "\nnot a line\n");
  ExpectRuns(
      {{{"checksum", "-c", sums},
        1,
        AllOf(HasSubstr(abc + ": OK\n"),
              HasSubstr(kError + empty + ": checksum mismatch (" + sums + " records " + kAbcDigest),
              HasSubstr(kError + sums + ":3: not a checksum line"),
              HasSubstr("2 files, 3 B in "))}});
}

}  // namespace
}  // namespace idxbase_test
