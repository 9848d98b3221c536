#include "idxbase/kor_threads.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <system_error>

namespace {

// m_Status keeps the Status value in its low bits and, beside it, a mark
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
    : m_Name(name != nullptr ? name : ""), m_Argument(argument) {}

KORThreads::KORThreads(const KORThreads& other) {
  std::lock_guard<std::mutex> lock(other.m_Mutex);
  m_Name = other.m_Name;
  m_Argument = other.m_Argument;
  m_Function = other.m_Function;
  m_FunctionArgument = other.m_FunctionArgument;
}

KORThreads& KORThreads::operator=(const KORThreads& other) {
  if (this != &other) {
    std::scoped_lock lock(m_Mutex, other.m_Mutex);
    m_Name = other.m_Name;
    m_Argument = other.m_Argument;
    m_Function = other.m_Function;
    m_FunctionArgument = other.m_FunctionArgument;
  }
  return *this;
}

KORThreads::~KORThreads() {
  End();
  if (!m_Thread.joinable()) return;
  // A thread object destroyed by its own body cannot wait for itself.
  if (m_Thread.get_id() == std::this_thread::get_id()) {
    m_Thread.detach();
  } else {
    m_Thread.join();
  }
}

int KORThreads::Run(void* argument) {
  if (GetStatus() == KORThreadRunning) return -1;
  JoinFinished();
  std::unique_lock<std::mutex> lock(m_Mutex);
  const int previousStatus = m_Status;
  const int previousReturnCode = m_ReturnCode;
  m_StopRequested = false;
  m_Status = KORThreadRunning;
  m_ReturnCode = 0;
  m_ThreadId = 0;
  try {
    // The new thread's first step takes the mutex, so it sees m_Thread
    // assigned before its body starts.
    m_Thread = std::thread(&KORThreads::RunBody, this, argument != nullptr ? argument : m_Argument);
  } catch (const std::system_error&) {
    m_Status = previousStatus;
    m_ReturnCode = previousReturnCode;
    return -1;
  }
  // Wait until the body has recorded its identifier, so that GetThreadId
  // answers as soon as Run has returned.
  m_StopChanged.wait(lock, [this] { return m_ThreadId != 0; });
  return 0;
}

// The function receives the body's argument, or, when that is null, the
// argument given to SetFunction with it.
int KORThreads::Begin(void* argument) {
  Function function = nullptr;
  void* functionArgument = nullptr;
  {
    std::lock_guard<std::mutex> lock(m_Mutex);
    function = m_Function;
    functionArgument = m_FunctionArgument;
  }
  if (function == nullptr) return 0;
  return function(argument != nullptr ? argument : functionArgument);
}

void KORThreads::SetFunction(Function function, void* argument) {
  std::lock_guard<std::mutex> lock(m_Mutex);
  m_Function = function;
  m_FunctionArgument = argument;
}

void KORThreads::SetFunction(Function function) {
  std::lock_guard<std::mutex> lock(m_Mutex);
  m_Function = function;
}

int KORThreads::Join() {
  {
    std::lock_guard<std::mutex> lock(m_Mutex);
    if (m_Thread.joinable() && m_Thread.get_id() == std::this_thread::get_id()) return -1;
  }
  if (m_Thread.joinable()) m_Thread.join();
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_ReturnCode;
}

void KORThreads::End() {
  {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_StopRequested = true;
  }
  m_StopChanged.notify_all();
}

int KORThreads::Kill(int exitCode) {
  bool calledByBody = false;
  {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_StopRequested = true;
    calledByBody = m_Thread.joinable() && m_Thread.get_id() == std::this_thread::get_id();
    if (calledByBody) {
      m_ReturnCode = exitCode;
      m_Status |= kKilledMark;
    }
  }
  m_StopChanged.notify_all();
  if (calledByBody) return 0;
  if (m_Thread.joinable()) m_Thread.join();
  std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Status != KORThreadIdle) m_ReturnCode = exitCode;
  return 0;
}

bool KORThreads::IsRunning() const { return GetStatus() == KORThreadRunning; }

int KORThreads::GetStatus() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Status & kStatusMask;
}

std::uint64_t KORThreads::GetThreadId() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_ThreadId;
}

int KORThreads::GetThreadReturnCode() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_ReturnCode;
}

void KORThreads::EmitTrace(const char* message) const {
  std::string name;
  {
    std::lock_guard<std::mutex> lock(m_Mutex);
    name = m_Name;
  }
  std::printf("[%s] %s\n", name.c_str(), message != nullptr ? message : "(null)");
  std::fflush(stdout);
}

bool KORThreads::KillRequested() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_StopRequested;
}

bool KORThreads::WaitForKill(unsigned int milliseconds) {
  std::unique_lock<std::mutex> lock(m_Mutex);
  return m_StopChanged.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                [this] { return m_StopRequested; });
}

void KORThreads::RunBody(void* argument) {
  {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_ThreadId = CurrentThreadId();
  }
  m_StopChanged.notify_all();
  const int result = Begin(argument);
  std::lock_guard<std::mutex> lock(m_Mutex);
  if ((m_Status & kKilledMark) == 0) m_ReturnCode = result;
  m_Status = KORThreadFinished;
}

void KORThreads::JoinFinished() {
  if (m_Thread.joinable()) m_Thread.join();
}
