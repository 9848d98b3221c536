// The switch loader under environments of the test's choosing: in process
// through its environment parameter, and once in a child process to show
// that the library reads the real environment while it is loaded.
#include "services/dev_flags.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "idxbase/kor_system.h"
#include "idxbase/settings.h"
#include "platform/scoped_env.h"
#include "support/child_process.h"

namespace {

using F = IDX_DEV_LA;
using idxbase::detail::kDevFlags;
using idxbase::detail::LoadDevFlags;
using idxbase::detail::ParseInteger;

std::string Show(bool value) { return value ? "true" : "false"; }
template <class Number>
std::string Show(Number value) {
  return std::to_string(value);
}
std::string Show(const char* text) { return text == nullptr ? "(null)" : text; }
// Several values, separated by spaces.
template <class First, class... Rest>
std::string Show(const First& first, const Rest&... rest) {
  return Show(first) + ((" " + Show(rest)) + ...);
}

class DevFlags : public ::testing::Test {
 protected:
  void TearDown() override { LoadDevFlags(KORGetEnv); }

  // Loads the switches from `assignments` ("NAME=value;...") alone, makes
  // them the process's only switch variables for the accessors that read
  // at every call, and returns `read()`.
  static std::string Under(const std::string& assignments, std::string (*read)()) {
    std::map<std::string, std::string> env;
    std::istringstream items(assignments);
    for (std::string item; std::getline(items, item, ';');) {
      env[item.substr(0, item.find('='))] = item.substr(item.find('=') + 1);
    }
    idxbase_test::ScopedEnv scoped;
    for (const auto& flag : kDevFlags) {
      for (const char* name : {flag.variable, flag.secondVariable}) {
        if (name != nullptr) scoped.Set(name, std::nullopt);
      }
    }
    for (const auto& [name, value] : env) scoped.Set(name, value);
    LoadDevFlags([&env](const char* name) -> const char* {
      const auto found = env.find(name);
      return found == env.end() ? nullptr : found->second.c_str();
    });
    return read();
  }
};

#define READ(...) [] { return Show(__VA_ARGS__); }

TEST_F(DevFlags, ReadTheEnvironmentByEachFlagsRule) {
  const struct {
    const char* env;
    std::string (*read)();
    const char* expected;
  } kCases[] = {
      // Nothing defined: the defaults (GetPersistantConfigCacheDir() and
      // KeepGeneration() in DevFlagsAtLoad).
      {"",
       READ(F::_FastCV && F::_FastCVWrap && F::_FastCVNames && F::_FastCVRootIds &&
                F::UseVLMSimplified() && F::DWHIndexing() && F::AdvancedMigration() &&
                F::IsIndexTextOnly() && F::ForcePostProcRep() && F::RunWithCVServlet(),
            F::_Log2CV || F::EvalAllAtMaybe() || F::IsRTreeBuildActive() ||
                F::dontKillOrpheanBuilders() || F::isPlmIndexInProcess(),
            F::RecoverInstanceSeconds(), F::MaxMemorySizeForBuilderInMB(),
            F::MaxMemorySizeForAllBuildersinMB(), F::QueryTimerMilliSecond(),
            F::getKORIndexStoragePath()),
       "true false 7200 7000 196000 0 (null)"},
      // Switches: only the exact words FALSE, NO and 0 turn one off.
      {"IDXFastCV=FALSE", READ(F::_FastCV), "false"},
      {"IDXFastCV=NO", READ(F::_FastCV), "false"},
      {"IDXFastCV=0", READ(F::_FastCV), "false"},
      {"IDXFastCV=false", READ(F::_FastCV), "true"},
      {"IDXFastCV=no", READ(F::_FastCV), "true"},
      {"IDXFastCV=00", READ(F::_FastCV), "true"},
      {"IDXFastCV= 0", READ(F::_FastCV), "true"},
      {"IDXFastCV=", READ(F::_FastCV), "true"},
      {"IDXFastCVWrap=0;IDXFastCVNames=0;IDXFastCVRootIds=0;IDXFastCVBBoxes=NO",
       READ(F::_FastCVWrap || F::_FastCVNames || F::_FastCVRootIds || F::_FastCVBBoxes), "false"},
      {"IDXLog2CV=1;IDXLog2CVPerfo=;IDXForceOctreeWithThbOnly=yes",
       READ(F::_Log2CV && F::_Log2CVPerfo && F::_ForceOctreeWithThbOnly), "true"},
      // Defined or not: any value counts, "0" and the empty value included.
      {"IDXEvalAllAtMaybe=0;IDXBuildRTree=;IDXDisableRTree=FALSE;IDXOldBBComputation=0;"
       "IDXNewSecu=NO;IDXRecoverInstance=0;IDXKeepLocalTaskLog=;IDXIndexPrivateReps=0;"
       "IDXUseDeleteLog=0;IDXSimilarBSFFilter=;KORQuillonCheckMemoryConsistency=;"
       "IDXUseQuillonSecurityInsteadOfOCDX=;ReadableTimestampsForBBDMonitorFolders=1;"
       "IDXConfigCacheDir=/c",
       READ(F::EvalAllAtMaybe() && F::IsRTreeBuildActive() && F::IsRTreeDisabledRT() &&
            F::_OldBBComputation && F::IsNewSecuEnabled() && F::IsRecoverInstance() &&
            F::KeepLocalTaskLog() && F::IndexPrivateReps() && F::UseDeleteLog() &&
            F::IsSimilarBSFFilter() && F::CheckMemoryConsistency() &&
            F::IDXUseQuillonSecurityInsteadOfOCDX && F::ReadableTimeStampsForBBDMonitorFolders() &&
            F::IsPersistantConfigCacheActive()),
       "true"},
      {"IDX_DO_NOT_USE_SimplifiedVLM=0;IDX_NO_INDEX_DWH=;NO_ADVANCED_MIGRATION=1;"
       "IDXDisableTextOnly=1;IDXDisableForcePostProcRep=1",
       READ(F::UseVLMSimplified() || F::DWHIndexing() || F::AdvancedMigration() ||
            F::IsIndexTextOnly() || F::ForcePostProcRep()),
       "false"},
      // Numbers (read as ParseInteger reads them): the two memory sizes share
      // one variable; unsigned members wrap; the query timer is in seconds,
      // held in milliseconds modulo 2^32.
      {"IDX_MaxMemorySizeForBuilderInMB=5000",
       READ(F::MaxMemorySizeForBuilderInMB(), F::MaxMemorySizeForAllBuildersinMB()), "5000 5000"},
      {"IDX_MaxMemorySizeForBuilderInMB=-1", READ(F::MaxMemorySizeForBuilderInMB()), "4294967295"},
      {"IDXQueryMaxDuration=4294968", READ(F::QueryTimerMilliSecond()), "704"},
      {"IDX_DerivedObjectComputationTimeLimitForBuilderLogsInMs=250;"
       "IDXRecoverInstanceSecondsNumber=60",
       READ(F::DerivedObjectComputationTimeLimitForBuilderLogsInMs(), F::RecoverInstanceSeconds()),
       "250 60"},
      // The derived generation: the first variable wins only from 1 upwards.
      {"IDXKeepPreviousGeneration=0;KeepPreviousGeneration=3", READ(F::KeepGeneration()), "3"},
      {"IDXKeepPreviousGeneration=1;KeepPreviousGeneration=9",
       READ(F::KeepGeneration(), F::_KeepGeneration2), "1 9"},
      {"IDXKeepPreviousGeneration=-5;KeepPreviousGeneration=-7",
       READ(F::KeepGeneration(), F::_KeepGeneration1), "-7 -5"},
      // Read at every call.
      {"IDXKeepPreviousGeneration=0;RUN_WITH_CVSERVLET=YES", READ(F::RunWithCVServlet()), "false"},
      {"RUN_WITH_CVSERVLET=NO", READ(F::RunWithCVServlet()), "false"},
      {"RUN_WITH_CVSERVLET=no", READ(F::RunWithCVServlet()), "true"},
      {"IDXDontKillOrpheanBuilders=0", READ(F::dontKillOrpheanBuilders()), "true"},
      {"QBR_PMX_TMP=", READ(F::dontKillOrpheanBuilders()), "true"},
      {"KORIndexStoragePath=/srv/index", READ(F::getKORIndexStoragePath()), "/srv/index"},
      {"PLM_INDEX_DISABLED=0;PLM_INDEX_INPROCESS=",
       READ(F::isPlmIndexDisabled() && F::isPlmIndexInProcess()), "true"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(c.expected, Under(c.env, c.read)) << "under \"" << c.env << '"';
  }
}

// The shared library sets its switches from the environment while it is
// loaded, before main runs.
TEST(DevFlagsAtLoad, ComeFromTheProcessEnvironment) {
  const std::string probe = idxbase_test::BuiltProgram("tests/services/dev_flags_probe");
  EXPECT_EQ("1 -1 []\n", idxbase_test::RunChild({probe}, {}).output);
  EXPECT_EQ("0 4 [/c]\n", idxbase_test::RunChild({probe}, {{"IDXFastCV", "NO"},
                                                           {"IDXKeepPreviousGeneration", "4"},
                                                           {"IDXConfigCacheDir", "/c"}})
                              .output);
}

TEST(ParseInteger, ReadsLikeAtoiWithoutUndefinedBehaviour) {
  const struct {
    const char* text;
    std::int32_t expected;
  } cases[] = {
      // clang-format off
      {"0", 0}, {"42", 42}, {"  \t\n42", 42}, {"+7", 7}, {"-7", -7}, {"12abc", 12}, {"abc", 0},
      {"", 0}, {"-", 0}, {"+-3", 0}, {"- 3", 0}, {"2147483647", 2147483647},
      {"-2147483648", -2147483647 - 1}, {"2147483648", -2147483647 - 1}, {"4294967295", -1},
      {"4294967296", 0}, {"99999999999999999999", 1661992959},
      // clang-format on
  };
  for (const auto& c : cases) EXPECT_EQ(c.expected, ParseInteger(c.text)) << '"' << c.text << '"';
}

}  // namespace
