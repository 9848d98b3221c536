#include "support/child_process.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace idxbase_test {
namespace {

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
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
  std::vector<std::string> arguments = argv;
  std::vector<std::string> variables;
  for (const auto& [name, value] : env) variables.push_back(name + "=" + value);
  std::vector<char*> argPointers = PointersTo(arguments);
  std::vector<char*> envPointers = PointersTo(variables);

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
  pid_t pid = 0;
  int rc =
      posix_spawn(&pid, argPointers[0], &actions, nullptr, argPointers.data(), envPointers.data());
  posix_spawn_file_actions_destroy(&actions);
  close(pipeFds[1]);
  if (rc != 0) {
    close(pipeFds[0]);
    ADD_FAILURE() << "cannot start " << argv[0];
    return result;
  }
  result.output = ReadAll(pipeFds[0]);
  close(pipeFds[0]);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
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
