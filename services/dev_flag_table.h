// The table of the development switches: for each one, the environment
// variable it reads, the rule by which it reads it, its value when the
// variable is not defined, and how to get its current value. The loader
// (dev_flags.cpp) reads the variables named here, and the idxbase tool
// lists the switches from here, so the two cannot disagree.
//
// Header-only constant data, so that a program linked against the shared
// library (which hides this internal header's names) can use it too.
#ifndef IDXBASE_SERVICES_DEV_FLAG_TABLE_H_
#define IDXBASE_SERVICES_DEV_FLAG_TABLE_H_

#include <cstdint>

#include "idxbase/settings.h"

namespace idxbase::detail {

// How a switch turns its variable into a value (IDX_DEV_LA describes the
// first four).
enum class FlagRule : unsigned char {
  kSwitch,      // the default when not defined; false for FALSE, NO, 0
  kDefined,     // true when the variable (or the second one) is defined
  kUndefined,   // true when the variable is not defined
  kNumber,      // the default when not defined; otherwise read like atoi
  kSeconds,     // a number of seconds, held in milliseconds (times 1000)
  kText,        // the variable's text
  kGeneration,  // the first variable's number when 1 or more, else the second's
  kNotNo,       // false when the second variable is defined or the value is "NO"
};

constexpr const char* RuleName(FlagRule rule) {
  switch (rule) {
    case FlagRule::kSwitch:
      return "switch";
    case FlagRule::kDefined:
      return "defined";
    case FlagRule::kUndefined:
      return "undefined";
    case FlagRule::kNumber:
      return "number";
    case FlagRule::kSeconds:
      return "seconds";
    case FlagRule::kText:
      return "text";
    case FlagRule::kGeneration:
      return "generation";
    case FlagRule::kNotNo:
      return "not-NO";
  }
  return "?";
}

// A switch value: a truth value, a number, or a text (null when the
// variable is not defined).
struct FlagValue {
  enum class Kind : unsigned char { kTruth, kNumber, kText };
  Kind kind;
  std::int64_t number;  // kTruth: 0 or 1; kNumber: the value
  const char* text;     // kText only
};

constexpr FlagValue Truth(bool value) { return {FlagValue::Kind::kTruth, value ? 1 : 0, nullptr}; }
constexpr FlagValue Number(std::int64_t value) {
  return {FlagValue::Kind::kNumber, value, nullptr};
}
constexpr FlagValue Text(const char* value) { return {FlagValue::Kind::kText, 0, value}; }

struct DevFlag {
  // The member ("_FastCV") or, for a switch read through an accessor, the
  // accessor ("UseVLMSimplified()").
  const char* name;
  const char* variable;
  const char* secondVariable;  // consulted by kDefined, kGeneration and kNotNo, or null
  FlagRule rule;
  bool readAtEachCall;  // read afresh by every call instead of at load
  FlagValue fallback;   // the value when no variable is defined
  FlagValue (*current)();
};

using F = IDX_DEV_LA;

// Read while the library loads.
inline constexpr DevFlag kFastCV{
    "_FastCV", "IDXFastCV", nullptr, FlagRule::kSwitch, false, Truth(true), [] {
      return Truth(F::_FastCV);
    }};
inline constexpr DevFlag kFastCVWrap{
    "_FastCVWrap", "IDXFastCVWrap", nullptr, FlagRule::kSwitch, false, Truth(true), [] {
      return Truth(F::_FastCVWrap);
    }};
inline constexpr DevFlag kFastCVNames{
    "_FastCVNames", "IDXFastCVNames", nullptr, FlagRule::kSwitch, false, Truth(true), [] {
      return Truth(F::_FastCVNames);
    }};
inline constexpr DevFlag kFastCVRootIds{
    "_FastCVRootIds", "IDXFastCVRootIds", nullptr, FlagRule::kSwitch, false, Truth(true), [] {
      return Truth(F::_FastCVRootIds);
    }};
inline constexpr DevFlag kFastCVBBoxes{
    "_FastCVBBoxes", "IDXFastCVBBoxes", nullptr, FlagRule::kSwitch, false, Truth(true), [] {
      return Truth(F::_FastCVBBoxes);
    }};
inline constexpr DevFlag kLog2CV{
    "_Log2CV", "IDXLog2CV", nullptr, FlagRule::kSwitch, false, Truth(false), [] {
      return Truth(F::_Log2CV);
    }};
inline constexpr DevFlag kLog2CVPerfo{
    "_Log2CVPerfo", "IDXLog2CVPerfo", nullptr, FlagRule::kSwitch, false, Truth(false), [] {
      return Truth(F::_Log2CVPerfo);
    }};
inline constexpr DevFlag kForceOctreeWithThbOnly{"_ForceOctreeWithThbOnly",
                                                 "IDXForceOctreeWithThbOnly",
                                                 nullptr,
                                                 FlagRule::kSwitch,
                                                 false,
                                                 Truth(false),
                                                 [] { return Truth(F::_ForceOctreeWithThbOnly); }};
inline constexpr DevFlag kOldBBComputation{"_OldBBComputation",
                                           "IDXOldBBComputation",
                                           nullptr,
                                           FlagRule::kDefined,
                                           false,
                                           Truth(false),
                                           [] { return Truth(F::_OldBBComputation); }};
inline constexpr DevFlag kUseQuillonSecurity{
    "IDXUseQuillonSecurityInsteadOfOCDX",
    "IDXUseQuillonSecurityInsteadOfOCDX",
    nullptr,
    FlagRule::kDefined,
    false,
    Truth(false),
    [] { return Truth(F::IDXUseQuillonSecurityInsteadOfOCDX); }};
inline constexpr DevFlag kKeepGeneration1{"_KeepGeneration1",
                                          "IDXKeepPreviousGeneration",
                                          nullptr,
                                          FlagRule::kNumber,
                                          false,
                                          Number(-1),
                                          [] { return Number(F::_KeepGeneration1); }};
inline constexpr DevFlag kKeepGeneration2{"_KeepGeneration2",
                                          "KeepPreviousGeneration",
                                          nullptr,
                                          FlagRule::kNumber,
                                          false,
                                          Number(-1),
                                          [] { return Number(F::_KeepGeneration2); }};
inline constexpr DevFlag kUseVLMSimplified{"UseVLMSimplified()",
                                           "IDX_DO_NOT_USE_SimplifiedVLM",
                                           nullptr,
                                           FlagRule::kUndefined,
                                           false,
                                           Truth(true),
                                           [] { return Truth(F::UseVLMSimplified()); }};
inline constexpr DevFlag kDWHIndexing{
    "DWHIndexing()", "IDX_NO_INDEX_DWH", nullptr, FlagRule::kUndefined, false, Truth(true), [] {
      return Truth(F::DWHIndexing());
    }};
inline constexpr DevFlag kAdvancedMigration{"AdvancedMigration()",
                                            "NO_ADVANCED_MIGRATION",
                                            nullptr,
                                            FlagRule::kUndefined,
                                            false,
                                            Truth(true),
                                            [] { return Truth(F::AdvancedMigration()); }};
inline constexpr DevFlag kIndexTextOnly{"IsIndexTextOnly()",
                                        "IDXDisableTextOnly",
                                        nullptr,
                                        FlagRule::kUndefined,
                                        false,
                                        Truth(true),
                                        [] { return Truth(F::IsIndexTextOnly()); }};
inline constexpr DevFlag kPostProcRep{"ForcePostProcRep()",
                                      "IDXDisableForcePostProcRep",
                                      nullptr,
                                      FlagRule::kUndefined,
                                      false,
                                      Truth(true),
                                      [] { return Truth(F::ForcePostProcRep()); }};
inline constexpr DevFlag kEvalAllAtMaybe{
    "EvalAllAtMaybe()", "IDXEvalAllAtMaybe", nullptr, FlagRule::kDefined, false, Truth(false), [] {
      return Truth(F::EvalAllAtMaybe());
    }};
inline constexpr DevFlag kConfigCacheActive{
    "IsPersistantConfigCacheActive()",
    "IDXConfigCacheDir",
    nullptr,
    FlagRule::kDefined,
    false,
    Truth(false),
    [] { return Truth(F::IsPersistantConfigCacheActive()); }};
inline constexpr DevFlag kConfigCacheDir{
    "GetPersistantConfigCacheDir()",
    "IDXConfigCacheDir",
    nullptr,
    FlagRule::kText,
    false,
    Text(""),
    [] { return Text(F::_PersistantConfigCacheDir.ConvertToChar()); }};
inline constexpr DevFlag kBuildRTree{
    "IsRTreeBuildActive()", "IDXBuildRTree", nullptr, FlagRule::kDefined, false, Truth(false), [] {
      return Truth(F::IsRTreeBuildActive());
    }};
inline constexpr DevFlag kDisableRTree{
    "IsRTreeDisabledRT()", "IDXDisableRTree", nullptr, FlagRule::kDefined, false, Truth(false), [] {
      return Truth(F::IsRTreeDisabledRT());
    }};
inline constexpr DevFlag kCheckMemoryConsistency{"CheckMemoryConsistency()",
                                                 "KORQuillonCheckMemoryConsistency",
                                                 nullptr,
                                                 FlagRule::kDefined,
                                                 false,
                                                 Truth(false),
                                                 [] { return Truth(F::CheckMemoryConsistency()); }};
inline constexpr DevFlag kRecoverInstance{"IsRecoverInstance()",
                                          "IDXRecoverInstance",
                                          nullptr,
                                          FlagRule::kDefined,
                                          false,
                                          Truth(false),
                                          [] { return Truth(F::IsRecoverInstance()); }};
inline constexpr DevFlag kRecoverInstanceSeconds{
    "RecoverInstanceSeconds()",
    "IDXRecoverInstanceSecondsNumber",
    nullptr,
    FlagRule::kNumber,
    false,
    Number(7200),
    [] { return Number(F::RecoverInstanceSeconds()); }};
inline constexpr DevFlag kKeepLocalTaskLog{"KeepLocalTaskLog()",
                                           "IDXKeepLocalTaskLog",
                                           nullptr,
                                           FlagRule::kDefined,
                                           false,
                                           Truth(false),
                                           [] { return Truth(F::KeepLocalTaskLog()); }};
inline constexpr DevFlag kIndexPrivateReps{"IndexPrivateReps()",
                                           "IDXIndexPrivateReps",
                                           nullptr,
                                           FlagRule::kDefined,
                                           false,
                                           Truth(false),
                                           [] { return Truth(F::IndexPrivateReps()); }};
inline constexpr DevFlag kReadableTimeStamps{
    "ReadableTimeStampsForBBDMonitorFolders()",
    "ReadableTimestampsForBBDMonitorFolders",
    nullptr,
    FlagRule::kDefined,
    false,
    Truth(false),
    [] { return Truth(F::ReadableTimeStampsForBBDMonitorFolders()); }};
inline constexpr DevFlag kUseDeleteLog{
    "UseDeleteLog()", "IDXUseDeleteLog", nullptr, FlagRule::kDefined, false, Truth(false), [] {
      return Truth(F::UseDeleteLog());
    }};
inline constexpr DevFlag kSimilarBSFFilter{"IsSimilarBSFFilter()",
                                           "IDXSimilarBSFFilter",
                                           nullptr,
                                           FlagRule::kDefined,
                                           false,
                                           Truth(false),
                                           [] { return Truth(F::IsSimilarBSFFilter()); }};
inline constexpr DevFlag kNewSecu{
    "IsNewSecuEnabled()", "IDXNewSecu", nullptr, FlagRule::kDefined, false, Truth(false), [] {
      return Truth(F::IsNewSecuEnabled());
    }};
inline constexpr DevFlag kQueryTimer{"QueryTimerMilliSecond()",
                                     "IDXQueryMaxDuration",
                                     nullptr,
                                     FlagRule::kSeconds,
                                     false,
                                     Number(0),
                                     [] { return Number(F::QueryTimerMilliSecond()); }};
inline constexpr DevFlag kDerivedObjectTimeLimit{
    "DerivedObjectComputationTimeLimitForBuilderLogsInMs()",
    "IDX_DerivedObjectComputationTimeLimitForBuilderLogsInMs",
    nullptr,
    FlagRule::kNumber,
    false,
    Number(0),
    [] { return Number(F::DerivedObjectComputationTimeLimitForBuilderLogsInMs()); }};
// The two memory sizes read the same variable with different defaults.
inline constexpr DevFlag kMaxMemoryForBuilder{
    "MaxMemorySizeForBuilderInMB()",
    "IDX_MaxMemorySizeForBuilderInMB",
    nullptr,
    FlagRule::kNumber,
    false,
    Number(7000),
    [] { return Number(F::MaxMemorySizeForBuilderInMB()); }};
inline constexpr DevFlag kMaxMemoryForAllBuilders{
    "MaxMemorySizeForAllBuildersinMB()",
    "IDX_MaxMemorySizeForBuilderInMB",
    nullptr,
    FlagRule::kNumber,
    false,
    Number(196000),
    [] { return Number(F::MaxMemorySizeForAllBuildersinMB()); }};
inline constexpr DevFlag kKeepGeneration{"KeepGeneration()",
                                         "IDXKeepPreviousGeneration",
                                         "KeepPreviousGeneration",
                                         FlagRule::kGeneration,
                                         false,
                                         Number(-1),
                                         [] { return Number(F::KeepGeneration()); }};

// Read at every call.
inline constexpr DevFlag kRunWithCVServlet{"RunWithCVServlet()",
                                           "RUN_WITH_CVSERVLET",
                                           "IDXKeepPreviousGeneration",
                                           FlagRule::kNotNo,
                                           true,
                                           Truth(true),
                                           [] { return Truth(F::RunWithCVServlet()); }};
inline constexpr DevFlag kDontKillOrpheanBuilders{
    "dontKillOrpheanBuilders()",
    "QBR_PMX_TMP",
    "IDXDontKillOrpheanBuilders",
    FlagRule::kDefined,
    true,
    Truth(false),
    [] { return Truth(F::dontKillOrpheanBuilders()); }};
inline constexpr DevFlag kIndexStoragePath{"getKORIndexStoragePath()",
                                           "KORIndexStoragePath",
                                           nullptr,
                                           FlagRule::kText,
                                           true,
                                           Text(nullptr),
                                           [] { return Text(F::getKORIndexStoragePath()); }};
inline constexpr DevFlag kPlmIndexDisabled{"isPlmIndexDisabled()",
                                           "PLM_INDEX_DISABLED",
                                           nullptr,
                                           FlagRule::kDefined,
                                           true,
                                           Truth(false),
                                           [] { return Truth(F::isPlmIndexDisabled()); }};
inline constexpr DevFlag kPlmIndexInProcess{"isPlmIndexInProcess()",
                                            "PLM_INDEX_INPROCESS",
                                            nullptr,
                                            FlagRule::kDefined,
                                            true,
                                            Truth(false),
                                            [] { return Truth(F::isPlmIndexInProcess()); }};

// Every switch, in the order in which they are listed.
inline constexpr const DevFlag* kDevFlags[] = {
    &kFastCV,
    &kFastCVWrap,
    &kFastCVNames,
    &kFastCVRootIds,
    &kFastCVBBoxes,
    &kLog2CV,
    &kLog2CVPerfo,
    &kForceOctreeWithThbOnly,
    &kOldBBComputation,
    &kUseQuillonSecurity,
    &kKeepGeneration1,
    &kKeepGeneration2,
    &kUseVLMSimplified,
    &kDWHIndexing,
    &kAdvancedMigration,
    &kIndexTextOnly,
    &kPostProcRep,
    &kEvalAllAtMaybe,
    &kConfigCacheActive,
    &kConfigCacheDir,
    &kBuildRTree,
    &kDisableRTree,
    &kCheckMemoryConsistency,
    &kRecoverInstance,
    &kRecoverInstanceSeconds,
    &kKeepLocalTaskLog,
    &kIndexPrivateReps,
    &kReadableTimeStamps,
    &kUseDeleteLog,
    &kSimilarBSFFilter,
    &kNewSecu,
    &kQueryTimer,
    &kDerivedObjectTimeLimit,
    &kMaxMemoryForBuilder,
    &kMaxMemoryForAllBuilders,
    &kKeepGeneration,
    &kRunWithCVServlet,
    &kDontKillOrpheanBuilders,
    &kIndexStoragePath,
    &kPlmIndexDisabled,
    &kPlmIndexInProcess,
};

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_DEV_FLAG_TABLE_H_
