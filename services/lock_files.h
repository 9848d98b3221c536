// Names shared by the lock-file code: the lock directory and the numbering
// of an owner's file sequence.
#ifndef IDXBASE_SERVICES_LOCK_FILES_H_
#define IDXBASE_SERVICES_LOCK_FILES_H_

#include "idxbase/kor_string.h"

namespace idxbase::detail {

// Name of the lock subdirectory and prefix of every lock file name.
inline constexpr char kLockDirName[] = "lock";
inline constexpr char kLockFilePrefix[] = "lock.";

// `directory` joined with the lock subdirectory name by KORMakePath, the
// one join of the lock code: lock-file paths are joined under its result
// the same way.
KORUnicodeString LockDirectoryOf(const KORUnicodeString& directory);

// The number `step` places after `counter` in a sequence, wrapping around
// at the ends of int's range (a foreign file may carry any number).
inline int SequenceNumber(int counter, int step) {
  return static_cast<int>(static_cast<unsigned int>(counter) + static_cast<unsigned int>(step));
}

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_LOCK_FILES_H_
