// The description of the development switches of IDX_DEV_LA
// (idxbase/settings.h): for each switch its environment variables, the
// rule by which they are read, its value when they are not defined, and
// its value in this process. The library's loader reads the switches from
// the same single table that these functions describe, so a listing
// (`idxbase flags`) cannot disagree with what the library does.
//
// These names live in namespace idxbase: they are our own additions to the
// interface, kept apart from the fixed global names of the families. Every
// function may be called from any thread.
#ifndef IDXBASE_DEV_FLAGS_H_
#define IDXBASE_DEV_FLAGS_H_

#include <cstddef>
#include <cstdint>

#include "idxbase/export.h"

namespace idxbase {

// How a switch turns its variable into a value.
enum class FlagRule : unsigned char {
  kSwitch,
  kDefined,
  kUndefined,
  kNumber,
  kSeconds,
  kText,
  kGeneration,
  kNotNo,
};

struct FlagRuleInfo {
  FlagRule rule;
  const char* name;     // "switch", "defined", ...
  const char* meaning;  // one line
};

// A switch value: a truth value, a number, or a text (null when the
// variable is not defined).
struct FlagValue {
  enum class Kind : unsigned char { kTruth, kNumber, kText };
  Kind kind;
  std::int64_t number;  // kTruth: 0 or 1; kNumber: the value
  const char* text;     // kText only
};

// One switch as `idxbase flags` lists it.
struct DevFlagInfo {
  // The member of IDX_DEV_LA ("_FastCV") or, when the engine reads the
  // switch through an accessor, the accessor ("UseVLMSimplified()").
  const char* name;
  const char* variable;
  const char* secondVariable;  // consulted by kDefined, kGeneration and kNotNo, or null
  const FlagRuleInfo* rule;    // never null: the rule, its name and meaning
  bool readAtEachCall;         // by its accessor at every call, not once at load
  FlagValue fallback;          // the value when no variable is defined
  // The value in this process: the member as the loader set it, or what
  // the accessor reads now. A text belongs to the member or to the
  // environment and stays valid until either changes.
  FlagValue current;
};

// The rules in enumerator order (element i describes FlagRule i), with
// their number in `count`. The array is static and never changes.
IDXBASE_API const FlagRuleInfo* DescribeFlagRules(std::size_t& count);

// The number of switches.
IDXBASE_API std::size_t DevFlagCount();
// The switch at `index`, in the table's order (those read at load first).
// The texts other than `current`'s are static.
// Requires: index < DevFlagCount().
IDXBASE_API DevFlagInfo DescribeDevFlag(std::size_t index);

}  // namespace idxbase

#endif  // IDXBASE_DEV_FLAGS_H_
