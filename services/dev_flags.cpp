// The development switches, read while the library is loaded. The members
// are initialised in the order of their definitions below, so the derived
// _KeepGeneration comes after the two values it is made of. The variables,
// rules and defaults come from the switch table.
#include <string_view>

#include "idxbase/kor_system.h"
#include "idxbase/settings.h"
#include "services/dev_flag_table.h"
#include "services/env_rules.h"

namespace {

namespace table = idxbase::detail;
using idxbase::detail::DevFlag;
using idxbase::detail::FlagRule;
using idxbase::detail::IsDefined;

// A truth value read by the flag's rule (switch, defined or undefined).
bool ReadTruth(const DevFlag& flag) {
  switch (flag.rule) {
    case FlagRule::kSwitch:
      return idxbase::detail::ReadSwitch(flag.variable, flag.fallback.number != 0);
    case FlagRule::kUndefined:
      return !IsDefined(flag.variable);
    default:
      return IsDefined(flag.variable) ||
             (flag.secondVariable != nullptr && IsDefined(flag.secondVariable));
  }
}

std::int32_t ReadNumber(const DevFlag& flag) {
  return idxbase::detail::ReadNumber(flag.variable,
                                     static_cast<std::int32_t>(flag.fallback.number));
}

// Unsigned members take the 32-bit result as it stands; a number of
// seconds becomes milliseconds, the product wrapping modulo 2^32.
std::uint32_t ReadUnsigned(const DevFlag& flag) {
  const auto value = static_cast<std::uint32_t>(ReadNumber(flag));
  return flag.rule == FlagRule::kSeconds ? value * 1000u : value;
}

const char* ReadText(const DevFlag& flag) {
  const char* value = KORGetEnv(flag.variable);
  return value != nullptr ? value : flag.fallback.text;
}

int DeriveKeepGeneration(int first, int second) { return first > 0 ? first : second; }

}  // namespace

bool IDX_DEV_LA::_FastCV = ReadTruth(table::kFastCV);
bool IDX_DEV_LA::_FastCVWrap = ReadTruth(table::kFastCVWrap);
bool IDX_DEV_LA::_FastCVNames = ReadTruth(table::kFastCVNames);
bool IDX_DEV_LA::_FastCVRootIds = ReadTruth(table::kFastCVRootIds);
bool IDX_DEV_LA::_FastCVBBoxes = ReadTruth(table::kFastCVBBoxes);
bool IDX_DEV_LA::_Log2CV = ReadTruth(table::kLog2CV);
bool IDX_DEV_LA::_Log2CVPerfo = ReadTruth(table::kLog2CVPerfo);
bool IDX_DEV_LA::_ForceOctreeWithThbOnly = ReadTruth(table::kForceOctreeWithThbOnly);
bool IDX_DEV_LA::_UseVLMSimplified = ReadTruth(table::kUseVLMSimplified);
bool IDX_DEV_LA::_DWHIndexing = ReadTruth(table::kDWHIndexing);
bool IDX_DEV_LA::_AdvancedMigration = ReadTruth(table::kAdvancedMigration);
bool IDX_DEV_LA::_IndexTextOnly = ReadTruth(table::kIndexTextOnly);
bool IDX_DEV_LA::_postProcRep = ReadTruth(table::kPostProcRep);
bool IDX_DEV_LA::_postProcAllObjects = ReadTruth(table::kEvalAllAtMaybe);
bool IDX_DEV_LA::_PersistantConfigCacheActive = ReadTruth(table::kConfigCacheActive);
KORUnicodeString IDX_DEV_LA::_PersistantConfigCacheDir = ReadText(table::kConfigCacheDir);
bool IDX_DEV_LA::_BuildRTree = ReadTruth(table::kBuildRTree);
bool IDX_DEV_LA::_DisableRTree = ReadTruth(table::kDisableRTree);
bool IDX_DEV_LA::_OldBBComputation = ReadTruth(table::kOldBBComputation);
bool IDX_DEV_LA::_CheckMemoryConsistency = ReadTruth(table::kCheckMemoryConsistency);
bool IDX_DEV_LA::_RecoverInstance = ReadTruth(table::kRecoverInstance);
int IDX_DEV_LA::_RecoverInstanceSeconds = ReadNumber(table::kRecoverInstanceSeconds);
bool IDX_DEV_LA::_KeepLocalTaskLog = ReadTruth(table::kKeepLocalTaskLog);
bool IDX_DEV_LA::_IndexPrivateReps = ReadTruth(table::kIndexPrivateReps);
bool IDX_DEV_LA::_ReadableTimeStampsForBBDMonitorFolders = ReadTruth(table::kReadableTimeStamps);
bool IDX_DEV_LA::IDXUseQuillonSecurityInsteadOfOCDX = ReadTruth(table::kUseQuillonSecurity);
bool IDX_DEV_LA::_UseDeleteLog = ReadTruth(table::kUseDeleteLog);
bool IDX_DEV_LA::_SimilarBSFFilter = ReadTruth(table::kSimilarBSFFilter);
bool IDX_DEV_LA::_newSecuEnabled = ReadTruth(table::kNewSecu);
std::uint32_t IDX_DEV_LA::_QueryTimerMilliSecond = ReadUnsigned(table::kQueryTimer);
std::uint32_t IDX_DEV_LA::_DerivedObjectComputationTimeLimitForBuilderLogsInMs =
    ReadUnsigned(table::kDerivedObjectTimeLimit);
std::uint32_t IDX_DEV_LA::_MaxMemorySizeForBuilderInMB = ReadUnsigned(table::kMaxMemoryForBuilder);
std::uint32_t IDX_DEV_LA::_MaxMemorySizeForAllBuildersInMB =
    ReadUnsigned(table::kMaxMemoryForAllBuilders);
int IDX_DEV_LA::_KeepGeneration1 = ReadNumber(table::kKeepGeneration1);
int IDX_DEV_LA::_KeepGeneration2 = ReadNumber(table::kKeepGeneration2);
int IDX_DEV_LA::_KeepGeneration = DeriveKeepGeneration(_KeepGeneration1, _KeepGeneration2);

bool IDX_DEV_LA::UseVLMSimplified() { return _UseVLMSimplified; }
bool IDX_DEV_LA::DWHIndexing() { return _DWHIndexing; }
bool IDX_DEV_LA::AdvancedMigration() { return _AdvancedMigration; }
bool IDX_DEV_LA::IsIndexTextOnly() { return _IndexTextOnly; }
bool IDX_DEV_LA::ForcePostProcRep() { return _postProcRep; }
bool IDX_DEV_LA::EvalAllAtMaybe() { return _postProcAllObjects; }
bool IDX_DEV_LA::IsPersistantConfigCacheActive() { return _PersistantConfigCacheActive; }
KORUnicodeString IDX_DEV_LA::GetPersistantConfigCacheDir() { return _PersistantConfigCacheDir; }
bool IDX_DEV_LA::IsRTreeBuildActive() { return _BuildRTree; }
bool IDX_DEV_LA::IsRTreeDisabledRT() { return _DisableRTree; }
bool IDX_DEV_LA::CheckMemoryConsistency() { return _CheckMemoryConsistency; }
bool IDX_DEV_LA::IsRecoverInstance() { return _RecoverInstance; }
int IDX_DEV_LA::RecoverInstanceSeconds() { return _RecoverInstanceSeconds; }
bool IDX_DEV_LA::KeepLocalTaskLog() { return _KeepLocalTaskLog; }
bool IDX_DEV_LA::IndexPrivateReps() { return _IndexPrivateReps; }
bool IDX_DEV_LA::ReadableTimeStampsForBBDMonitorFolders() {
  return _ReadableTimeStampsForBBDMonitorFolders;
}
bool IDX_DEV_LA::UseDeleteLog() { return _UseDeleteLog; }
bool IDX_DEV_LA::IsSimilarBSFFilter() { return _SimilarBSFFilter; }
bool IDX_DEV_LA::IsNewSecuEnabled() { return _newSecuEnabled; }
std::uint32_t IDX_DEV_LA::QueryTimerMilliSecond() { return _QueryTimerMilliSecond; }
std::uint32_t IDX_DEV_LA::DerivedObjectComputationTimeLimitForBuilderLogsInMs() {
  return _DerivedObjectComputationTimeLimitForBuilderLogsInMs;
}
std::uint32_t IDX_DEV_LA::MaxMemorySizeForBuilderInMB() { return _MaxMemorySizeForBuilderInMB; }
std::uint32_t IDX_DEV_LA::MaxMemorySizeForAllBuildersinMB() {
  return _MaxMemorySizeForAllBuildersInMB;
}
int IDX_DEV_LA::KeepGeneration() { return _KeepGeneration; }

bool IDX_DEV_LA::RunWithCVServlet() {
  const DevFlag& flag = table::kRunWithCVServlet;
  if (IsDefined(flag.secondVariable)) return false;
  const char* value = KORGetEnv(flag.variable);
  return value == nullptr || std::string_view(value) != "NO";
}

bool IDX_DEV_LA::dontKillOrpheanBuilders() { return ReadTruth(table::kDontKillOrpheanBuilders); }
const char* IDX_DEV_LA::getKORIndexStoragePath() { return ReadText(table::kIndexStoragePath); }
bool IDX_DEV_LA::isPlmIndexDisabled() { return ReadTruth(table::kPlmIndexDisabled); }
bool IDX_DEV_LA::isPlmIndexInProcess() { return ReadTruth(table::kPlmIndexInProcess); }
