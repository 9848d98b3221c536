#include "idxbase/kor_threads.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <system_error>

namespace {

// status_ keeps the Status value in its low bits and, beside it, a mark
// that the return code was set by Kill and must not be replaced by the
// body's result (Kill called by the body itself, before it returns).
constexpr int kStatusMask = 0x3;
constexpr int kKilledMark = 0x4;

// The kernel's identifier of the calling thread (what ps, top and gdb
// show), rather than the process-local pthread_t.
std::uint64_t CurrentThreadId() { return static_cast<std::uint64_t>(syscall(SYS_gettid)); }

}  // namespace

KORThreads::KORThreads(const char* name, void* argument, int /*priority*/, int /*stackSize*/,
                       int /*flags*/)
    : name_(name != nullptr ? name : ""), argument_(argument) {}

KORThreads::KORThreads(const KORThreads& other) {
  std::lock_guard<std::mutex> lock(other.mutex_);
  name_ = other.name_;
  argument_ = other.argument_;
  function_ = other.function_;
  functionArgument_ = other.functionArgument_;
}

KORThreads& KORThreads::operator=(const KORThreads& other) {
  if (this != &other) {
    std::scoped_lock lock(mutex_, other.mutex_);
    name_ = other.name_;
    argument_ = other.argument_;
    function_ = other.function_;
    functionArgument_ = other.functionArgument_;
  }
  return *this;
}

KORThreads::~KORThreads() {
  End();
  if (!thread_.joinable()) return;
  // A thread object destroyed by its own body cannot wait for itself.
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

int KORThreads::Run(void* argument) {
  if (GetStatus() == KORThreadRunning) return -1;
  JoinFinished();
  std::unique_lock<std::mutex> lock(mutex_);
  const int previousStatus = status_;
  const int previousReturnCode = returnCode_;
  stopRequested_ = false;
  status_ = KORThreadRunning;
  returnCode_ = 0;
  threadId_ = 0;
  try {
    // The new thread's first step takes the mutex, so it sees thread_
    // assigned before its body starts.
    thread_ = std::thread(&KORThreads::RunBody, this, argument != nullptr ? argument : argument_);
  } catch (const std::system_error&) {
    status_ = previousStatus;
    returnCode_ = previousReturnCode;
    return -1;
  }
  // Wait until the body has recorded its identifier, so that GetThreadId
  // answers as soon as Run has returned.
  stopChanged_.wait(lock, [this] { return threadId_ != 0; });
  return 0;
}

// The function receives the body's argument, or, when that is null, the
// argument given to SetFunction with it.
int KORThreads::Begin(void* argument) {
  Function function = nullptr;
  void* functionArgument = nullptr;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    function = function_;
    functionArgument = functionArgument_;
  }
  if (function == nullptr) return 0;
  return function(argument != nullptr ? argument : functionArgument);
}

void KORThreads::SetFunction(Function function, void* argument) {
  std::lock_guard<std::mutex> lock(mutex_);
  function_ = function;
  functionArgument_ = argument;
}

void KORThreads::SetFunction(Function function) {
  std::lock_guard<std::mutex> lock(mutex_);
  function_ = function;
}

int KORThreads::Join() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (thread_.joinable() && thread_.get_id() == std::this_thread::get_id()) return -1;
  }
  if (thread_.joinable()) thread_.join();
  std::lock_guard<std::mutex> lock(mutex_);
  return returnCode_;
}

void KORThreads::End() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stopRequested_ = true;
  }
  stopChanged_.notify_all();
}

int KORThreads::Kill(int exitCode) {
  bool calledByBody = false;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stopRequested_ = true;
    calledByBody = thread_.joinable() && thread_.get_id() == std::this_thread::get_id();
    if (calledByBody) {
      returnCode_ = exitCode;
      status_ |= kKilledMark;
    }
  }
  stopChanged_.notify_all();
  if (calledByBody) return 0;
  if (thread_.joinable()) thread_.join();
  std::lock_guard<std::mutex> lock(mutex_);
  if (status_ != KORThreadIdle) returnCode_ = exitCode;
  return 0;
}

bool KORThreads::IsRunning() const { return GetStatus() == KORThreadRunning; }

int KORThreads::GetStatus() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return status_ & kStatusMask;
}

std::uint64_t KORThreads::GetThreadId() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return threadId_;
}

int KORThreads::GetThreadReturnCode() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return returnCode_;
}

void KORThreads::EmitTrace(const char* message) const {
  std::string name;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    name = name_;
  }
  std::printf("[%s] %s\n", name.c_str(), message != nullptr ? message : "(null)");
  std::fflush(stdout);
}

bool KORThreads::KillRequested() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return stopRequested_;
}

bool KORThreads::WaitForKill(unsigned int milliseconds) {
  std::unique_lock<std::mutex> lock(mutex_);
  return stopChanged_.wait_for(lock, std::chrono::milliseconds(milliseconds),
                               [this] { return stopRequested_; });
}

void KORThreads::RunBody(void* argument) {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    threadId_ = CurrentThreadId();
  }
  stopChanged_.notify_all();
  const int result = Begin(argument);
  std::lock_guard<std::mutex> lock(mutex_);
  if ((status_ & kKilledMark) == 0) returnCode_ = result;
  status_ = KORThreadFinished;
}

void KORThreads::JoinFinished() {
  if (thread_.joinable()) thread_.join();
}
