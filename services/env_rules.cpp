#include "services/env_rules.h"

#include <cstring>

#include "idxbase/kor_system.h"

namespace idxbase::detail {
namespace {

bool IsCSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool IsFalseWord(const char* value) {
  return std::strcmp(value, "FALSE") == 0 || std::strcmp(value, "NO") == 0 ||
         std::strcmp(value, "0") == 0;
}

}  // namespace

bool IsDefined(const char* name) { return KORGetEnv(name) != nullptr; }

bool ReadSwitch(const char* name, bool fallback) {
  const char* value = KORGetEnv(name);
  return value == nullptr ? fallback : !IsFalseWord(value);
}

std::int32_t ReadNumber(const char* name, std::int32_t fallback) {
  const char* value = KORGetEnv(name);
  return value == nullptr ? fallback : ParseInteger(value);
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
