// The rules by which environment variables become switch values.
#ifndef IDXBASE_SERVICES_ENV_RULES_H_
#define IDXBASE_SERVICES_ENV_RULES_H_

#include <cstdint>

namespace idxbase::detail {

// True when `name` is defined, whatever its value.
bool IsDefined(const char* name);
// `fallback` when `name` is not defined; otherwise false exactly for
// "FALSE", "NO" and "0", true for any other value.
bool ReadSwitch(const char* name, bool fallback);
// `fallback` when `name` is not defined; otherwise ParseInteger(value).
std::int32_t ReadNumber(const char* name, std::int32_t fallback);
// Reads `text` the way atoi does (leading white space, optional sign,
// decimal digits up to the first other character; 0 without digits),
// accumulating modulo 2^32 so that no text is undefined behaviour.
std::int32_t ParseInteger(const char* text);

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_ENV_RULES_H_
