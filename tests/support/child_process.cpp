#include "support/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

extern char** environ;

namespace idxbase_test {
namespace {

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Starts `argv` with the file actions and variables given; -1 after a test
// failure.
pid_t Spawn(std::vector<std::string> argv, const posix_spawn_file_actions_t& actions,
            char* const* variables) {
  const std::vector<char*> pointers = PointersTo(argv);
  pid_t pid = -1;
  if (posix_spawn(&pid, pointers[0], &actions, nullptr, pointers.data(), variables) != 0) {
    ADD_FAILURE() << "cannot start " << argv[0];
    return -1;
  }
  return pid;
}

int WaitStatus(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

std::string ReadAll(int fd) {
  std::string output;
  char buffer[4096];
  for (;;) {
    ssize_t count = read(fd, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    output.append(buffer, static_cast<size_t>(count));
  }
  return output;
}

}  // namespace

ChildResult RunChild(const std::vector<std::string>& argv,
                     const std::map<std::string, std::string>& env) {
  ChildResult result;
  std::vector<std::string> variables;
  for (const auto& [name, value] : env) variables.push_back(name + "=" + value);
  int pipeFds[2];
  if (pipe(pipeFds) != 0) {
    ADD_FAILURE() << "pipe failed";
    return result;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDERR_FILENO);
  posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
  const pid_t pid = Spawn(argv, actions, PointersTo(variables).data());
  posix_spawn_file_actions_destroy(&actions);
  close(pipeFds[1]);
  if (pid >= 0) result.output = ReadAll(pipeFds[0]);
  close(pipeFds[0]);
  if (pid < 0) return result;
  const int status = WaitStatus(pid);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
}

RunningChild::RunningChild(const std::vector<std::string>& argv, const std::string& log,
                           int descriptor3) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  if (descriptor3 != -1) posix_spawn_file_actions_adddup2(&actions, descriptor3, 3);
  pid_ = Spawn(argv, actions, environ);
  posix_spawn_file_actions_destroy(&actions);
}

bool RunningChild::Kill() {
  if (pid_ < 0) return false;
  const bool running = kill(pid_, SIGKILL) == 0;
  return WIFSIGNALED(WaitStatus(std::exchange(pid_, -1))) && running;
}

int RunningChild::Wait() {
  if (pid_ < 0) return -1;
  const int status = WaitStatus(std::exchange(pid_, -1));
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string BuiltProgram(const std::string& relativePath) {
  const char* dir = std::getenv("IDXBASE_TEST_BINARY_DIR");
  if (dir == nullptr) {
    ADD_FAILURE() << "IDXBASE_TEST_BINARY_DIR is not set; run the tests with ctest";
    return relativePath;
  }
  return std::string(dir) + "/" + relativePath;
}

}  // namespace idxbase_test
