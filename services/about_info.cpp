#include "services/about_info.h"

#include <climits>
#include <cstdlib>

#include "idxbase/performance.h"

namespace idxbase::detail {
namespace {

constexpr int kLevelNumbers = 5;
constexpr char kLevelSeparators[kLevelNumbers - 1] = {'-', '-', '.', '.'};

// Reads the numbers of "%d-%d-%d.%d.%d" from `text`, stopping at the first
// one that is missing; values beyond the int range are clamped.
void ReadLevelNumbers(const char* text, int (&numbers)[kLevelNumbers]) {
  for (int i = 0; i < kLevelNumbers; ++i) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text) return;
    numbers[i] = static_cast<int>(value < INT_MIN ? INT_MIN : value > INT_MAX ? INT_MAX : value);
    text = end;
    if (i + 1 < kLevelNumbers && *text++ != kLevelSeparators[i]) return;
  }
}

KORUnicodeString Decimal(int value) {
  KORUnicodeString text;
  text.BuildFromNum(value, "%d");
  return text;
}

}  // namespace

void FillAboutInfo(const KORLevelInfo& level, KORListValKORUnicodeString& info) {
  const char* text = level.level != nullptr ? level.level : "";
  int numbers[kLevelNumbers] = {};
  ReadLevelNumbers(text, numbers);
  info.RemoveAll(KORCollec::ReleaseMemory);
  info.Append(Decimal(numbers[2]));
  info.Append(KORUnicodeString(text));
  for (int value : {level.version, level.release, level.servicePack, level.hotFix}) {
    info.Append(Decimal(value));
  }
}

}  // namespace idxbase::detail

void GetAboutInfo(KORListValKORUnicodeString& info) {
  KORLevelInfo level;
  KORGetMERLOLevelInfo(level);
  idxbase::detail::FillAboutInfo(level, info);
}
