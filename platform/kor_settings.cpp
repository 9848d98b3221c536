#include "idxbase/kor_settings.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/kor_settings_file.h"

namespace {

// Repositories by name. They are created on first success and kept until
// the process ends, so the pointers handed out never dangle.
struct Registry {
  std::mutex mutex;
  std::map<std::string, std::unique_ptr<KORSettingRepository>> repositories;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

bool IsValidName(const char* name) {
  return name != nullptr && *name != '\0' && std::strchr(name, '/') == nullptr;
}

// The whole content of `path`, or nothing when it cannot be opened or
// read (a directory, for one, opens but cannot be read).
std::optional<std::string> ReadWholeFile(const std::string& path) {
  int fd = -1;
  do {
    fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return std::nullopt;
  std::string content;
  char buffer[4096];
  ssize_t count = 0;
  for (;;) {
    count = read(fd, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    content.append(buffer, static_cast<std::size_t>(count));
  }
  close(fd);
  if (count < 0) return std::nullopt;
  return content;
}

std::optional<std::string> ReadSettingsFile(const std::string& name) {
  const std::string directory = idxbase::detail::SettingsDirectory();
  if (directory.empty()) return std::nullopt;
  return ReadWholeFile(directory + "/" + name + ".settings");
}

}  // namespace

KORSettingRepository::KORSettingRepository(const char* name,
                                           std::map<std::string, std::string> values)
    : m_Name(name), m_Values(std::move(values)) {}

KORSettingRepository* KORSettingRepository::GetRepository(
    const char* name, int /*scope*/, int /*access*/, KORISysSettingController* /*controller*/) {
  if (!IsValidName(name)) return nullptr;
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  auto found = registry.repositories.find(name);
  if (found != registry.repositories.end()) return found->second.get();
  const std::optional<std::string> content = ReadSettingsFile(name);
  if (!content) return nullptr;
  std::unique_ptr<KORSettingRepository> repository(
      new KORSettingRepository(name, idxbase::detail::ParseSettings(*content)));
  KORSettingRepository* result = repository.get();
  registry.repositories.emplace(name, std::move(repository));
  return result;
}

bool KORSettingRepository::GetValue(const char* key, KORUnicodeString& value) const {
  if (key == nullptr) return false;
  const auto found = m_Values.find(key);
  if (found == m_Values.end()) return false;
  value = found->second.c_str();
  return true;
}
