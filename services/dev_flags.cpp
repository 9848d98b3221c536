// The development switches: every row of the switch table is read by its
// rule, the load-time ones once while the library is loaded, the others at
// each call of their accessor.
#include "services/dev_flags.h"

#include <cstring>
#include <iterator>
#include <string_view>

#include "idxbase/dev_flags.h"
#include "idxbase/kor_system.h"
#include "idxbase/settings.h"

namespace idxbase::detail {
namespace {

bool IsCSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool IsFalseWord(std::string_view value) {
  return value == "FALSE" || value == "NO" || value == "0";
}

std::int32_t ReadNumber(const char* variable, const FlagValue& fallback, const EnvLookup& lookup) {
  const char* value = lookup(variable);
  return value == nullptr ? static_cast<std::int32_t>(fallback.number) : ParseInteger(value);
}

bool Defined(const char* variable, const EnvLookup& lookup) {
  return variable != nullptr && lookup(variable) != nullptr;
}

// Unsigned members take the 32-bit result as it stands.
void Store(const FlagTarget& target, const FlagValue& value) {
  if (target.truth != nullptr) *target.truth = value.number != 0;
  if (target.number != nullptr) *target.number = static_cast<int>(value.number);
  if (target.unsignedNumber != nullptr) {
    *target.unsignedNumber = static_cast<std::uint32_t>(value.number);
  }
  if (target.text != nullptr) *target.text = KORUnicodeString(value.text);
}

}  // namespace

FlagValue EvaluateFlag(const DevFlag& flag, const EnvLookup& lookup) {
  const char* value = lookup(flag.variable);
  switch (flag.rule) {
    case FlagRule::kSwitch:
      return value == nullptr ? flag.fallback : Truth(!IsFalseWord(value));
    case FlagRule::kDefined:
      return Truth(value != nullptr || Defined(flag.secondVariable, lookup));
    case FlagRule::kUndefined:
      return Truth(value == nullptr);
    case FlagRule::kNumber:
      return Number(ReadNumber(flag.variable, flag.fallback, lookup));
    case FlagRule::kSeconds: {
      // Milliseconds, the product wrapping modulo 2^32.
      const auto seconds =
          static_cast<std::uint32_t>(ReadNumber(flag.variable, flag.fallback, lookup));
      return Number(seconds * 1000u);
    }
    case FlagRule::kText:
      return value == nullptr ? flag.fallback : Text(value);
    case FlagRule::kGeneration: {
      // The first variable wins only from 1 upwards (a signed comparison).
      const std::int32_t first = ReadNumber(flag.variable, flag.fallback, lookup);
      return Number(first > 0 ? first : ReadNumber(flag.secondVariable, flag.fallback, lookup));
    }
    case FlagRule::kNotNo:
      if (Defined(flag.secondVariable, lookup)) return Truth(false);
      return Truth(value == nullptr || std::string_view(value) != "NO");
  }
  return flag.fallback;
}

void LoadDevFlags(const EnvLookup& lookup) {
  for (const DevFlag& flag : kDevFlags) {
    if (!flag.ReadAtEachCall()) Store(flag.target, EvaluateFlag(flag, lookup));
  }
}

std::int32_t ParseInteger(const char* text) {
  while (IsCSpace(*text)) ++text;
  const bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  std::uint32_t magnitude = 0;
  for (; *text >= '0' && *text <= '9'; ++text) {
    magnitude = magnitude * 10u + static_cast<std::uint32_t>(*text - '0');
  }
  if (negative) magnitude = 0u - magnitude;
  // Two's-complement reinterpretation, defined for every 32-bit pattern.
  std::int32_t result;
  std::memcpy(&result, &magnitude, sizeof result);
  return result;
}

}  // namespace idxbase::detail

namespace idxbase {

const FlagRuleInfo* DescribeFlagRules(std::size_t& count) {
  count = std::size(detail::kFlagRules);
  return detail::kFlagRules;
}

std::size_t DevFlagCount() { return std::size(detail::kDevFlags); }

DevFlagInfo DescribeDevFlag(std::size_t index) {
  const detail::DevFlag& flag = detail::kDevFlags[index];
  return {flag.name,
          flag.variable,
          flag.secondVariable,
          &detail::RuleInfo(flag.rule),
          flag.ReadAtEachCall(),
          flag.fallback,
          detail::CurrentValue(flag)};
}

}  // namespace idxbase

namespace {

using idxbase::detail::EvaluateFlag;

// The value of the switch that `accessor` reads at every call.
template <auto accessor>
idxbase::FlagValue ReadNow() {
  constexpr std::size_t kIndex = idxbase::detail::FlagIndexOf(accessor);
  static_assert(kIndex < std::size(idxbase::detail::kDevFlags), "an accessor without its row");
  return EvaluateFlag(idxbase::detail::kDevFlags[kIndex], KORGetEnv);
}

}  // namespace

// Written by the loader below, which comes after them so that they are
// constructed when it runs.
bool IDX_DEV_LA::_FastCV{};
bool IDX_DEV_LA::_FastCVWrap{};
bool IDX_DEV_LA::_FastCVNames{};
bool IDX_DEV_LA::_FastCVRootIds{};
bool IDX_DEV_LA::_FastCVBBoxes{};
bool IDX_DEV_LA::_Log2CV{};
bool IDX_DEV_LA::_Log2CVPerfo{};
bool IDX_DEV_LA::_ForceOctreeWithThbOnly{};
bool IDX_DEV_LA::_UseVLMSimplified{};
bool IDX_DEV_LA::_DWHIndexing{};
bool IDX_DEV_LA::_AdvancedMigration{};
bool IDX_DEV_LA::_IndexTextOnly{};
bool IDX_DEV_LA::_postProcRep{};
bool IDX_DEV_LA::_postProcAllObjects{};
bool IDX_DEV_LA::_PersistantConfigCacheActive{};
KORUnicodeString IDX_DEV_LA::_PersistantConfigCacheDir;
bool IDX_DEV_LA::_BuildRTree{};
bool IDX_DEV_LA::_DisableRTree{};
bool IDX_DEV_LA::_OldBBComputation{};
bool IDX_DEV_LA::_CheckMemoryConsistency{};
bool IDX_DEV_LA::_RecoverInstance{};
int IDX_DEV_LA::_RecoverInstanceSeconds{};
bool IDX_DEV_LA::_KeepLocalTaskLog{};
bool IDX_DEV_LA::_IndexPrivateReps{};
bool IDX_DEV_LA::_ReadableTimeStampsForBBDMonitorFolders{};
bool IDX_DEV_LA::IDXUseQuillonSecurityInsteadOfOCDX{};
bool IDX_DEV_LA::_UseDeleteLog{};
bool IDX_DEV_LA::_SimilarBSFFilter{};
bool IDX_DEV_LA::_newSecuEnabled{};
std::uint32_t IDX_DEV_LA::_QueryTimerMilliSecond{};
std::uint32_t IDX_DEV_LA::_DerivedObjectComputationTimeLimitForBuilderLogsInMs{};
std::uint32_t IDX_DEV_LA::_MaxMemorySizeForBuilderInMB{};
std::uint32_t IDX_DEV_LA::_MaxMemorySizeForAllBuildersInMB{};
int IDX_DEV_LA::_KeepGeneration1{};
int IDX_DEV_LA::_KeepGeneration2{};
int IDX_DEV_LA::_KeepGeneration{};

namespace {
[[maybe_unused]] const bool kDevFlagsLoaded = (idxbase::detail::LoadDevFlags(KORGetEnv), true);
}  // namespace

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

bool IDX_DEV_LA::RunWithCVServlet() { return ReadNow<&RunWithCVServlet>().number != 0; }
bool IDX_DEV_LA::dontKillOrpheanBuilders() {
  return ReadNow<&dontKillOrpheanBuilders>().number != 0;
}
const char* IDX_DEV_LA::getKORIndexStoragePath() { return ReadNow<&getKORIndexStoragePath>().text; }
bool IDX_DEV_LA::isPlmIndexDisabled() { return ReadNow<&isPlmIndexDisabled>().number != 0; }
bool IDX_DEV_LA::isPlmIndexInProcess() { return ReadNow<&isPlmIndexInProcess>().number != 0; }
