// The loader of the development switches, with the environment as a
// parameter so that its rules can be exercised in process.
#ifndef IDXBASE_SERVICES_DEV_FLAGS_H_
#define IDXBASE_SERVICES_DEV_FLAGS_H_

#include <cstdint>
#include <functional>

#include "services/dev_flag_table.h"

namespace idxbase::detail {

// The text of an environment variable, or null when it is not defined.
using EnvLookup = std::function<const char*(const char* name)>;

// The value of `flag` under `lookup`, by the flag's rule.
FlagValue EvaluateFlag(const DevFlag& flag, const EnvLookup& lookup);

// Sets every member of the switch table that is read at load from
// `lookup`. The library runs it once with KORGetEnv while it is loaded.
void LoadDevFlags(const EnvLookup& lookup);

// Reads `text` the way atoi does (leading white space, optional sign,
// decimal digits up to the first other character; 0 without digits),
// accumulating modulo 2^32 so that no text is undefined behaviour.
std::int32_t ParseInteger(const char* text);

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_DEV_FLAGS_H_
