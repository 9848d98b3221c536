#include "child_command.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "command_line.h"
#include "idxbase/kor_file.h"
#include "idxbase/kor_system.h"

extern char** environ;

namespace idxbase_tool {
namespace {

constexpr int kForwardedSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};
constexpr std::size_t kSignalCount = sizeof kForwardedSignals / sizeof kForwardedSignals[0];
constexpr char kDefaultPath[] = "/usr/bin:/bin";

// The child to pass signals on to, and the last signal received. A signal
// may arrive on any thread, also before the child's id is known: the
// handler records it first and the parent, once it knows the child, looks
// at the record, so one of the two passes it on.
std::atomic<pid_t> g_child{0};
std::atomic<int> g_received{0};
static_assert(std::atomic<pid_t>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "the signal handler needs lock-free atomics");

void ForwardToChild(int signal) {
  g_received = signal;
  const pid_t child = g_child;
  if (child > 0) kill(child, signal);
}

sigset_t ForwardedSet() {
  sigset_t set;
  sigemptyset(&set);
  for (int signal : kForwardedSignals) sigaddset(&set, signal);
  return set;
}

// Installs the forwarding handlers for its lifetime.
class SignalForwarding {
 public:
  SignalForwarding() {
    struct sigaction action {};
    action.sa_handler = ForwardToChild;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSignalCount; ++i) {
      sigaction(kForwardedSignals[i], &action, &saved_[i]);
    }
  }
  ~SignalForwarding() {
    for (std::size_t i = 0; i < kSignalCount; ++i) {
      sigaction(kForwardedSignals[i], &saved_[i], nullptr);
    }
    g_child = 0;
  }
  SignalForwarding(const SignalForwarding&) = delete;
  SignalForwarding& operator=(const SignalForwarding&) = delete;

  // Sets the child, then passes on a signal that came before.
  void Forward(pid_t child) {
    g_child = child;
    if (const int signal = g_received.exchange(0); signal != 0) kill(child, signal);
  }

 private:
  struct sigaction saved_[kSignalCount];
};

// Where to look for `name`, as execvp would: the name itself when it holds
// a '/', else each directory of PATH ("" is the current directory). Built
// before fork, since the child may only make async-signal-safe calls.
std::vector<std::string> Candidates(const char* name) {
  if (std::strchr(name, '/') != nullptr) return {name};
  const char* path = KORGetEnv("PATH");
  std::string directories = path != nullptr ? path : kDefaultPath;
  std::vector<std::string> candidates;
  std::size_t start = 0;
  for (;;) {
    const std::size_t end = directories.find(':', start);
    const std::string directory = directories.substr(start, end - start);
    candidates.push_back((directory.empty() ? "." : directory) + "/" + name);
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return candidates;
}

// The child's side, between fork and exec. It dies with the process that
// started it: the kernel kills it when its parent ends, and a parent that
// ended before that was set is caught by its changed parent id. Reports
// the reason exec failed on `errorPipe`.
[[noreturn]] void BecomeCommand(char** argv, const std::vector<const char*>& candidates,
                                pid_t parent, int errorPipe, const sigset_t& oldMask) {
  struct sigaction defaultAction {};
  defaultAction.sa_handler = SIG_DFL;
  for (int signal : kForwardedSignals) sigaction(signal, &defaultAction, nullptr);
  sigprocmask(SIG_SETMASK, &oldMask, nullptr);
  if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent) _exit(kExitNegative);
  int error = ENOENT;
  for (const char* candidate : candidates) {
    execve(candidate, argv, environ);
    // As execvp: a candidate that is missing or not allowed does not stop
    // the search; not allowed is reported if nothing else is found.
    if (errno == EACCES) {
      error = EACCES;
    } else if (errno != ENOENT && errno != ENOTDIR) {
      error = errno;
      break;
    }
  }
  static_cast<void>(idxbase::WriteAll(errorPipe, &error, sizeof error));
  _exit(127);
}

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
  const std::vector<std::string> candidates = Candidates(argv[0]);
  std::vector<const char*> candidatePointers;
  for (const std::string& candidate : candidates) candidatePointers.push_back(candidate.c_str());
  int errorPipe[2];
  if (pipe2(errorPipe, O_CLOEXEC) != 0) {
    ReportError(tool, "cannot run '%s': %s", argv[0], std::strerror(errno));
    return 126;
  }
  idxbase::Descriptor readEnd(errorPipe[0]);
  idxbase::Descriptor writeEnd(errorPipe[1]);

  // The forwarded signals wait, blocked, until the child's id is known.
  SignalForwarding forwarding;
  const sigset_t forwarded = ForwardedSet();
  sigset_t oldMask;
  sigprocmask(SIG_BLOCK, &forwarded, &oldMask);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) BecomeCommand(argv, candidatePointers, parent, writeEnd.get(), oldMask);
  const int forkError = errno;
  if (child > 0) forwarding.Forward(child);
  sigprocmask(SIG_SETMASK, &oldMask, nullptr);
  if (child < 0) {
    ReportError(tool, "cannot run '%s': %s", argv[0], std::strerror(forkError));
    return 126;
  }
  static_cast<void>(writeEnd.Close());
  int execError = 0;
  const long count = idxbase::ReadSome(readEnd.get(), &execError, sizeof execError);
  const int status = WaitFor(child);
  if (count != static_cast<long>(sizeof execError)) return status;
  ReportError(tool, "cannot run '%s': %s", argv[0], std::strerror(execError));
  return execError == ENOENT ? 127 : 126;
}

}  // namespace idxbase_tool
