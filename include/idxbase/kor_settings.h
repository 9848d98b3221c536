// The settings repository of the foundation layer.
#ifndef IDXBASE_KOR_SETTINGS_H_
#define IDXBASE_KOR_SETTINGS_H_

#include <map>
#include <string>

#include "idxbase/export.h"
#include "idxbase/kor_string.h"

// Controls access to a repository. Reserved: the repository consults no
// controller, since settings files carry no access rules; pass null.
class IDXBASE_API KORISysSettingController {
 public:
  virtual ~KORISysSettingController() = default;
};

// A named set of key=value settings, read from the file "<name>.settings"
// in the settings directory: $IDXBASE_SETTINGS_DIR when it is defined,
// else $XDG_CONFIG_HOME/idxbase, else $HOME/.config/idxbase.
//
// File format: one "key=value" per line; blanks around key and value are
// trimmed; empty lines, lines starting with '#' and lines without '=' are
// ignored; a later line for the same key replaces the earlier one.
//
// Repositories are owned by the platform and live until the process ends:
// callers never delete them. Reading a repository is safe from any thread.
class IDXBASE_API KORSettingRepository {
 public:
  // Access types of GetRepository.
  enum AccessType : int {
    KORSettingReadOnly = 1,
  };

  // The repository named `name`, read from its file at the first call that
  // finds the file readable; later calls give the same object. Null when
  // `name` is null or empty, contains '/', or the file cannot be read (a
  // later call tries again). `scope`, `access` and `controller` are
  // accepted for compatibility and do not change the result.
  static KORSettingRepository* GetRepository(const char* name, int scope, int access,
                                             KORISysSettingController* controller);

  // The repository's name, as given to GetRepository.
  const KORUnicodeString& GetName() const { return m_Name; }
  // Sets `value` to the setting `key` and returns true; returns false,
  // leaving `value` unchanged, when the repository has no such key.
  bool GetValue(const char* key, KORUnicodeString& value) const;
  // Number of settings held.
  int Size() const { return static_cast<int>(m_Values.size()); }

  KORSettingRepository(const KORSettingRepository&) = delete;
  KORSettingRepository& operator=(const KORSettingRepository&) = delete;

 private:
  KORSettingRepository(const char* name, std::map<std::string, std::string> values);

  KORUnicodeString m_Name;
  std::map<std::string, std::string> m_Values;
};

#endif  // IDXBASE_KOR_SETTINGS_H_
