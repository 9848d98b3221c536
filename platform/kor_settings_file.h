// Location and format of the settings files read by KORSettingRepository.
#ifndef IDXBASE_PLATFORM_KOR_SETTINGS_FILE_H_
#define IDXBASE_PLATFORM_KOR_SETTINGS_FILE_H_

#include <map>
#include <string>
#include <string_view>

namespace idxbase::detail {

// The settings of a file's text: one "key=value" per line, blanks around
// key and value trimmed; empty lines, lines whose first non-blank is '#',
// lines without '=' and lines with an empty key are skipped; a later line
// for a key replaces an earlier one.
std::map<std::string, std::string> ParseSettings(std::string_view text);

// The directory of the settings files: $IDXBASE_SETTINGS_DIR, else
// $XDG_CONFIG_HOME/idxbase, else $HOME/.config/idxbase. A variable that is
// empty counts as undefined. "" when none of them is defined.
std::string SettingsDirectory();

}  // namespace idxbase::detail

#endif  // IDXBASE_PLATFORM_KOR_SETTINGS_FILE_H_
