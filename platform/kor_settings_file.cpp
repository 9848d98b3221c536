#include "platform/kor_settings_file.h"

#include "idxbase/kor_system.h"

namespace idxbase::detail {
namespace {

constexpr std::string_view kBlanks = " \t\r\f\v";

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(kBlanks);
  return text.substr(first, last - first + 1);
}

// Adds the setting of one line, if it holds one.
void ParseLine(std::string_view line, std::map<std::string, std::string>& settings) {
  line = Trim(line);
  if (line.empty() || line.front() == '#') return;
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return;
  const std::string_view key = Trim(line.substr(0, equals));
  if (key.empty()) return;
  settings[std::string(key)] = std::string(Trim(line.substr(equals + 1)));
}

// The variable's value, or null when it is undefined or empty.
const char* NonEmptyVariable(const char* name) {
  const char* value = KORGetEnv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

}  // namespace

std::map<std::string, std::string> ParseSettings(std::string_view text) {
  std::map<std::string, std::string> settings;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    ParseLine(text.substr(0, end), settings);
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return settings;
}

std::string SettingsDirectory() {
  if (const char* dir = NonEmptyVariable("IDXBASE_SETTINGS_DIR")) return dir;
  if (const char* config = NonEmptyVariable("XDG_CONFIG_HOME")) {
    return std::string(config) + "/idxbase";
  }
  if (const char* home = NonEmptyVariable("HOME")) return std::string(home) + "/.config/idxbase";
  return {};
}

}  // namespace idxbase::detail
