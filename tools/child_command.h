// Runs a command in a child process and waits for it, the way a shell
// does, for commands that wrap another one (idxbase lock).
#ifndef IDXBASE_TOOLS_CHILD_COMMAND_H_
#define IDXBASE_TOOLS_CHILD_COMMAND_H_

namespace idxbase_tool {

// Runs `argv` (null-terminated; argv[0] is searched in PATH) with this
// process's environment and waits for it to end. The child never outlives
// this process: the kernel kills it (SIGKILL) when this process ends, even
// by SIGKILL. Interrupt, hang-up, quit and termination signals received
// meanwhile are passed on to the child, so that the caller outlives it and
// can clean up. Returns the child's exit status, 128 + the signal number
// when a signal ended it, and 127 (not found) or 126 (cannot be run) after
// reporting, as "idxbase <tool>: cannot run 'NAME': <reason>", a command
// that cannot be started. Call it from the main thread: the child's life is
// tied to the thread that starts it.
int RunAndWait(const char* tool, char** argv);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_CHILD_COMMAND_H_
