// Threads of the foundation layer.
#ifndef IDXBASE_KOR_THREADS_H_
#define IDXBASE_KOR_THREADS_H_

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "idxbase/export.h"

// A thread object: one body, run on its own thread by Run.
//
// The body is Begin, which by default calls the function given to
// SetFunction; a derived class overrides Begin to run its own loop.
// Stopping is cooperative: Kill and End only ask the body to stop, and a
// body that waits with WaitForKill (or polls KillRequested) between its
// steps ends promptly. No thread is ever cancelled in the middle of a step,
// so Kill returns once the step under way has finished.
//
// Owns its thread. The controlling operations (Run, Join, End, Kill,
// assignment, destruction) are for one controlling thread at a time; the
// body may call KillRequested, WaitForKill and End. The state queries are
// safe from any thread.
//
// Copies take the configuration (name, default argument, function) and
// start idle: a running thread is never shared or copied.
class IDXBASE_API KORThreads {
 public:
  using Function = int (*)(void*);

  // Values of GetStatus.
  enum Status : int {
    KORThreadIdle = 0,      // never started
    KORThreadRunning = 1,   // the body runs
    KORThreadFinished = 2,  // the body has returned
  };

  // `name` labels the thread in traces (null: unnamed); `argument` is the
  // body's argument when Run is given null. `priority`, `stackSize` and
  // `flags` are accepted for compatibility; the system's default
  // scheduling and stack size apply.
  explicit KORThreads(const char* name = nullptr, void* argument = nullptr, int priority = -1,
                      int stackSize = 0, int flags = 0);
  KORThreads(const KORThreads& other);
  // Takes the configuration of `other`; this object's own thread, running
  // or not, is left as it is.
  KORThreads& operator=(const KORThreads& other);
  // Stops and joins the thread if it still runs. A derived class whose body
  // uses the derived part must stop the thread in its own destructor, since
  // that part is gone by the time this one runs.
  virtual ~KORThreads();

  // Starts a thread that runs Begin(argument), or Begin with the argument
  // given at construction when `argument` is null. 0 when started; -1 when
  // a thread of this object is already running or none could be created.
  // A finished thread is joined first, so an object can run again.
  virtual int Run(void* argument);
  // The body. By default calls the function given to SetFunction with
  // `argument` and returns its result; 0 when there is no function.
  virtual int Begin(void* argument);
  virtual void SetFunction(Function function, void* argument);
  virtual void SetFunction(Function function);
  // Waits until the body has returned; gives the thread's return code.
  // Returns at once when no thread was started. -1 when called by the body.
  virtual int Join();
  // Asks the body to stop and returns at once.
  virtual void End();
  // Asks the body to stop and waits until it has returned; the thread's
  // return code becomes `exitCode`. Called by the body itself, it only
  // asks. Returns 0.
  virtual int Kill(int exitCode);
  virtual bool IsRunning() const;
  virtual int GetStatus() const;
  // The system's identifier of the thread; 0 before the first Run.
  virtual std::uint64_t GetThreadId() const;
  // The body's result, or the code given to Kill; 0 before the end.
  virtual int GetThreadReturnCode() const;
  // Writes "[<name>] <message>" and a line end to standard output.
  virtual void EmitTrace(const char* message) const;

 protected:
  // True once Kill or End has asked the body to stop.
  bool KillRequested() const;
  // Waits up to `milliseconds`, returning early when the body is asked to
  // stop. True when it has been asked to stop.
  bool WaitForKill(unsigned int milliseconds);

 private:
  void RunBody(void* argument);
  void JoinFinished();

  std::string m_Name;
  void* m_Argument = nullptr;
  Function m_Function = nullptr;
  void* m_FunctionArgument = nullptr;

  mutable std::mutex m_Mutex;
  std::condition_variable m_StopChanged;
  std::thread m_Thread;
  bool m_StopRequested = false;
  int m_Status = KORThreadIdle;
  int m_ReturnCode = 0;
  std::uint64_t m_ThreadId = 0;
};

#endif  // IDXBASE_KOR_THREADS_H_
