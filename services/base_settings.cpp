#include <mutex>

#include "idxbase/settings.h"

const char* const IDX_Base_Settings::m_pBBDEnvSettings = "BBDEnvSettings";
IDX_Base_Settings* IDX_Base_Settings::m_pIdxBaseSettings = nullptr;

namespace {
std::mutex& SingletonMutex() {
  static std::mutex mutex;
  return mutex;
}
}  // namespace

IDX_Base_Settings::IDX_Base_Settings()
    : m_pRepository(KORSettingRepository::GetRepository(
          m_pBBDEnvSettings, 0, KORSettingRepository::KORSettingReadOnly, nullptr)) {}

IDX_Base_Settings* IDX_Base_Settings::GetIdxBaseSettings() {
  std::lock_guard<std::mutex> guard(SingletonMutex());
  if (m_pIdxBaseSettings == nullptr) m_pIdxBaseSettings = new IDX_Base_Settings();
  if (m_pIdxBaseSettings->m_pRepository == nullptr) {
    delete m_pIdxBaseSettings;
    m_pIdxBaseSettings = nullptr;
  }
  return m_pIdxBaseSettings;
}
