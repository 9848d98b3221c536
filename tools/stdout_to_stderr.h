// Standard output sent to standard error for a while: the library writes
// its messages about foreign lock files ("Found a lock, ...") to standard
// output, which in the tool belongs to the command run under a lock or to
// the tool's own answer.
#ifndef IDXBASE_TOOLS_STDOUT_TO_STDERR_H_
#define IDXBASE_TOOLS_STDOUT_TO_STDERR_H_

namespace idxbase_tool {

// While it lives, what is written to standard output (descriptor 1 and
// stdout) goes to standard error; the old standard output comes back when
// it goes. Where the descriptors cannot be duplicated, nothing is
// redirected. One per process at a time.
class StdoutToStderr {
 public:
  StdoutToStderr();
  ~StdoutToStderr() { Restore(); }
  StdoutToStderr(const StdoutToStderr&) = delete;
  StdoutToStderr& operator=(const StdoutToStderr&) = delete;

 private:
  void Restore();

  int saved_ = -1;  // the old standard output, or -1
};

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_STDOUT_TO_STDERR_H_
