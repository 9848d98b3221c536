#include "idxbase/kor_threads.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <thread>

#include "support/stdout_capture.h"

namespace {

using Clock = std::chrono::steady_clock;

int ReturnPointee(void* argument) { return *static_cast<int*>(argument); }

// A body that waits for a stop request in long steps, the way a service
// loop does, and returns 5 when asked to stop.
class Looper : public KORThreads {
 public:
  Looper() : KORThreads("looper") {}
  ~Looper() override { Kill(0); }
  int Begin(void* /*argument*/) override {
    while (!WaitForKill(10'000)) {
    }
    return 5;
  }
};

// A body that makes the controlling calls on itself.
class SelfKiller : public KORThreads {
 public:
  ~SelfKiller() override { Kill(0); }
  int Begin(void* /*argument*/) override {
    joinFromBody = Join();
    Kill(3);
    stopSeen = KillRequested() && WaitForKill(10'000);
    return 7;
  }
  int joinFromBody = 0;
  bool stopSeen = false;
};

TEST(KORThreads, RunAndJoinGiveTheBodyResult) {
  int value = 42;
  KORThreads thread("worker");
  thread.SetFunction(ReturnPointee);
  EXPECT_EQ(0, thread.Kill(4));  // nothing to stop: stays idle, no result
  EXPECT_EQ(KORThreads::KORThreadIdle, thread.GetStatus());
  EXPECT_EQ(0u, thread.GetThreadId());
  ASSERT_EQ(0, thread.Run(&value));
  EXPECT_NE(0u, thread.GetThreadId());
  EXPECT_EQ(42, thread.Join());
  EXPECT_EQ(42, thread.GetThreadReturnCode());
  EXPECT_EQ(KORThreads::KORThreadFinished, thread.GetStatus());
}

TEST(KORThreads, ArgumentFallsBackToConstructionThenFunctionArgument) {
  int constructed = 1;
  int forFunction = 2;
  KORThreads withDefault("a", &constructed);
  withDefault.SetFunction(ReturnPointee, &forFunction);
  ASSERT_EQ(0, withDefault.Run(nullptr));
  EXPECT_EQ(1, withDefault.Join());
  KORThreads withoutDefault("b");
  withoutDefault.SetFunction(ReturnPointee, &forFunction);
  ASSERT_EQ(0, withoutDefault.Run(nullptr));
  EXPECT_EQ(2, withoutDefault.Join());
}

TEST(KORThreads, KillStopsAWaitingBodyPromptly) {
  Looper looper;
  ASSERT_EQ(0, looper.Run(nullptr));
  EXPECT_EQ(-1, looper.Run(nullptr));                           // already running
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // let the body start waiting
  const auto start = Clock::now();
  EXPECT_EQ(0, looper.Kill(9));
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));  // the body waits 10 s a step
  EXPECT_EQ(KORThreads::KORThreadFinished, looper.GetStatus());
  EXPECT_EQ(9, looper.Join());
}

TEST(KORThreads, KillFromTheBodyOnlyAsks) {
  SelfKiller thread;
  ASSERT_EQ(0, thread.Run(nullptr));
  EXPECT_EQ(3, thread.Join());
  EXPECT_EQ(-1, thread.joinFromBody);
  EXPECT_TRUE(thread.stopSeen);
}

TEST(KORThreads, RunsAgainAfterFinishing) {
  Looper looper;
  ASSERT_EQ(0, looper.Run(nullptr));
  looper.Kill(1);
  const std::uint64_t firstId = looper.GetThreadId();
  ASSERT_EQ(0, looper.Run(nullptr));
  EXPECT_NE(firstId, looper.GetThreadId());
  // The earlier stop request is forgotten: the new body keeps waiting.
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(looper.IsRunning());
  EXPECT_EQ(0, looper.GetThreadReturnCode());
  looper.End();  // asks without replacing the body's result
  EXPECT_EQ(5, looper.Join());
}

TEST(KORThreads, CopyTakesConfigurationAndStartsIdle) {
  int value = 4;
  Looper running;
  running.SetFunction(ReturnPointee, &value);
  ASSERT_EQ(0, running.Run(nullptr));
  KORThreads copy(running);
  EXPECT_EQ(KORThreads::KORThreadIdle, copy.GetStatus());
  EXPECT_EQ(0u, copy.GetThreadId());
  ASSERT_EQ(0, copy.Run(nullptr));  // the base body calls the copied function
  EXPECT_EQ(4, copy.Join());
  KORThreads assigned("other");
  assigned = running;
  EXPECT_FALSE(assigned.IsRunning());
  idxbase_test::StdoutCapture capture;
  assigned.EmitTrace("copied");
  KORThreads().EmitTrace(nullptr);
  EXPECT_EQ("[looper] copied\n[] (null)\n", capture.Finish());
}

}  // namespace
