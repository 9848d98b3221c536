#include "services/env_rules.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "idxbase/settings.h"

namespace {

using idxbase::detail::ParseInteger;

TEST(ParseInteger, ReadsLikeAtoiWithoutUndefinedBehaviour) {
  const struct {
    const char* text;
    std::int32_t expected;
  } cases[] = {
      {"0", 0},
      {"42", 42},
      {"  \t\n42", 42},
      {"+7", 7},
      {"-7", -7},
      {"12abc", 12},
      {"abc", 0},
      {"", 0},
      {"-", 0},
      {"+-3", 0},
      {"- 3", 0},
      {"2147483647", 2147483647},
      {"-2147483648", -2147483647 - 1},
      {"2147483648", -2147483647 - 1},
      {"4294967295", -1},
      {"4294967296", 0},
      {"99999999999999999999", 1661992959},
  };
  for (const auto& c : cases) EXPECT_EQ(c.expected, ParseInteger(c.text)) << '"' << c.text << '"';
}

// Variables of the call-time accessors changed after load are seen at the
// next call.
class CallTimeAccessors : public ::testing::Test {
 protected:
  void TearDown() override {
    for (const char* name : {"IDXKeepPreviousGeneration", "RUN_WITH_CVSERVLET", "QBR_PMX_TMP",
                             "KORIndexStoragePath", "PLM_INDEX_DISABLED"}) {
      unsetenv(name);
    }
  }
};

TEST_F(CallTimeAccessors, SeeChangesMadeAfterLoad) {
  unsetenv("IDXKeepPreviousGeneration");
  unsetenv("RUN_WITH_CVSERVLET");
  EXPECT_TRUE(IDX_DEV_LA::RunWithCVServlet());
  setenv("RUN_WITH_CVSERVLET", "NO", 1);
  EXPECT_FALSE(IDX_DEV_LA::RunWithCVServlet());
  unsetenv("RUN_WITH_CVSERVLET");
  setenv("IDXKeepPreviousGeneration", "3", 1);
  EXPECT_FALSE(IDX_DEV_LA::RunWithCVServlet());

  unsetenv("QBR_PMX_TMP");
  const bool before = IDX_DEV_LA::dontKillOrpheanBuilders();
  setenv("QBR_PMX_TMP", "", 1);
  EXPECT_TRUE(IDX_DEV_LA::dontKillOrpheanBuilders());
  unsetenv("QBR_PMX_TMP");
  EXPECT_EQ(before, IDX_DEV_LA::dontKillOrpheanBuilders());

  setenv("KORIndexStoragePath", "/srv/index", 1);
  ASSERT_NE(nullptr, IDX_DEV_LA::getKORIndexStoragePath());
  EXPECT_STREQ("/srv/index", IDX_DEV_LA::getKORIndexStoragePath());
  unsetenv("KORIndexStoragePath");
  EXPECT_EQ(nullptr, IDX_DEV_LA::getKORIndexStoragePath());

  unsetenv("PLM_INDEX_DISABLED");
  EXPECT_FALSE(IDX_DEV_LA::isPlmIndexDisabled());
  setenv("PLM_INDEX_DISABLED", "0", 1);
  EXPECT_TRUE(IDX_DEV_LA::isPlmIndexDisabled());
}

}  // namespace
