// The development switches, read while the library is loaded. The members
// are initialised in the order of their definitions below, so the derived
// _KeepGeneration comes after the two values it is made of.
#include <string_view>

#include "idxbase/kor_system.h"
#include "idxbase/settings.h"
#include "services/env_rules.h"

using idxbase::detail::IsDefined;
using idxbase::detail::ReadNumber;
using idxbase::detail::ReadSwitch;

namespace {

std::uint32_t ReadUnsigned(const char* name, std::uint32_t fallback) {
  return static_cast<std::uint32_t>(ReadNumber(name, static_cast<std::int32_t>(fallback)));
}

std::uint32_t ReadMilliseconds(const char* secondsName) {
  return ReadUnsigned(secondsName, 0) * 1000u;
}

int DeriveKeepGeneration(int first, int second) { return first > 0 ? first : second; }

}  // namespace

bool IDX_DEV_LA::_FastCV = ReadSwitch("IDXFastCV", true);
bool IDX_DEV_LA::_FastCVWrap = ReadSwitch("IDXFastCVWrap", true);
bool IDX_DEV_LA::_FastCVNames = ReadSwitch("IDXFastCVNames", true);
bool IDX_DEV_LA::_FastCVRootIds = ReadSwitch("IDXFastCVRootIds", true);
bool IDX_DEV_LA::_FastCVBBoxes = ReadSwitch("IDXFastCVBBoxes", true);
bool IDX_DEV_LA::_Log2CV = ReadSwitch("IDXLog2CV", false);
bool IDX_DEV_LA::_Log2CVPerfo = ReadSwitch("IDXLog2CVPerfo", false);
bool IDX_DEV_LA::_ForceOctreeWithThbOnly = ReadSwitch("IDXForceOctreeWithThbOnly", false);
bool IDX_DEV_LA::_UseVLMSimplified = !IsDefined("IDX_DO_NOT_USE_SimplifiedVLM");
bool IDX_DEV_LA::_DWHIndexing = !IsDefined("IDX_NO_INDEX_DWH");
bool IDX_DEV_LA::_AdvancedMigration = !IsDefined("NO_ADVANCED_MIGRATION");
bool IDX_DEV_LA::_IndexTextOnly = !IsDefined("IDXDisableTextOnly");
bool IDX_DEV_LA::_postProcRep = !IsDefined("IDXDisableForcePostProcRep");
bool IDX_DEV_LA::_postProcAllObjects = IsDefined("IDXEvalAllAtMaybe");
bool IDX_DEV_LA::_PersistantConfigCacheActive = IsDefined("IDXConfigCacheDir");
KORUnicodeString IDX_DEV_LA::_PersistantConfigCacheDir = KORGetEnv("IDXConfigCacheDir");
bool IDX_DEV_LA::_BuildRTree = IsDefined("IDXBuildRTree");
bool IDX_DEV_LA::_DisableRTree = IsDefined("IDXDisableRTree");
bool IDX_DEV_LA::_OldBBComputation = IsDefined("IDXOldBBComputation");
bool IDX_DEV_LA::_CheckMemoryConsistency = IsDefined("KORQuillonCheckMemoryConsistency");
bool IDX_DEV_LA::_RecoverInstance = IsDefined("IDXRecoverInstance");
int IDX_DEV_LA::_RecoverInstanceSeconds = ReadNumber("IDXRecoverInstanceSecondsNumber", 7200);
bool IDX_DEV_LA::_KeepLocalTaskLog = IsDefined("IDXKeepLocalTaskLog");
bool IDX_DEV_LA::_IndexPrivateReps = IsDefined("IDXIndexPrivateReps");
bool IDX_DEV_LA::_ReadableTimeStampsForBBDMonitorFolders =
    IsDefined("ReadableTimestampsForBBDMonitorFolders");
bool IDX_DEV_LA::IDXUseQuillonSecurityInsteadOfOCDX =
    IsDefined("IDXUseQuillonSecurityInsteadOfOCDX");
bool IDX_DEV_LA::_UseDeleteLog = IsDefined("IDXUseDeleteLog");
bool IDX_DEV_LA::_SimilarBSFFilter = IsDefined("IDXSimilarBSFFilter");
bool IDX_DEV_LA::_newSecuEnabled = IsDefined("IDXNewSecu");
std::uint32_t IDX_DEV_LA::_QueryTimerMilliSecond = ReadMilliseconds("IDXQueryMaxDuration");
std::uint32_t IDX_DEV_LA::_DerivedObjectComputationTimeLimitForBuilderLogsInMs =
    ReadUnsigned("IDX_DerivedObjectComputationTimeLimitForBuilderLogsInMs", 0);
std::uint32_t IDX_DEV_LA::_MaxMemorySizeForBuilderInMB =
    ReadUnsigned("IDX_MaxMemorySizeForBuilderInMB", 7000);
std::uint32_t IDX_DEV_LA::_MaxMemorySizeForAllBuildersInMB =
    ReadUnsigned("IDX_MaxMemorySizeForBuilderInMB", 196000);
int IDX_DEV_LA::_KeepGeneration1 = ReadNumber("IDXKeepPreviousGeneration", -1);
int IDX_DEV_LA::_KeepGeneration2 = ReadNumber("KeepPreviousGeneration", -1);
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
  if (IsDefined("IDXKeepPreviousGeneration")) return false;
  const char* value = KORGetEnv("RUN_WITH_CVSERVLET");
  return value == nullptr || std::string_view(value) != "NO";
}

bool IDX_DEV_LA::dontKillOrpheanBuilders() {
  return IsDefined("QBR_PMX_TMP") || IsDefined("IDXDontKillOrpheanBuilders");
}

const char* IDX_DEV_LA::getKORIndexStoragePath() { return KORGetEnv("KORIndexStoragePath"); }
bool IDX_DEV_LA::isPlmIndexDisabled() { return IsDefined("PLM_INDEX_DISABLED"); }
bool IDX_DEV_LA::isPlmIndexInProcess() { return IsDefined("PLM_INDEX_INPROCESS"); }
