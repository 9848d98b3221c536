#include "idxbase/kor_settings.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "idxbase/kor_system.h"
#include "platform/kor_settings_file.h"
#include "scoped_env.h"
#include "support/temp_dir.h"

namespace {

using idxbase::detail::ParseSettings;
using idxbase::detail::SettingsDirectory;
using idxbase_test::ScopedEnv;
using idxbase_test::TempDir;
using idxbase_test::WriteFile;
using Settings = std::map<std::string, std::string>;

TEST(KORSettingsFile, ParsesTrimmedLinesAndLaterKeyWins) {
  const Settings expected = {
      {"key", "second"}, {"spaced key", "spaced value"}, {"url", "a=b=c"}, {"empty", ""}};
  EXPECT_EQ(expected, ParseSettings("key=first\n"
                                    "  spaced key \t=  spaced value  \r\n"
                                    "# comment=1\n"
                                    "   # indented=2\n"
                                    "\n"
                                    "no equals sign\n"
                                    " = no key\n"
                                    "url=a=b=c\n"
                                    "empty=\n"
                                    " key = second "));
}

TEST(KORSettingsFile, DirectoryComesFromTheFirstDefinedVariable) {
  ScopedEnv env;
  env.Set("IDXBASE_SETTINGS_DIR", "/settings");
  env.Set("XDG_CONFIG_HOME", "/xdg");
  env.Set("HOME", "/home/user");
  EXPECT_EQ("/settings", SettingsDirectory());
  env.Set("IDXBASE_SETTINGS_DIR", std::nullopt);
  EXPECT_EQ("/xdg/idxbase", SettingsDirectory());
  env.Set("XDG_CONFIG_HOME", "");
  EXPECT_EQ("/home/user/.config/idxbase", SettingsDirectory());
  env.Set("HOME", std::nullopt);
  EXPECT_EQ("", SettingsDirectory());
}

// A settings directory of its own for one test. Each test also uses
// repository names of its own: repositories live as long as the process.
struct SettingsDir {
  SettingsDir() { env.Set("IDXBASE_SETTINGS_DIR", dir.path()); }
  void Write(const std::string& name, const std::string& content) const {
    WriteFile(dir.Join(name + ".settings"), content);
  }
  TempDir dir;
  ScopedEnv env;
};

KORSettingRepository* Get(const char* name) {
  return KORSettingRepository::GetRepository(name, 0, KORSettingRepository::KORSettingReadOnly,
                                             nullptr);
}

TEST(KORSettingRepository, ReadsTheNamedFileOnceAndKeepsIt) {
  const SettingsDir settings;
  settings.Write("platform_test_found", "alpha = 1\nbeta=two words\n");
  KORSettingRepository* repository = Get("platform_test_found");
  ASSERT_NE(nullptr, repository);
  EXPECT_STREQ("platform_test_found", repository->GetName().ConvertToChar());
  EXPECT_EQ(2, repository->Size());
  KORUnicodeString value;
  EXPECT_TRUE(repository->GetValue("beta", value));
  EXPECT_STREQ("two words", value.ConvertToChar());
  EXPECT_FALSE(repository->GetValue("gamma", value));
  EXPECT_FALSE(repository->GetValue(nullptr, value));
  EXPECT_STREQ("two words", value.ConvertToChar());
  settings.Write("platform_test_found", "gamma=3\n");  // not read again
  EXPECT_EQ(repository, Get("platform_test_found"));
  EXPECT_EQ(2, repository->Size());
}

// Threads that ask for a repository at the same moment, before any has
// been read, all get the one repository, fully read.
TEST(KORSettingRepository, ConcurrentFirstCallsGiveOneRepository) {
  const SettingsDir settings;
  settings.Write("platform_test_concurrent", "alpha=1\nbeta=2\n");
  constexpr int kThreads = 4;
  std::atomic<int> ready{0};
  std::vector<KORSettingRepository*> found(kThreads, nullptr);
  std::vector<std::string> beta(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      ++ready;
      while (ready.load() < kThreads) std::this_thread::yield();
      found[t] = Get("platform_test_concurrent");
      KORUnicodeString value;
      if (found[t] != nullptr && found[t]->GetValue("beta", value)) beta[t] = value.ConvertToChar();
    });
  }
  for (std::thread& thread : threads) thread.join();
  ASSERT_NE(nullptr, found[0]);
  for (int t = 0; t < kThreads; ++t) {
    EXPECT_EQ(found[0], found[t]);
    EXPECT_EQ("2", beta[t]);
  }
  EXPECT_EQ(2, found[0]->Size());
}

// A missing file is tried again on later calls.
TEST(KORSettingRepository, RefusesInvalidNamesAndUnreadableFilesAndRetriesMissingOnes) {
  const SettingsDir settings;
  ASSERT_EQ(KOR_S_OK, _KORCreateDirectory(settings.dir.Join("sub").c_str()));
  settings.Write("sub/inner", "a=1\n");
  settings.Write("", "a=1\n");
  EXPECT_EQ(nullptr, Get(nullptr));
  EXPECT_EQ(nullptr, Get(""));
  EXPECT_EQ(nullptr, Get("sub/inner"));
  // A directory in the file's place opens but cannot be read.
  ASSERT_EQ(KOR_S_OK, _KORCreateDirectory(settings.dir.Join("platform_test_dir.settings").c_str()));
  EXPECT_EQ(nullptr, Get("platform_test_dir"));
  EXPECT_EQ(nullptr, Get("platform_test_late"));
  settings.Write("platform_test_late", "key=value\n");
  ASSERT_NE(nullptr, Get("platform_test_late"));
  EXPECT_EQ(1, Get("platform_test_late")->Size());
}

}  // namespace
