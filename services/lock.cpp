#include "idxbase/lock.h"

#include <cstdio>

#include "idxbase/kor_system.h"
#include "services/lock_files.h"

namespace {

using idxbase::detail::SequenceNumber;

constexpr unsigned int kHeartbeatMilliseconds = 1500;

}  // namespace

namespace idxbase::detail {

KORUnicodeString LockDirectoryOf(const KORUnicodeString& directory) {
  KORUnicodeString lockDirectory = directory;
  KORMakePath(lockDirectory, kLockDirName);
  return lockDirectory;
}

}  // namespace idxbase::detail

BBDLock::BBDLock() : KORThreads(nullptr, nullptr, -1, 0, 0) {}

BBDLock::BBDLock(const BBDLock& other)
    : KORThreads(other),
      m_Owner(other.m_Owner),
      m_Directory(other.m_Directory),
      m_Counter(other.m_Counter.load()) {}

BBDLock& BBDLock::operator=(const BBDLock& other) {
  if (this == &other) return *this;
  if (IsRunning()) Unlock();
  KORThreads::operator=(other);
  m_Owner = other.m_Owner;
  m_Directory = other.m_Directory;
  m_Counter = other.m_Counter.load();
  return *this;
}

// Stops the heartbeat while the derived part, which its body uses, is
// still whole.
BBDLock::~BBDLock() { Unlock(); }

KORStatus BBDLock::Lock(const KORUnicodeString& directory, int owner) {
  // A lock this object holds on `directory` is a living lock like any
  // other, so it stays as it is.
  if (IsLocked(directory, -1, false)) return KOR_S_FALSE;
  if (IsRunning()) Unlock();
  // The directory may exist already: the result does not matter.
  static_cast<void>(_KORCreateDirectory(idxbase::detail::LockDirectoryOf(directory)));
  // The current directory is kept as ".", the same place, so that an empty
  // directory still tells Unlock that the object never locked.
  m_Directory = directory.GetLengthInChar() == 0 ? KORUnicodeString(".") : directory;
  m_Owner = owner;
  m_Counter = 0;
  if (WriteLFile(0) != KOR_S_OK) return KOR_E_FAIL;
  if (Run(nullptr) != 0) {
    DeleteSequenceFiles();
    return KOR_E_FAIL;
  }
  // Another owner may have passed the first check at the same time.
  if (IsLocked(directory, owner, false)) {
    Unlock();
    return KOR_S_FALSE;
  }
  return KOR_S_OK;
}

void BBDLock::Unlock() {
  Kill(0);
  if (m_Directory.GetLengthInChar() == 0) return;
  DeleteSequenceFiles();
}

int BBDLock::Begin(void* /*argument*/) {
  while (!WaitForKill(kHeartbeatMilliseconds)) {
    const int current = m_Counter.load();
    // The next file exists before the current one goes, so the sequence
    // always shows at least one file.
    static_cast<void>(WriteLFile(SequenceNumber(current, 1)));
    static_cast<void>(DeleteLFile(current));
    m_Counter = SequenceNumber(current, 1);
  }
  return 0;
}

KORStatus BBDLock::WriteLFile(int n) {
  KORSysTSUnicodeString path;
  GetFullPath(m_Directory, m_Owner, n, path);
  FILE* file = std::fopen(path.ConvertToChar(), "wb");
  if (file == nullptr) return KOR_E_FAIL;
  std::fclose(file);
  return KOR_S_OK;
}

KORStatus BBDLock::DeleteLFile(int n) {
  KORSysTSUnicodeString path;
  GetFullPath(m_Directory, m_Owner, n, path);
  return _KORDeleteFile(path.ToUnicodeString()) == KOR_S_OK ? KOR_S_OK : KOR_E_FAIL;
}

void BBDLock::GetFullPath(const KORSysTSUnicodeString& directory, int owner, int n,
                          KORSysTSUnicodeString& result) {
  KORUnicodeString name(idxbase::detail::kLockFilePrefix);
  KORUnicodeString number;
  number.BuildFromNum(owner, "%d");
  name.Append(number);
  name.Append(".");
  number.BuildFromNum(n, "%d");
  name.Append(number);
  // Joined like the lock directory itself, so that both name one place
  // for every spelling of `directory`.
  KORUnicodeString path = idxbase::detail::LockDirectoryOf(directory.ToUnicodeString());
  KORMakePath(path, name);
  result = path;
}

void BBDLock::DeleteSequenceFiles() {
  const int current = m_Counter.load();
  static_cast<void>(DeleteLFile(current));
  static_cast<void>(DeleteLFile(SequenceNumber(current, 1)));
  static_cast<void>(DeleteLFile(SequenceNumber(current, -1)));
}

int RealIsProcessAlive(unsigned int processId) { return KORSysIsProcessAlive(processId, 4); }
