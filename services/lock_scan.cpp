// BBDLock::IsLocked: the scan of a lock directory for living foreign locks.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "idxbase/kor_system.h"
#include "idxbase/lock.h"
#include "services/lock_files.h"

namespace {

using idxbase::detail::SequenceNumber;

// Longer than the heartbeat period, so a living sequence moves meanwhile.
constexpr unsigned int kLivenessWaitMilliseconds = 2000;
constexpr char kQuestion[] = "Found a lock, waiting to see if it corresponds to a dead process... ";
constexpr char kDead[] = "yes\n";
constexpr char kAlive[] = "no\n";

// The listing of a lock directory, closed when the scan ends.
class LockDirectoryScan {
 public:
  explicit LockDirectoryScan(const KORUnicodeString& path) : path_(path) {
    open_ = KOROpenDirectory(path_, &dir_) == KOR_S_OK;
  }
  ~LockDirectoryScan() { KORCloseDirectory(&dir_); }
  LockDirectoryScan(const LockDirectoryScan&) = delete;
  LockDirectoryScan& operator=(const LockDirectoryScan&) = delete;

  bool IsOpen() const { return open_; }
  // The next entry; false at the end of the listing or on a read error.
  bool Next(KORDirEnt& entry) {
    int end = 1;
    return KORReadDirectory(&dir_, &entry, &end, 0) == KOR_S_OK && end == 0;
  }
  // Starts the listing again from the beginning; false when it cannot be
  // reopened.
  bool Restart() {
    KORCloseDirectory(&dir_);
    open_ = KOROpenDirectory(path_, &dir_) == KOR_S_OK;
    return open_;
  }

 private:
  KORUnicodeString path_;
  KORDIR dir_{};
  bool open_ = false;
};

// Reads a decimal int at `text`, as %d does; false when there is none or
// it is out of range.
bool ReadInt(const char*& text, int& value) {
  char* end = nullptr;
  errno = 0;
  const long number = std::strtol(text, &end, 10);
  if (end == text || errno == ERANGE || number < INT_MIN || number > INT_MAX) return false;
  text = end;
  value = static_cast<int>(number);
  return true;
}

// Reads "lock.<owner>.<counter>"; false for any other name.
bool ParseLockName(const char* name, int& owner, int& counter) {
  const std::size_t prefixLength = sizeof idxbase::detail::kLockFilePrefix - 1;
  if (std::strncmp(name, idxbase::detail::kLockFilePrefix, prefixLength) != 0) return false;
  const char* text = name + prefixLength;
  if (!ReadInt(text, owner) || *text != '.') return false;
  ++text;
  return ReadInt(text, counter);
}

bool CanOpen(const char* path) {
  FILE* file = std::fopen(path, "rb");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

void Say(bool quiet, const char* text) {
  if (quiet) return;
  std::printf("%s", text);
  std::fflush(stdout);
}

}  // namespace

bool BBDLock::IsLocked(const KORUnicodeString& directory, int owner, bool quiet) {
  LockDirectoryScan scan(idxbase::detail::LockDirectoryOf(directory));
  if (!scan.IsOpen()) return false;
  KORDirEnt entry;
  while (scan.Next(entry)) {
    int other = 0;
    int counter = 0;
    if (!ParseLockName(entry.name.ConvertToChar(), other, counter) || other == owner) continue;
    Say(quiet, kQuestion);
    KORSleep(kLivenessWaitMilliseconds);
    KORSysTSUnicodeString next;
    GetFullPath(directory, other, SequenceNumber(counter, 1), next);
    bool moved = CanOpen(next.ConvertToChar());
    if (!moved) {
      GetFullPath(directory, other, SequenceNumber(counter, 2), next);
      moved = CanOpen(next.ConvertToChar());
    }
    // A living owner has created a successor and deleted this file.
    if (moved && !CanOpen(entry.fullPath.ConvertToChar())) {
      Say(quiet, kAlive);
      return true;
    }
    Say(quiet, kDead);
    static_cast<void>(_KORDeleteFile(entry.fullPath));
    if (!scan.Restart()) return false;
  }
  return false;
}
