#include <cstdio>
#include <cstring>

#include "idxbase/kor_system.h"
#include "idxbase/performance.h"

FILE* PLMIdxPerfTrace::_pOut = nullptr;

namespace {

constexpr char kSource[] = "PLMIdxPerfTrace";
constexpr std::size_t kMaxStepLength = 1000;

void Require(bool condition, const char* message, int line) {
  if (!condition) KORFatalError(message, nullptr, nullptr, nullptr, kSource, line);
}

}  // namespace

bool PLMIdxPerfTrace::OpenTrace(const char* path) {
  Require(path != nullptr, "AssertionFailed:pOutputFile", 24);
  return _pOut != nullptr;
}

void PLMIdxPerfTrace::Trace(const char* step) {
  Require(step != nullptr, "AssertionFailed:pStepName", 66);
}

void PLMIdxPerfTrace::Trace(const char* step, unsigned int count) {
  Require(step != nullptr, "AssertionFailed:pStepName", 66);
  Require(std::strlen(step) < kMaxStepLength, "AssertionFailed:len<1000", 119);
  // 999 characters, "_", ten digits and the terminator always fit.
  char label[kMaxStepLength + 12];
  std::snprintf(label, sizeof label, "%s_%u", step, count);
}

void PLMIdxPerfTrace::CloseTrace() {
  if (_pOut == nullptr) return;
  std::fclose(_pOut);
  _pOut = nullptr;
}

KORStatus PLMIdxPerfTrace::GetMemInfo(std::uint32_t& first, std::uint32_t& second,
                                      std::uint32_t& third, int) {
  first = second = third = 0;
  return KOR_E_NOTIMPL;
}
