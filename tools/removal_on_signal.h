// Files that a run is writing and that must not outlive it: removed when a
// hang-up, interrupt or termination signal ends the process, so that an
// interrupted run leaves the directories as it found them.
#ifndef IDXBASE_TOOLS_REMOVAL_ON_SIGNAL_H_
#define IDXBASE_TOOLS_REMOVAL_ON_SIGNAL_H_

#include <signal.h>

#include <string>

namespace idxbase_tool {

// Registers a file for its lifetime. Any thread; up to 64 files at once
// (more are not registered). Not copyable.
class RemovedOnSignal {
 public:
  // "" registers nothing.
  explicit RemovedOnSignal(const std::string& path);
  ~RemovedOnSignal();
  RemovedOnSignal(const RemovedOnSignal&) = delete;
  RemovedOnSignal& operator=(const RemovedOnSignal&) = delete;

 private:
  struct Slot* slot_ = nullptr;
};

// While it lives, SIGHUP, SIGINT and SIGTERM remove the registered files
// and then end the process as they would have. Construct it on the main
// thread, before the threads that register files. Not copyable.
class RemovalOnSignals {
 public:
  RemovalOnSignals();
  ~RemovalOnSignals();
  RemovalOnSignals(const RemovalOnSignals&) = delete;
  RemovalOnSignals& operator=(const RemovalOnSignals&) = delete;

 private:
  struct sigaction saved_[3];
};

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_REMOVAL_ON_SIGNAL_H_
