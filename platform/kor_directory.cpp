#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "idxbase/kor_system.h"

namespace {

bool EndsWithSeparator(const char* path) {
  const std::size_t length = std::strlen(path);
  return length > 0 && path[length - 1] == KOR_PATH_SEPARATOR;
}

bool IsDotOrDotDot(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

DIR* HandleOf(const KORDIR& dir) { return static_cast<DIR*>(dir.handle); }

// Reads the next entry that is neither "." nor "..". Null at the end of the
// listing with `error` 0, or on failure with `error` set.
const dirent* NextEntry(DIR* handle, int& error) {
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(handle);
    error = entry == nullptr ? errno : 0;
    if (entry == nullptr || !IsDotOrDotDot(entry->d_name)) return entry;
  }
}

}  // namespace

void KORMakePath(KORUnicodeString& path, const KORUnicodeString& name) {
  const char* text = path.ConvertToChar();
  if (*text != '\0' && !EndsWithSeparator(text)) {
    const char separator[] = {KOR_PATH_SEPARATOR, '\0'};
    path += separator;
  }
  path += name;
}

KORStatus _KORCreateDirectory(const KORUnicodeString& path) {
  return mkdir(path.ConvertToChar(), 0777) == 0 ? KOR_S_OK : KOR_E_FAIL;
}

KORStatus _KORDeleteFile(const KORUnicodeString& path) {
  return unlink(path.ConvertToChar()) == 0 ? KOR_S_OK : KOR_E_FAIL;
}

KORStatus KOROpenDirectory(const KORUnicodeString& path, KORDIR* dir) {
  // An open `dir` is refused rather than overwritten, which would leak its
  // listing.
  if (dir == nullptr || dir->handle != nullptr) return KOR_E_FAIL;
  DIR* handle = opendir(path.ConvertToChar());
  if (handle == nullptr) return KOR_E_FAIL;
  dir->handle = handle;
  dir->path = path;
  return KOR_S_OK;
}

KORStatus KORReadDirectory(KORDIR* dir, KORDirEnt* entry, int* end, int flags) {
  if (end != nullptr) *end = 1;
  if (dir == nullptr || dir->handle == nullptr || entry == nullptr || end == nullptr ||
      flags != 0) {
    return KOR_E_FAIL;
  }
  int error = 0;
  const dirent* next = NextEntry(HandleOf(*dir), error);
  if (next == nullptr) return error == 0 ? KOR_S_OK : KOR_E_FAIL;
  entry->name = next->d_name;
  entry->fullPath = dir->path;
  KORMakePath(entry->fullPath, entry->name);
  *end = 0;
  return KOR_S_OK;
}

KORStatus KORCloseDirectory(KORDIR* dir) {
  if (dir == nullptr || dir->handle == nullptr) return KOR_S_OK;
  // closedir is not retried: the stream is released whatever it reports.
  const int result = closedir(HandleOf(*dir));
  dir->handle = nullptr;
  dir->path = KORUnicodeString();
  return result == 0 ? KOR_S_OK : KOR_E_FAIL;
}
