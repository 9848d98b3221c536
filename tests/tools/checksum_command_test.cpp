// idxbase checksum: writing and verifying .checksum files and md5sum's
// checksum lines, and what it does with inputs and outputs that are not
// plain files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tool_runner.h"

namespace idxbase_test {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kAbcDigest[] = "900150983CD24FB0D6963F7D28E17F72";  // RFC 1321's "abc"

class ChecksumCommand : public ToolTest {
 protected:
  std::string WriteData(const std::string& name, const std::string& content) {
    WriteFile(Path(name), content);
    return Path(name);
  }
};

TEST_F(ChecksumCommand, WritesTheDigestAndASummary) {
  const std::string abc = WriteData("abc", "abc");
  const std::string empty = WriteData("empty", "");
  ChildResult run = RunTool({"checksum", abc, empty});
  EXPECT_EQ(0, run.exitCode) << run.output;
  EXPECT_EQ(kAbcDigest, ReadFile(abc + ".checksum"));
  EXPECT_EQ("D41D8CD98F00B204E9800998ECF8427E", ReadFile(empty + ".checksum"));
  EXPECT_THAT(run.output,
              ContainsRegex("^2 files, 3 B in [0-9]+\\.[0-9]{2} s \\([0-9.]+ [KMGTP]?i?B/s\\)\n$"));
}

TEST_F(ChecksumCommand, VerifiesAcrossReadBlocksWhatItWrote) {
  // 2.5 MiB spans three read blocks.
  std::string content(5 << 19, '\0');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7 + i / 4096);
  const std::string big = WriteData("big", content);
  const std::string abc = WriteData("abc", "abc");
  ASSERT_EQ(0, RunTool({"checksum", "--quiet", big, abc}).exitCode);

  ChildResult run = RunTool({"checksum", "--check", big, abc});
  EXPECT_EQ(0, run.exitCode) << run.output;
  EXPECT_THAT(run.output, HasSubstr(big + ": OK\n"));
  EXPECT_THAT(run.output, HasSubstr(abc + ": OK\n"));
  EXPECT_THAT(run.output, HasSubstr("2 files, 2.50 MiB in "));
}

// On a terminal a large file is digested with a progress bar; the checksum
// file must be the one written without a terminal.
TEST_F(ChecksumCommand, OnATerminalLargeFilesShowProgressAndWriteTheSameChecksum) {
  std::string content(std::size_t{64} << 20, '\0');
  for (std::size_t i = 0; i < content.size(); i += 4096) content[i] = static_cast<char>(i >> 12);
  const std::string onTerminal = WriteData("terminal.bin", content);
  const std::string plain = WriteData("plain.bin", content);
  // script(1) gives the tool a pseudo-terminal for its standard error.
  const ChildResult run =
      RunChild({"/usr/bin/script", "-qec",
                BuiltProgram("tools/idxbase") + " checksum " + onTerminal, "/dev/null"},
               {{"PATH", "/usr/bin:/bin"}});
  ASSERT_EQ(0, run.exitCode) << run.output;
  // The bar redraws ten times a second at most, and a fast digest may end
  // first; its line is erased in any case.
  EXPECT_THAT(run.output, HasSubstr("\r\033[K"));
  const ChildResult withoutTerminal = RunTool({"checksum", plain});
  ASSERT_EQ(0, withoutTerminal.exitCode);
  EXPECT_THAT(withoutTerminal.output, Not(HasSubstr("\033[K")));
  EXPECT_EQ(ReadFile(plain + ".checksum").size(), 32u);
  EXPECT_EQ(ReadFile(onTerminal + ".checksum"), ReadFile(plain + ".checksum"));
}

TEST_F(ChecksumCommand, CheckAcceptsLowerCaseAndALineEnd) {
  const std::string abc = WriteData("abc", "abc");
  WriteFile(abc + ".checksum", "900150983cd24fb0d6963f7d28e17f72\n");
  ChildResult run = RunTool({"checksum", "--check", "--quiet", abc});
  EXPECT_EQ(0, run.exitCode) << run.output;
  EXPECT_EQ("", run.output);
}

TEST_F(ChecksumCommand, MismatchFailsAndNamesTheFile) {
  const std::string changed = WriteData("changed", "abc");
  const std::string kept = WriteData("kept", "kept");
  ASSERT_EQ(0, RunTool({"checksum", "--quiet", changed, kept}).exitCode);
  WriteFile(changed, "abd");

  ChildResult run = RunTool({"checksum", "--check", changed, kept});
  EXPECT_EQ(1, run.exitCode) << run.output;
  EXPECT_THAT(run.output, HasSubstr("idxbase checksum: " + changed + ": checksum mismatch (" +
                                    changed + ".checksum records " + kAbcDigest));
  EXPECT_THAT(run.output, Not(HasSubstr(changed + ": OK")));
  EXPECT_THAT(run.output, HasSubstr(kept + ": OK\n"));
}

TEST_F(ChecksumCommand, MissingOrMalformedChecksumFilesFail) {
  const std::string orphan = WriteData("orphan", "abc");
  const std::string garbled = WriteData("garbled", "abc");
  WriteFile(garbled + ".checksum", "900150983CD24FB0D6963F7D28E17F7");  // 31 digits

  ChildResult run = RunTool({"checksum", "--check", orphan, garbled});
  EXPECT_EQ(1, run.exitCode) << run.output;
  EXPECT_THAT(run.output, HasSubstr("idxbase checksum: " + orphan +
                                    ".checksum: cannot read: No such file or directory\n"));
  EXPECT_THAT(run.output, HasSubstr("idxbase checksum: " + garbled +
                                    ".checksum: not a checksum file (expected 32 hexadecimal "
                                    "digits)\n"));
}

TEST_F(ChecksumCommand, UnreadableInputsFailWithoutLeavingAChecksumFile) {
  const std::string missing = Path("missing");
  const std::string directory = Path("directory");
  std::filesystem::create_directory(directory);
  ChildResult run = RunTool({"checksum", missing, directory});
  EXPECT_EQ(1, run.exitCode) << run.output;
  EXPECT_THAT(run.output, HasSubstr("idxbase checksum: " + missing +
                                    ": cannot read: No such file or directory"));
  EXPECT_THAT(run.output,
              HasSubstr("idxbase checksum: " + directory + ": cannot read: Is a directory"));
  EXPECT_FALSE(FileExists(missing + ".checksum"));
  EXPECT_FALSE(FileExists(directory + ".checksum"));

  WriteFile(missing + ".checksum", kAbcDigest);
  run = RunTool({"checksum", "--check", missing});
  EXPECT_EQ(1, run.exitCode) << run.output;
  EXPECT_THAT(run.output, HasSubstr("idxbase checksum: " + missing + ": cannot read"));
}

TEST_F(ChecksumCommand, AFailedWriteFailsWithTheReason) {
  const std::string abc = WriteData("abc", "abc");
  std::filesystem::create_symlink("/dev/full", abc + ".checksum");
  ChildResult run = RunTool({"checksum", abc});
  EXPECT_EQ(1, run.exitCode) << run.output;
  EXPECT_THAT(run.output, HasSubstr("idxbase checksum: " + abc + ": cannot write " + abc +
                                    ".checksum: No space left on device\n"));
  // The device was written through the link, not replaced.
  EXPECT_TRUE(std::filesystem::is_symlink(abc + ".checksum"));
}

TEST_F(ChecksumCommand, AChecksumFileThatIsALinkIsReplacedWhereItLeads) {
  const std::string abc = WriteData("abc", "abc");
  std::filesystem::create_directory(Path("sums"));
  const std::string target = WriteData("sums/abc.md5", "old");
  std::filesystem::create_symlink("sums/abc.md5", abc + ".checksum");
  ChildResult run = RunTool({"checksum", "--quiet", abc});
  EXPECT_EQ(0, run.exitCode) << run.output;
  EXPECT_TRUE(std::filesystem::is_symlink(abc + ".checksum"));
  EXPECT_EQ(kAbcDigest, ReadFile(target));
}

// A run killed while it digests leaves the old checksum whole, and no
// temporary file beside it. The sparse 16 GiB take far longer to digest
// than the half second before the kill, at no cost in disk space.
TEST_F(ChecksumCommand, AKilledRunKeepsTheOldChecksum) {
  const std::string big = WriteData("big.bin", "");
  std::filesystem::resize_file(big, std::uintmax_t{16} << 30);
  WriteFile(big + ".checksum", kAbcDigest);
  const ChildResult run =
      RunChild({"/bin/sh", "-c", "\"$0\" checksum \"$1\" & sleep 0.5; kill -TERM $!; wait $!",
                BuiltProgram("tools/idxbase"), big},
               {{"PATH", "/usr/bin:/bin"}});
  EXPECT_EQ(128 + SIGTERM, run.exitCode) << run.output;
  EXPECT_EQ(kAbcDigest, ReadFile(big + ".checksum"));
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir_.path())) {
    names.push_back(entry.path().filename().string());
  }
  EXPECT_THAT(names, ::testing::UnorderedElementsAre("big.bin", "big.bin.checksum"));
}

// Neither a FIFO to read nor a FIFO in place of a checksum file may block
// the tool: each is refused at once. The timeout only ends a run that
// hangs (status 124).
TEST_F(ChecksumCommand, FifosAreRefusedWithoutBlocking) {
  const std::string fifo = Path("fifo");
  const std::string data = WriteData("data", "abc");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  ASSERT_EQ(0, mkfifo((data + ".checksum").c_str(), 0600));
  const struct {
    std::vector<std::string> arguments;
    std::string message;
  } cases[] = {
      {{"checksum", fifo}, "checksum: " + fifo + ": cannot read: not a regular file"},
      {{"checksum", "--check", data},
       "checksum: " + data +
           ".checksum: cannot read: not a "
           "regular file"},
      {{"checksum", "--gnu", "--check", fifo},
       "checksum: " + fifo +
           ": cannot read: not a "
           "regular file"},
      {{"filter", "--where", "a = 1", fifo}, "filter: " + fifo + ": not a regular file"},
      {{"filter", "--file", fifo, data}, "filter: " + fifo + ": not a regular file"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> argv = {"/usr/bin/timeout", "5", BuiltProgram("tools/idxbase")};
    argv.insert(argv.end(), c.arguments.begin(), c.arguments.end());
    const ChildResult run = RunChild(argv, {{"PATH", "/usr/bin:/bin"}});
    EXPECT_EQ(1, run.exitCode) << c.message << ": " << run.output;
    EXPECT_THAT(run.output, HasSubstr("idxbase " + c.message + "\n"));
  }
}

// md5sum's lines, written and read, with names that need its escapes,
// digested in parallel and printed in the order of the arguments. md5sum
// itself reads what the tool writes.
TEST_F(ChecksumCommand, SpeaksMd5sumsChecksumLines) {
  const std::string abc = WriteData("abc", "abc");
  const std::string empty = WriteData("empty", "");
  const std::string odd = WriteData("back\\slash\nnew line", "abc");
  ChildResult written = RunTool({"checksum", "--gnu", "-j", "3", abc, empty, odd});
  ASSERT_EQ(0, written.exitCode) << written.output;
  EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72  " + abc + "\n" +
                "d41d8cd98f00b204e9800998ecf8427e  " + empty + "\n" +
                "\\900150983cd24fb0d6963f7d28e17f72  " + Path("back\\\\slash\\nnew line") + "\n",
            written.output);
  EXPECT_FALSE(FileExists(abc + ".checksum"));
  const std::string sums = WriteData("SUMS", written.output);
  const ChildResult md5sum = RunChild({"/usr/bin/md5sum", "--check", "--quiet", sums}, {});
  EXPECT_EQ(0, md5sum.exitCode) << md5sum.output;

  // Upper case, md5sum's binary marker, a mismatch and a malformed line;
  // a list without .checksum file is read as a list without --gnu.
  WriteFile(sums, "900150983CD24FB0D6963F7D28E17F72 *" + abc + "\n" +
                      "900150983cd24fb0d6963f7d28e17f72  " + empty + "\n" + "not a line\n");
  ChildResult checked = RunTool({"checksum", "-c", sums});
  EXPECT_EQ(1, checked.exitCode) << checked.output;
  EXPECT_THAT(checked.output, HasSubstr(abc + ": OK\n"));
  EXPECT_THAT(checked.output, HasSubstr("idxbase checksum: " + empty + ": checksum mismatch (" +
                                        sums + " records " + kAbcDigest));
  EXPECT_THAT(checked.output, HasSubstr("idxbase checksum: " + sums + ":3: not a checksum line"));
  EXPECT_THAT(checked.output, HasSubstr("2 files, 3 B in "));
}

}  // namespace
}  // namespace idxbase_test
