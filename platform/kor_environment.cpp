#include <cstdlib>

#include "idxbase/kor_system.h"

// The library's one reader of the environment: every other part asks here,
// so that the environment is consulted in a single, reviewable place.
const char* KORGetEnv(const char* name) {
  if (name == nullptr) return nullptr;
  return std::getenv(name);
}
