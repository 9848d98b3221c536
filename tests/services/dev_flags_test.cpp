// The switches are read while the library loads, so each case runs the
// idxbase tool in a child process with a controlled environment and reads
// the value column of the table it prints.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "support/child_process.h"

namespace {

using Env = std::map<std::string, std::string>;

// The last column of a table row: the text from the header's "VALUE"
// onwards, without the quotes around a text value.
std::string ValueColumn(const std::string& line, std::size_t column) {
  std::string value = column < line.size() ? line.substr(column) : "";
  if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
    value = value.substr(1, value.size() - 2);
  }
  return value;
}

// The tool's table, as name -> value.
std::map<std::string, std::string> FlagsUnder(const Env& env) {
  idxbase_test::ChildResult child =
      idxbase_test::RunChild({idxbase_test::BuiltProgram("tools/idxbase"), "flags"}, env);
  EXPECT_EQ(0, child.exitCode) << child.output;
  std::istringstream lines(child.output);
  std::string header;
  std::getline(lines, header);
  const std::size_t valueColumn = header.find("VALUE");
  EXPECT_NE(std::string::npos, valueColumn) << child.output;
  std::map<std::string, std::string> flags;
  for (std::string line; std::getline(lines, line);) {
    flags[line.substr(0, line.find(' '))] = ValueColumn(line, valueColumn);
  }
  return flags;
}

std::string FlagUnder(const Env& env, const std::string& name) {
  auto flags = FlagsUnder(env);
  auto found = flags.find(name);
  EXPECT_NE(found, flags.end()) << "the tool did not report " << name;
  return found == flags.end() ? "" : found->second;
}

TEST(DevFlags, DefaultsWithAnEmptyEnvironment) {
  const std::map<std::string, std::string> expected = {
      {"_FastCV", "true"},
      {"_FastCVWrap", "true"},
      {"_FastCVNames", "true"},
      {"_FastCVRootIds", "true"},
      {"_FastCVBBoxes", "true"},
      {"_Log2CV", "false"},
      {"_Log2CVPerfo", "false"},
      {"_ForceOctreeWithThbOnly", "false"},
      {"_OldBBComputation", "false"},
      {"IDXUseQuillonSecurityInsteadOfOCDX", "false"},
      {"_KeepGeneration1", "-1"},
      {"_KeepGeneration2", "-1"},
      {"UseVLMSimplified()", "true"},
      {"DWHIndexing()", "true"},
      {"AdvancedMigration()", "true"},
      {"IsIndexTextOnly()", "true"},
      {"ForcePostProcRep()", "true"},
      {"EvalAllAtMaybe()", "false"},
      {"IsPersistantConfigCacheActive()", "false"},
      {"GetPersistantConfigCacheDir()", ""},
      {"IsRTreeBuildActive()", "false"},
      {"IsRTreeDisabledRT()", "false"},
      {"CheckMemoryConsistency()", "false"},
      {"IsRecoverInstance()", "false"},
      {"RecoverInstanceSeconds()", "7200"},
      {"KeepLocalTaskLog()", "false"},
      {"IndexPrivateReps()", "false"},
      {"ReadableTimeStampsForBBDMonitorFolders()", "false"},
      {"UseDeleteLog()", "false"},
      {"IsSimilarBSFFilter()", "false"},
      {"IsNewSecuEnabled()", "false"},
      {"QueryTimerMilliSecond()", "0"},
      {"DerivedObjectComputationTimeLimitForBuilderLogsInMs()", "0"},
      {"MaxMemorySizeForBuilderInMB()", "7000"},
      {"MaxMemorySizeForAllBuildersinMB()", "196000"},
      {"KeepGeneration()", "-1"},
      {"RunWithCVServlet()", "true"},
      {"dontKillOrpheanBuilders()", "false"},
      {"getKORIndexStoragePath()", "(null)"},
      {"isPlmIndexDisabled()", "false"},
      {"isPlmIndexInProcess()", "false"},
  };
  EXPECT_EQ(expected, FlagsUnder({}));
}

struct FlagCase {
  Env env;
  std::string flag;
  std::string expected;
};

// Names the case in test listings: "<flag> under NAME=value ...".
void PrintTo(const FlagCase& c, std::ostream* out) {
  *out << c.flag << " under";
  for (const auto& [name, value] : c.env) *out << ' ' << name << "=\"" << value << '"';
}

class DevFlagRules : public ::testing::TestWithParam<FlagCase> {};

TEST_P(DevFlagRules, ReadsTheEnvironmentByTheFlagsRule) {
  const FlagCase& c = GetParam();
  EXPECT_EQ(c.expected, FlagUnder(c.env, c.flag));
}

// switch: only the exact words FALSE, NO and 0 turn a switch off.
INSTANTIATE_TEST_SUITE_P(
    Switch, DevFlagRules,
    ::testing::Values(
        FlagCase{{{"IDXFastCV", "FALSE"}}, "_FastCV", "false"},
        FlagCase{{{"IDXFastCV", "NO"}}, "_FastCV", "false"},
        FlagCase{{{"IDXFastCV", "0"}}, "_FastCV", "false"},
        FlagCase{{{"IDXFastCV", "false"}}, "_FastCV", "true"},
        FlagCase{{{"IDXFastCV", "no"}}, "_FastCV", "true"},
        FlagCase{{{"IDXFastCV", "00"}}, "_FastCV", "true"},
        FlagCase{{{"IDXFastCV", " 0"}}, "_FastCV", "true"},
        FlagCase{{{"IDXFastCV", ""}}, "_FastCV", "true"},
        FlagCase{{{"IDXFastCVBBoxes", "NO"}}, "_FastCVBBoxes", "false"},
        FlagCase{{{"IDXLog2CV", "1"}}, "_Log2CV", "true"},
        FlagCase{{{"IDXLog2CV", "FALSE"}}, "_Log2CV", "false"},
        FlagCase{{{"IDXLog2CVPerfo", ""}}, "_Log2CVPerfo", "true"},
        FlagCase{{{"IDXForceOctreeWithThbOnly", "yes"}}, "_ForceOctreeWithThbOnly", "true"}));

// defined / undefined: any value counts, "0" and the empty value included.
INSTANTIATE_TEST_SUITE_P(
    Defined, DevFlagRules,
    ::testing::Values(
        FlagCase{{{"IDXEvalAllAtMaybe", "0"}}, "EvalAllAtMaybe()", "true"},
        FlagCase{{{"IDXBuildRTree", ""}}, "IsRTreeBuildActive()", "true"},
        FlagCase{{{"IDXDisableRTree", "FALSE"}}, "IsRTreeDisabledRT()", "true"},
        FlagCase{{{"KORQuillonCheckMemoryConsistency", "x"}}, "CheckMemoryConsistency()", "true"},
        FlagCase{{{"ReadableTimestampsForBBDMonitorFolders", "1"}},
                 "ReadableTimeStampsForBBDMonitorFolders()",
                 "true"},
        FlagCase{{{"ReadableTimeStampsForBBDMonitorFolders", "1"}},
                 "ReadableTimeStampsForBBDMonitorFolders()",
                 "false"},
        FlagCase{{{"IDXNewSecu", "NO"}}, "IsNewSecuEnabled()", "true"},
        FlagCase{
            {{"IDXConfigCacheDir", "/var/cache/idx"}}, "IsPersistantConfigCacheActive()", "true"},
        FlagCase{{{"IDXConfigCacheDir", "/var/cache/idx"}},
                 "GetPersistantConfigCacheDir()",
                 "/var/cache/idx"},
        FlagCase{{{"IDX_DO_NOT_USE_SimplifiedVLM", "0"}}, "UseVLMSimplified()", "false"},
        FlagCase{{{"IDX_NO_INDEX_DWH", ""}}, "DWHIndexing()", "false"},
        FlagCase{{{"NO_ADVANCED_MIGRATION", "1"}}, "AdvancedMigration()", "false"},
        FlagCase{{{"IDXDisableTextOnly", "1"}}, "IsIndexTextOnly()", "false"},
        FlagCase{{{"IDXDisableForcePostProcRep", "1"}}, "ForcePostProcRep()", "false"}));

// number: atoi reading; the two memory sizes share one variable; the
// query timer is in seconds; out-of-range text wraps instead of failing.
INSTANTIATE_TEST_SUITE_P(
    Number, DevFlagRules,
    ::testing::Values(
        FlagCase{
            {{"IDX_MaxMemorySizeForBuilderInMB", "5000"}}, "MaxMemorySizeForBuilderInMB()", "5000"},
        FlagCase{{{"IDX_MaxMemorySizeForBuilderInMB", "5000"}},
                 "MaxMemorySizeForAllBuildersinMB()",
                 "5000"},
        FlagCase{
            {{"IDX_MaxMemorySizeForBuilderInMB", "lots"}}, "MaxMemorySizeForBuilderInMB()", "0"},
        FlagCase{{{"IDX_MaxMemorySizeForBuilderInMB", "lots"}},
                 "MaxMemorySizeForAllBuildersinMB()",
                 "0"},
        FlagCase{{{"IDX_MaxMemorySizeForBuilderInMB", "-1"}},
                 "MaxMemorySizeForBuilderInMB()",
                 "4294967295"},
        FlagCase{{{"IDX_MaxMemorySizeForBuilderInMB", "4000000000"}},
                 "MaxMemorySizeForBuilderInMB()",
                 "4000000000"},
        FlagCase{{{"IDXQueryMaxDuration", "30"}}, "QueryTimerMilliSecond()", "30000"},
        FlagCase{{{"IDXQueryMaxDuration", "4294968"}}, "QueryTimerMilliSecond()", "704"},
        FlagCase{{{"IDX_DerivedObjectComputationTimeLimitForBuilderLogsInMs", " +250ms"}},
                 "DerivedObjectComputationTimeLimitForBuilderLogsInMs()",
                 "250"},
        FlagCase{{{"IDXRecoverInstanceSecondsNumber", "60"}}, "RecoverInstanceSeconds()", "60"},
        FlagCase{{{"IDXRecoverInstanceSecondsNumber", ""}}, "RecoverInstanceSeconds()", "0"},
        FlagCase{{{"IDXRecoverInstanceSecondsNumber", "99999999999999999999"}},
                 "RecoverInstanceSeconds()",
                 "1661992959"}));

// The derived generation: the first variable wins only from 1 upwards.
INSTANTIATE_TEST_SUITE_P(
    KeepGeneration, DevFlagRules,
    ::testing::Values(
        FlagCase{{{"IDXKeepPreviousGeneration", "0"}, {"KeepPreviousGeneration", "3"}},
                 "KeepGeneration()",
                 "3"},
        FlagCase{{{"IDXKeepPreviousGeneration", "2"}, {"KeepPreviousGeneration", "3"}},
                 "KeepGeneration()",
                 "2"},
        FlagCase{{{"IDXKeepPreviousGeneration", "2"}}, "KeepGeneration()", "2"},
        FlagCase{{{"IDXKeepPreviousGeneration", "-5"}}, "KeepGeneration()", "-1"},
        FlagCase{{{"KeepPreviousGeneration", "-7"}}, "KeepGeneration()", "-7"},
        FlagCase{{{"IDXKeepPreviousGeneration", "1"}, {"KeepPreviousGeneration", "9"}},
                 "KeepGeneration()",
                 "1"}));

// Read at every call.
INSTANTIATE_TEST_SUITE_P(
    CallTime, DevFlagRules,
    ::testing::Values(
        FlagCase{{{"IDXKeepPreviousGeneration", ""}}, "RunWithCVServlet()", "false"},
        FlagCase{{{"IDXKeepPreviousGeneration", "0"}, {"RUN_WITH_CVSERVLET", "YES"}},
                 "RunWithCVServlet()",
                 "false"},
        FlagCase{{{"RUN_WITH_CVSERVLET", "NO"}}, "RunWithCVServlet()", "false"},
        FlagCase{{{"RUN_WITH_CVSERVLET", "no"}}, "RunWithCVServlet()", "true"},
        FlagCase{{{"RUN_WITH_CVSERVLET", "0"}}, "RunWithCVServlet()", "true"},
        FlagCase{{{"QBR_PMX_TMP", ""}}, "dontKillOrpheanBuilders()", "true"},
        FlagCase{{{"IDXDontKillOrpheanBuilders", "0"}}, "dontKillOrpheanBuilders()", "true"},
        FlagCase{
            {{"KORIndexStoragePath", "/data/index"}}, "getKORIndexStoragePath()", "/data/index"},
        FlagCase{{{"KORIndexStoragePath", ""}}, "getKORIndexStoragePath()", ""},
        FlagCase{{{"PLM_INDEX_DISABLED", "0"}}, "isPlmIndexDisabled()", "true"},
        FlagCase{{{"PLM_INDEX_INPROCESS", ""}}, "isPlmIndexInProcess()", "true"}));

}  // namespace
