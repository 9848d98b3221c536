#include <gtest/gtest.h>

#include "idxbase/kor_system.h"
#include "scoped_env.h"

namespace {

TEST(KORGetEnv, DistinguishesUndefinedFromEmpty) {
  idxbase_test::ScopedEnv env;
  env.Set("IDXBASE_TEST_VARIABLE", std::nullopt);
  EXPECT_EQ(nullptr, KORGetEnv("IDXBASE_TEST_VARIABLE"));
  env.Set("IDXBASE_TEST_VARIABLE", "");
  ASSERT_NE(nullptr, KORGetEnv("IDXBASE_TEST_VARIABLE"));
  EXPECT_STREQ("", KORGetEnv("IDXBASE_TEST_VARIABLE"));
  env.Set("IDXBASE_TEST_VARIABLE", "a=b");
  EXPECT_STREQ("a=b", KORGetEnv("IDXBASE_TEST_VARIABLE"));
  EXPECT_EQ(nullptr, KORGetEnv(nullptr));
}

}  // namespace
