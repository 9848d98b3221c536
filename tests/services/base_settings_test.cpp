#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

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
  // Threads that ask at the same moment share the one singleton.
  constexpr int kThreads = 4;
  std::atomic<int> ready{0};
  std::vector<IDX_Base_Settings*> found(kThreads, nullptr);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      ++ready;
      while (ready.load() < kThreads) std::this_thread::yield();
      found[t] = IDX_Base_Settings::GetIdxBaseSettings();
    });
  }
  for (std::thread& thread : threads) thread.join();
  IDX_Base_Settings* settings = found[0];
  ASSERT_NE(nullptr, settings);
  for (IDX_Base_Settings* other : found) EXPECT_EQ(settings, other);
  EXPECT_EQ(settings, IDX_Base_Settings::GetIdxBaseSettings());

  KORUnicodeString value;
  ASSERT_TRUE(settings->GetRepository()->GetValue("IndexRoot", value));
  EXPECT_STREQ("/srv/index", value.ConvertToChar());
  unsetenv("IDXBASE_SETTINGS_DIR");
}

}  // namespace
