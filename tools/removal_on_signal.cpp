#include "removal_on_signal.h"

#include <unistd.h>

#include <atomic>
#include <cstring>

namespace idxbase_tool {

// One registered file. The signal handler reads the slots without a lock:
// a path is complete before `ready` is set.
struct Slot {
  std::atomic<bool> taken{false};
  std::atomic<bool> ready{false};
  char path[4096];
};

namespace {

constexpr int kSignals[] = {SIGHUP, SIGINT, SIGTERM};
static_assert(sizeof kSignals / sizeof kSignals[0] == 3, "RemovalOnSignals saves three actions");
static_assert(std::atomic<bool>::is_always_lock_free, "the signal handler needs lock-free atomics");

Slot g_slots[64];

// Async-signal-safe: unlink and raise only. SA_RESETHAND has restored the
// default action, which the raised signal then takes.
void RemoveAndDie(int signal) {
  for (Slot& slot : g_slots) {
    if (slot.ready) unlink(slot.path);
  }
  raise(signal);
}

}  // namespace

RemovedOnSignal::RemovedOnSignal(const std::string& path) {
  if (path.empty() || path.size() >= sizeof(Slot::path)) return;
  for (Slot& slot : g_slots) {
    bool expected = false;
    if (slot.taken.compare_exchange_strong(expected, true)) {
      std::memcpy(slot.path, path.c_str(), path.size() + 1);
      slot.ready = true;
      slot_ = &slot;
      return;
    }
  }
}

RemovedOnSignal::~RemovedOnSignal() {
  if (slot_ == nullptr) return;
  slot_->ready = false;
  slot_->taken = false;
}

RemovalOnSignals::RemovalOnSignals() {
  struct sigaction action {};
  action.sa_handler = RemoveAndDie;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESETHAND;
  for (int i = 0; i < 3; ++i) sigaction(kSignals[i], &action, &saved_[i]);
}

RemovalOnSignals::~RemovalOnSignals() {
  for (int i = 0; i < 3; ++i) sigaction(kSignals[i], &saved_[i], nullptr);
}

}  // namespace idxbase_tool
