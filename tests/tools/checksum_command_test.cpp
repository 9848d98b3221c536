// idxbase checksum: files written by the library's ComputeCheckSum, and
// verification with the tool's own block-by-block digest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_F(ChecksumCommand, VerifiesAcrossReadBlocksWhatTheLibraryWrote) {
  // 2.5 MiB spans three read blocks; the library wrote the checksum, the
  // tool computes its own digest when checking.
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

// On a terminal a large file is digested by the tool, with a progress bar;
// the checksum file must be the one the library writes without a terminal.
TEST_F(ChecksumCommand, OnATerminalLargeFilesShowProgressAndWriteTheLibrarysChecksum) {
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

}  // namespace
}  // namespace idxbase_test
