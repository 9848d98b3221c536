#include <cstdio>

#include "commands.h"
#include "idxbase/idxbase.h"

namespace idxbase_tool {
namespace {

void Print(const char* name, bool value) { std::printf("%s=%s\n", name, value ? "true" : "false"); }
void Print(const char* name, int value) { std::printf("%s=%d\n", name, value); }
void Print(const char* name, std::uint32_t value) { std::printf("%s=%u\n", name, value); }
void Print(const char* name, const char* value) {
  std::printf("%s=%s\n", name, value != nullptr ? value : "(null)");
}

// Prints "name=value", the name being the expression without its "F::".
#define IDXBASE_PRINT_FLAG(expression) Print(&(#expression)[3], expression)

void PrintMembers() {
  using F = IDX_DEV_LA;
  IDXBASE_PRINT_FLAG(F::_FastCV);
  IDXBASE_PRINT_FLAG(F::_FastCVWrap);
  IDXBASE_PRINT_FLAG(F::_FastCVNames);
  IDXBASE_PRINT_FLAG(F::_FastCVRootIds);
  IDXBASE_PRINT_FLAG(F::_FastCVBBoxes);
  IDXBASE_PRINT_FLAG(F::_Log2CV);
  IDXBASE_PRINT_FLAG(F::_Log2CVPerfo);
  IDXBASE_PRINT_FLAG(F::_ForceOctreeWithThbOnly);
  IDXBASE_PRINT_FLAG(F::_OldBBComputation);
  IDXBASE_PRINT_FLAG(F::IDXUseQuillonSecurityInsteadOfOCDX);
  IDXBASE_PRINT_FLAG(F::_KeepGeneration1);
  IDXBASE_PRINT_FLAG(F::_KeepGeneration2);
}

void PrintLoadTimeAccessors() {
  using F = IDX_DEV_LA;
  IDXBASE_PRINT_FLAG(F::UseVLMSimplified());
  IDXBASE_PRINT_FLAG(F::DWHIndexing());
  IDXBASE_PRINT_FLAG(F::AdvancedMigration());
  IDXBASE_PRINT_FLAG(F::IsIndexTextOnly());
  IDXBASE_PRINT_FLAG(F::ForcePostProcRep());
  IDXBASE_PRINT_FLAG(F::EvalAllAtMaybe());
  IDXBASE_PRINT_FLAG(F::IsPersistantConfigCacheActive());
  IDXBASE_PRINT_FLAG(F::GetPersistantConfigCacheDir().ConvertToChar());
  IDXBASE_PRINT_FLAG(F::IsRTreeBuildActive());
  IDXBASE_PRINT_FLAG(F::IsRTreeDisabledRT());
  IDXBASE_PRINT_FLAG(F::CheckMemoryConsistency());
  IDXBASE_PRINT_FLAG(F::IsRecoverInstance());
  IDXBASE_PRINT_FLAG(F::RecoverInstanceSeconds());
  IDXBASE_PRINT_FLAG(F::KeepLocalTaskLog());
  IDXBASE_PRINT_FLAG(F::IndexPrivateReps());
  IDXBASE_PRINT_FLAG(F::ReadableTimeStampsForBBDMonitorFolders());
  IDXBASE_PRINT_FLAG(F::UseDeleteLog());
  IDXBASE_PRINT_FLAG(F::IsSimilarBSFFilter());
  IDXBASE_PRINT_FLAG(F::IsNewSecuEnabled());
  IDXBASE_PRINT_FLAG(F::QueryTimerMilliSecond());
  IDXBASE_PRINT_FLAG(F::DerivedObjectComputationTimeLimitForBuilderLogsInMs());
  IDXBASE_PRINT_FLAG(F::MaxMemorySizeForBuilderInMB());
  IDXBASE_PRINT_FLAG(F::MaxMemorySizeForAllBuildersinMB());
  IDXBASE_PRINT_FLAG(F::KeepGeneration());
}

void PrintCallTimeAccessors() {
  using F = IDX_DEV_LA;
  IDXBASE_PRINT_FLAG(F::RunWithCVServlet());
  IDXBASE_PRINT_FLAG(F::dontKillOrpheanBuilders());
  IDXBASE_PRINT_FLAG(F::getKORIndexStoragePath());
  IDXBASE_PRINT_FLAG(F::isPlmIndexDisabled());
  IDXBASE_PRINT_FLAG(F::isPlmIndexInProcess());
}

#undef IDXBASE_PRINT_FLAG

}  // namespace

int FlagsCommand(int argc, char**) {
  if (argc != 0) {
    std::fprintf(stderr, "idxbase flags: takes no arguments\n");
    return 2;
  }
  PrintMembers();
  PrintLoadTimeAccessors();
  PrintCallTimeAccessors();
  return 0;
}

}  // namespace idxbase_tool
