#include <gtest/gtest.h>

#include <cstdlib>

#include "idxbase/settings.h"
#include "support/temp_dir.h"

namespace {

// Runs in one test: the singleton, once created, lives for the process.
TEST(BaseSettings, AppearsOnceTheRepositoryIsReadableAndThenStays) {
  idxbase_test::TempDir dir;
  setenv("IDXBASE_SETTINGS_DIR", dir.path().c_str(), 1);

  EXPECT_EQ(nullptr, IDX_Base_Settings::GetIdxBaseSettings());
  EXPECT_EQ(nullptr, IDX_Base_Settings::GetIdxBaseSettings());

  idxbase_test::WriteFile(dir.Join("BBDEnvSettings.settings"), "IndexRoot = /srv/index\n");
  IDX_Base_Settings* settings = IDX_Base_Settings::GetIdxBaseSettings();
  ASSERT_NE(nullptr, settings);
  EXPECT_EQ(settings, IDX_Base_Settings::GetIdxBaseSettings());

  KORUnicodeString value;
  ASSERT_TRUE(settings->GetRepository()->GetValue("IndexRoot", value));
  EXPECT_STREQ("/srv/index", value.ConvertToChar());
  unsetenv("IDXBASE_SETTINGS_DIR");
}

}  // namespace
