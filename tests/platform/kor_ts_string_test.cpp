#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

#include "idxbase/kor_string.h"

namespace {

TEST(KORSysTSUnicodeString, CopiesAndMovesAreIndependent) {
  KORSysTSUnicodeString original(KORUnicodeString("one\x80"));
  KORSysTSUnicodeString copy(original);
  copy += "two";
  EXPECT_STREQ("one\xEF\xBF\xBD", original.ConvertToChar());
  KORSysTSUnicodeString assigned;
  assigned = copy;
  copy = "changed";
  KORSysTSUnicodeString moved(std::move(assigned));
  EXPECT_TRUE(moved.ToUnicodeString() == KORUnicodeString("one\x80two"));
  EXPECT_STREQ("one\xEF\xBF\xBDtwochanged", (moved + copy).ConvertToChar());
}

// Each of these would deadlock if the object took its own mutex twice.
TEST(KORSysTSUnicodeString, OperationsWithItselfDoNotDeadlock) {
  KORSysTSUnicodeString text("ab");
  KORSysTSUnicodeString& alias = text;
  text = alias;
  text = std::move(alias);
  EXPECT_TRUE(text == alias);
  text += alias;
  text.Append(alias);
  EXPECT_STREQ("abababab", text.ConvertToChar());
  EXPECT_EQ(16, (text + alias).GetLengthInChar());
}

TEST(KORSysTSUnicodeString, ConcurrentAppendsAreAllKept) {
  KORSysTSUnicodeString shared;
  const KORSysTSUnicodeString piece("\xC3\xA9");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 500; ++i) shared += piece;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(4 * 500, shared.GetLengthInChar());
}

}  // namespace
