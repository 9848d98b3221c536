// The switches are read while the library loads, so each environment runs
// the idxbase tool in a child process and reads the value column of the
// table it prints.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "support/child_process.h"

namespace {

using Flags = std::map<std::string, std::string>;

// The tool's table under `env` ("NAME=value;NAME=value"), as name -> value
// without the quotes around text values.
Flags FlagsUnder(const std::string& env) {
  std::map<std::string, std::string> variables;
  std::istringstream assignments(env);
  for (std::string item; std::getline(assignments, item, ';');) {
    variables[item.substr(0, item.find('='))] = item.substr(item.find('=') + 1);
  }
  const idxbase_test::ChildResult child =
      idxbase_test::RunChild({idxbase_test::BuiltProgram("tools/idxbase"), "flags"}, variables);
  EXPECT_EQ(0, child.exitCode) << child.output;
  std::istringstream lines(child.output);
  std::string header;
  std::getline(lines, header);
  const std::size_t column = header.find("VALUE");
  EXPECT_NE(std::string::npos, column) << child.output;
  Flags flags;
  for (std::string line; std::getline(lines, line);) {
    std::string value = column < line.size() ? line.substr(column) : "";
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
      value = value.substr(1, value.size() - 2);
    }
    flags[line.substr(0, line.find(' '))] = value;
  }
  return flags;
}

TEST(DevFlags, DefaultsWithAnEmptyEnvironment) {
  std::istringstream defaults(
      "_FastCV=true _FastCVWrap=true _FastCVNames=true _FastCVRootIds=true _FastCVBBoxes=true "
      "_Log2CV=false _Log2CVPerfo=false _ForceOctreeWithThbOnly=false _OldBBComputation=false "
      "IDXUseQuillonSecurityInsteadOfOCDX=false _KeepGeneration1=-1 _KeepGeneration2=-1 "
      "UseVLMSimplified()=true DWHIndexing()=true AdvancedMigration()=true "
      "IsIndexTextOnly()=true ForcePostProcRep()=true EvalAllAtMaybe()=false "
      "IsPersistantConfigCacheActive()=false GetPersistantConfigCacheDir()= "
      "IsRTreeBuildActive()=false IsRTreeDisabledRT()=false CheckMemoryConsistency()=false "
      "IsRecoverInstance()=false RecoverInstanceSeconds()=7200 KeepLocalTaskLog()=false "
      "IndexPrivateReps()=false ReadableTimeStampsForBBDMonitorFolders()=false "
      "UseDeleteLog()=false IsSimilarBSFFilter()=false IsNewSecuEnabled()=false "
      "QueryTimerMilliSecond()=0 DerivedObjectComputationTimeLimitForBuilderLogsInMs()=0 "
      "MaxMemorySizeForBuilderInMB()=7000 MaxMemorySizeForAllBuildersinMB()=196000 "
      "KeepGeneration()=-1 RunWithCVServlet()=true dontKillOrpheanBuilders()=false "
      "getKORIndexStoragePath()=(null) isPlmIndexDisabled()=false isPlmIndexInProcess()=false");
  Flags expected;
  for (std::string item; defaults >> item;) {
    expected[item.substr(0, item.find('='))] = item.substr(item.find('=') + 1);
  }
  EXPECT_EQ(expected, FlagsUnder(""));
}

TEST(DevFlags, ReadTheEnvironmentByEachFlagsRule) {
  const struct {
    const char* env;
    const char* flag;
    const char* expected;
  } kCases[] = {
      // Switches: only the exact words FALSE, NO and 0 turn one off.
      {"IDXFastCV=FALSE", "_FastCV", "false"},
      {"IDXFastCV=NO", "_FastCV", "false"},
      {"IDXFastCV=0", "_FastCV", "false"},
      {"IDXFastCV=false", "_FastCV", "true"},
      {"IDXFastCV=no", "_FastCV", "true"},
      {"IDXFastCV=00", "_FastCV", "true"},
      {"IDXFastCV= 0", "_FastCV", "true"},
      {"IDXFastCV=", "_FastCV", "true"},
      {"IDXFastCVBBoxes=NO", "_FastCVBBoxes", "false"},
      {"IDXLog2CV=1", "_Log2CV", "true"},
      {"IDXLog2CV=FALSE", "_Log2CV", "false"},
      {"IDXLog2CVPerfo=", "_Log2CVPerfo", "true"},
      {"IDXForceOctreeWithThbOnly=yes", "_ForceOctreeWithThbOnly", "true"},
      // Defined or not: any value counts, "0" and the empty value included.
      {"IDXEvalAllAtMaybe=0", "EvalAllAtMaybe()", "true"},
      {"IDXBuildRTree=", "IsRTreeBuildActive()", "true"},
      {"IDXDisableRTree=FALSE", "IsRTreeDisabledRT()", "true"},
      {"KORQuillonCheckMemoryConsistency=x", "CheckMemoryConsistency()", "true"},
      {"ReadableTimestampsForBBDMonitorFolders=1", "ReadableTimeStampsForBBDMonitorFolders()",
       "true"},
      {"ReadableTimeStampsForBBDMonitorFolders=1", "ReadableTimeStampsForBBDMonitorFolders()",
       "false"},
      {"IDXNewSecu=NO", "IsNewSecuEnabled()", "true"},
      {"IDXConfigCacheDir=/var/cache/idx", "IsPersistantConfigCacheActive()", "true"},
      {"IDXConfigCacheDir=/var/cache/idx", "GetPersistantConfigCacheDir()", "/var/cache/idx"},
      {"IDX_DO_NOT_USE_SimplifiedVLM=0", "UseVLMSimplified()", "false"},
      {"IDX_NO_INDEX_DWH=", "DWHIndexing()", "false"},
      {"NO_ADVANCED_MIGRATION=1", "AdvancedMigration()", "false"},
      {"IDXDisableTextOnly=1", "IsIndexTextOnly()", "false"},
      {"IDXDisableForcePostProcRep=1", "ForcePostProcRep()", "false"},
      // Numbers: atoi reading that wraps; the two memory sizes share one
      // variable; the query timer is in seconds.
      {"IDX_MaxMemorySizeForBuilderInMB=5000", "MaxMemorySizeForAllBuildersinMB()", "5000"},
      {"IDX_MaxMemorySizeForBuilderInMB=lots", "MaxMemorySizeForAllBuildersinMB()", "0"},
      {"IDX_MaxMemorySizeForBuilderInMB=-1", "MaxMemorySizeForBuilderInMB()", "4294967295"},
      {"IDX_MaxMemorySizeForBuilderInMB=4000000000", "MaxMemorySizeForBuilderInMB()", "4000000000"},
      {"IDXQueryMaxDuration=30", "QueryTimerMilliSecond()", "30000"},
      {"IDXQueryMaxDuration=4294968", "QueryTimerMilliSecond()", "704"},
      {"IDX_DerivedObjectComputationTimeLimitForBuilderLogsInMs= +250ms",
       "DerivedObjectComputationTimeLimitForBuilderLogsInMs()", "250"},
      {"IDXRecoverInstanceSecondsNumber=60", "RecoverInstanceSeconds()", "60"},
      {"IDXRecoverInstanceSecondsNumber=", "RecoverInstanceSeconds()", "0"},
      // The derived generation: the first variable wins only from 1 upwards.
      {"IDXKeepPreviousGeneration=0;KeepPreviousGeneration=3", "KeepGeneration()", "3"},
      {"IDXKeepPreviousGeneration=1;KeepPreviousGeneration=9", "KeepGeneration()", "1"},
      {"IDXKeepPreviousGeneration=-5", "KeepGeneration()", "-1"},
      {"KeepPreviousGeneration=-7", "KeepGeneration()", "-7"},
      // Read at every call (changes after load are covered in process).
      {"IDXKeepPreviousGeneration=0;RUN_WITH_CVSERVLET=YES", "RunWithCVServlet()", "false"},
      {"RUN_WITH_CVSERVLET=no", "RunWithCVServlet()", "true"},
      {"RUN_WITH_CVSERVLET=0", "RunWithCVServlet()", "true"},
      {"IDXDontKillOrpheanBuilders=0", "dontKillOrpheanBuilders()", "true"},
      {"KORIndexStoragePath=", "getKORIndexStoragePath()", ""},
      {"PLM_INDEX_INPROCESS=", "isPlmIndexInProcess()", "true"},
  };
  for (const auto& c : kCases) {
    const Flags flags = FlagsUnder(c.env);
    const auto found = flags.find(c.flag);
    ASSERT_NE(flags.end(), found) << "the tool did not report " << c.flag;
    EXPECT_EQ(c.expected, found->second) << c.flag << " under " << c.env;
  }
}

}  // namespace
