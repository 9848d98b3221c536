#include "child_command.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "command_line.h"

extern char** environ;

namespace idxbase_tool {
namespace {

constexpr int kForwardedSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

volatile sig_atomic_t g_child = 0;

void ForwardToChild(int signal) {
  if (g_child > 0) kill(static_cast<pid_t>(g_child), signal);
}

// Installs the forwarding handlers for its lifetime.
class SignalForwarding {
 public:
  explicit SignalForwarding(pid_t child) {
    g_child = child;
    struct sigaction action {};
    action.sa_handler = ForwardToChild;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kCount; ++i) sigaction(kForwardedSignals[i], &action, &saved_[i]);
  }
  ~SignalForwarding() {
    for (std::size_t i = 0; i < kCount; ++i) sigaction(kForwardedSignals[i], &saved_[i], nullptr);
    g_child = 0;
  }
  SignalForwarding(const SignalForwarding&) = delete;
  SignalForwarding& operator=(const SignalForwarding&) = delete;

 private:
  static constexpr std::size_t kCount = sizeof kForwardedSignals / sizeof kForwardedSignals[0];
  struct sigaction saved_[kCount];
};

int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return kExitNegative;
  }
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return WEXITSTATUS(status);
}

}  // namespace

int RunAndWait(const char* tool, char** argv) {
  pid_t child = 0;
  const int error = posix_spawnp(&child, argv[0], nullptr, nullptr, argv, environ);
  if (error != 0) {
    ReportError(tool, "cannot run '%s': %s", argv[0], std::strerror(error));
    return error == ENOENT ? 127 : 126;
  }
  SignalForwarding forwarding(child);
  return WaitFor(child);
}

}  // namespace idxbase_tool
