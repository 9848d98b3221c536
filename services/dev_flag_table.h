// The development switches of IDX_DEV_LA, one row each: the name that
// `idxbase flags` shows, the environment variable, the rule by which it is
// read, the value when it is not defined, and where the value goes (a
// static member set at load, or the accessor that reads it at every call).
// The loader (dev_flags.cpp) iterates these rows, and the exported
// description of idxbase/dev_flags.h, which the idxbase tool prints,
// derives from them: adding a switch is adding a row (and its member).
#ifndef IDXBASE_SERVICES_DEV_FLAG_TABLE_H_
#define IDXBASE_SERVICES_DEV_FLAG_TABLE_H_

#include <cstddef>
#include <cstdint>

#include "idxbase/dev_flags.h"
#include "idxbase/settings.h"

// The rule and value types are the interface's (idxbase/dev_flags.h).
namespace idxbase::detail {

inline constexpr FlagRuleInfo kFlagRules[] = {
    {FlagRule::kSwitch, "switch", "FALSE, NO and 0 (exactly) give false, any other value true"},
    {FlagRule::kDefined, "defined", "true when the variable (or one of the two) is defined"},
    {FlagRule::kUndefined, "undefined", "true when the variable is not defined"},
    {FlagRule::kNumber, "number",
     "read like atoi (white space, sign, digits), wrapping modulo 2^32"},
    {FlagRule::kSeconds, "seconds", "a number of seconds, held in milliseconds"},
    {FlagRule::kText, "text", "the variable's text; (null) when not defined"},
    {FlagRule::kGeneration, "generation",
     "the first variable's number when 1 or more, else the second's"},
    {FlagRule::kNotNo, "not-NO", "false when the second variable is defined or the value is NO"},
};

constexpr const FlagRuleInfo& RuleInfo(FlagRule rule) {
  return kFlagRules[static_cast<std::size_t>(rule)];
}

constexpr FlagValue Truth(bool value) { return {FlagValue::Kind::kTruth, value ? 1 : 0, nullptr}; }
constexpr FlagValue Number(std::int64_t value) {
  return {FlagValue::Kind::kNumber, value, nullptr};
}
constexpr FlagValue Text(const char* value) { return {FlagValue::Kind::kText, 0, value}; }

// Where a switch's value lives: exactly one pointer is set. A member is
// written by the loader; an accessor reads its variable at every call.
struct FlagTarget {
  bool* truth = nullptr;
  int* number = nullptr;
  std::uint32_t* unsignedNumber = nullptr;
  KORUnicodeString* text = nullptr;
  bool (*truthAccessor)() = nullptr;
  const char* (*textAccessor)() = nullptr;
};

constexpr FlagTarget Member(bool* member) {
  FlagTarget target;
  target.truth = member;
  return target;
}
constexpr FlagTarget Member(int* member) {
  FlagTarget target;
  target.number = member;
  return target;
}
constexpr FlagTarget Member(std::uint32_t* member) {
  FlagTarget target;
  target.unsignedNumber = member;
  return target;
}
constexpr FlagTarget Member(KORUnicodeString* member) {
  FlagTarget target;
  target.text = member;
  return target;
}
constexpr FlagTarget PerCall(bool (*accessor)()) {
  FlagTarget target;
  target.truthAccessor = accessor;
  return target;
}
constexpr FlagTarget PerCall(const char* (*accessor)()) {
  FlagTarget target;
  target.textAccessor = accessor;
  return target;
}

struct DevFlag {
  // The member ("_FastCV") or, when the engine reads the switch through
  // an accessor, the accessor ("UseVLMSimplified()").
  const char* name;
  const char* variable;
  const char* secondVariable;  // consulted by kDefined, kGeneration and kNotNo, or null
  FlagRule rule;
  FlagValue fallback;  // the value when no variable is defined
  FlagTarget target;

  constexpr bool ReadAtEachCall() const {
    return target.truthAccessor != nullptr || target.textAccessor != nullptr;
  }
};

using F = IDX_DEV_LA;
constexpr FlagRule kSwitch = FlagRule::kSwitch;
constexpr FlagRule kDefined = FlagRule::kDefined;
constexpr FlagRule kUndefined = FlagRule::kUndefined;
constexpr FlagRule kNumber = FlagRule::kNumber;

// clang-format off
inline constexpr DevFlag kDevFlags[] = {
    // Read while the library loads.
    {"_FastCV", "IDXFastCV", nullptr, kSwitch, Truth(true), Member(&F::_FastCV)},
    {"_FastCVWrap", "IDXFastCVWrap", nullptr, kSwitch, Truth(true), Member(&F::_FastCVWrap)},
    {"_FastCVNames", "IDXFastCVNames", nullptr, kSwitch, Truth(true), Member(&F::_FastCVNames)},
    {"_FastCVRootIds", "IDXFastCVRootIds", nullptr, kSwitch, Truth(true),
     Member(&F::_FastCVRootIds)},
    {"_FastCVBBoxes", "IDXFastCVBBoxes", nullptr, kSwitch, Truth(true), Member(&F::_FastCVBBoxes)},
    {"_Log2CV", "IDXLog2CV", nullptr, kSwitch, Truth(false), Member(&F::_Log2CV)},
    {"_Log2CVPerfo", "IDXLog2CVPerfo", nullptr, kSwitch, Truth(false), Member(&F::_Log2CVPerfo)},
    {"_ForceOctreeWithThbOnly", "IDXForceOctreeWithThbOnly", nullptr, kSwitch, Truth(false),
     Member(&F::_ForceOctreeWithThbOnly)},
    {"_OldBBComputation", "IDXOldBBComputation", nullptr, kDefined, Truth(false),
     Member(&F::_OldBBComputation)},
    {"IDXUseQuillonSecurityInsteadOfOCDX", "IDXUseQuillonSecurityInsteadOfOCDX", nullptr,
     kDefined, Truth(false), Member(&F::IDXUseQuillonSecurityInsteadOfOCDX)},
    {"_KeepGeneration1", "IDXKeepPreviousGeneration", nullptr, kNumber, Number(-1),
     Member(&F::_KeepGeneration1)},
    {"_KeepGeneration2", "KeepPreviousGeneration", nullptr, kNumber, Number(-1),
     Member(&F::_KeepGeneration2)},
    {"UseVLMSimplified()", "IDX_DO_NOT_USE_SimplifiedVLM", nullptr, kUndefined, Truth(true),
     Member(&F::_UseVLMSimplified)},
    {"DWHIndexing()", "IDX_NO_INDEX_DWH", nullptr, kUndefined, Truth(true),
     Member(&F::_DWHIndexing)},
    {"AdvancedMigration()", "NO_ADVANCED_MIGRATION", nullptr, kUndefined, Truth(true),
     Member(&F::_AdvancedMigration)},
    {"IsIndexTextOnly()", "IDXDisableTextOnly", nullptr, kUndefined, Truth(true),
     Member(&F::_IndexTextOnly)},
    {"ForcePostProcRep()", "IDXDisableForcePostProcRep", nullptr, kUndefined, Truth(true),
     Member(&F::_postProcRep)},
    {"EvalAllAtMaybe()", "IDXEvalAllAtMaybe", nullptr, kDefined, Truth(false),
     Member(&F::_postProcAllObjects)},
    {"IsPersistantConfigCacheActive()", "IDXConfigCacheDir", nullptr, kDefined, Truth(false),
     Member(&F::_PersistantConfigCacheActive)},
    {"GetPersistantConfigCacheDir()", "IDXConfigCacheDir", nullptr, FlagRule::kText, Text(""),
     Member(&F::_PersistantConfigCacheDir)},
    {"IsRTreeBuildActive()", "IDXBuildRTree", nullptr, kDefined, Truth(false),
     Member(&F::_BuildRTree)},
    {"IsRTreeDisabledRT()", "IDXDisableRTree", nullptr, kDefined, Truth(false),
     Member(&F::_DisableRTree)},
    {"CheckMemoryConsistency()", "KORQuillonCheckMemoryConsistency", nullptr, kDefined,
     Truth(false), Member(&F::_CheckMemoryConsistency)},
    {"IsRecoverInstance()", "IDXRecoverInstance", nullptr, kDefined, Truth(false),
     Member(&F::_RecoverInstance)},
    {"RecoverInstanceSeconds()", "IDXRecoverInstanceSecondsNumber", nullptr, kNumber,
     Number(7200), Member(&F::_RecoverInstanceSeconds)},
    {"KeepLocalTaskLog()", "IDXKeepLocalTaskLog", nullptr, kDefined, Truth(false),
     Member(&F::_KeepLocalTaskLog)},
    {"IndexPrivateReps()", "IDXIndexPrivateReps", nullptr, kDefined, Truth(false),
     Member(&F::_IndexPrivateReps)},
    // The variable spells Timestamps with a lower-case s, unlike the member.
    {"ReadableTimeStampsForBBDMonitorFolders()", "ReadableTimestampsForBBDMonitorFolders",
     nullptr, kDefined, Truth(false), Member(&F::_ReadableTimeStampsForBBDMonitorFolders)},
    {"UseDeleteLog()", "IDXUseDeleteLog", nullptr, kDefined, Truth(false),
     Member(&F::_UseDeleteLog)},
    {"IsSimilarBSFFilter()", "IDXSimilarBSFFilter", nullptr, kDefined, Truth(false),
     Member(&F::_SimilarBSFFilter)},
    {"IsNewSecuEnabled()", "IDXNewSecu", nullptr, kDefined, Truth(false),
     Member(&F::_newSecuEnabled)},
    {"QueryTimerMilliSecond()", "IDXQueryMaxDuration", nullptr, FlagRule::kSeconds, Number(0),
     Member(&F::_QueryTimerMilliSecond)},
    {"DerivedObjectComputationTimeLimitForBuilderLogsInMs()",
     "IDX_DerivedObjectComputationTimeLimitForBuilderLogsInMs", nullptr, kNumber, Number(0),
     Member(&F::_DerivedObjectComputationTimeLimitForBuilderLogsInMs)},
    // The two memory sizes read the same variable with different defaults.
    {"MaxMemorySizeForBuilderInMB()", "IDX_MaxMemorySizeForBuilderInMB", nullptr, kNumber,
     Number(7000), Member(&F::_MaxMemorySizeForBuilderInMB)},
    {"MaxMemorySizeForAllBuildersinMB()", "IDX_MaxMemorySizeForBuilderInMB", nullptr, kNumber,
     Number(196000), Member(&F::_MaxMemorySizeForAllBuildersInMB)},
    {"KeepGeneration()", "IDXKeepPreviousGeneration", "KeepPreviousGeneration",
     FlagRule::kGeneration, Number(-1), Member(&F::_KeepGeneration)},
    // Read at every call.
    {"RunWithCVServlet()", "RUN_WITH_CVSERVLET", "IDXKeepPreviousGeneration", FlagRule::kNotNo,
     Truth(true), PerCall(&F::RunWithCVServlet)},
    {"dontKillOrpheanBuilders()", "QBR_PMX_TMP", "IDXDontKillOrpheanBuilders", kDefined,
     Truth(false), PerCall(&F::dontKillOrpheanBuilders)},
    {"getKORIndexStoragePath()", "KORIndexStoragePath", nullptr, FlagRule::kText, Text(nullptr),
     PerCall(&F::getKORIndexStoragePath)},
    {"isPlmIndexDisabled()", "PLM_INDEX_DISABLED", nullptr, kDefined, Truth(false),
     PerCall(&F::isPlmIndexDisabled)},
    {"isPlmIndexInProcess()", "PLM_INDEX_INPROCESS", nullptr, kDefined, Truth(false),
     PerCall(&F::isPlmIndexInProcess)},
};
// clang-format on

constexpr bool RulesInEnumOrder() {
  for (std::size_t i = 0; i < sizeof kFlagRules / sizeof kFlagRules[0]; ++i) {
    if (static_cast<std::size_t>(kFlagRules[i].rule) != i) return false;
  }
  return true;
}
static_assert(RulesInEnumOrder(), "kFlagRules is indexed by FlagRule");
static_assert(sizeof kFlagRules / sizeof kFlagRules[0] ==
                  static_cast<std::size_t>(FlagRule::kNotNo) + 1,
              "one rule row per FlagRule");

// The row of the switch that `accessor` reads at every call; the row count
// when no row names it.
template <typename Accessor>
constexpr std::size_t FlagIndexOf(Accessor accessor) {
  std::size_t index = 0;
  for (const DevFlag& flag : kDevFlags) {
    if (PerCall(accessor).truthAccessor == flag.target.truthAccessor &&
        PerCall(accessor).textAccessor == flag.target.textAccessor) {
      return index;
    }
    ++index;
  }
  return index;
}

// The value a switch has in this process.
inline FlagValue CurrentValue(const DevFlag& flag) {
  const FlagTarget& target = flag.target;
  if (target.truth != nullptr) return Truth(*target.truth);
  if (target.number != nullptr) return Number(*target.number);
  if (target.unsignedNumber != nullptr) return Number(*target.unsignedNumber);
  if (target.text != nullptr) return Text(target.text->ConvertToChar());
  if (target.truthAccessor != nullptr) return Truth(target.truthAccessor());
  return Text(target.textAccessor());
}

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_DEV_FLAG_TABLE_H_
