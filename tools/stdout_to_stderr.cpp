#include "stdout_to_stderr.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "idxbase/kor_file.h"
#include "idxbase/kor_system.h"

namespace idxbase_tool {

StdoutToStderr::StdoutToStderr() {
  std::fflush(stdout);
  saved_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  if (saved_ >= 0 && KORDuplicateDescriptor(STDERR_FILENO, STDOUT_FILENO) < 0) Restore();
}

void StdoutToStderr::Restore() {
  if (saved_ < 0) return;
  std::fflush(stdout);
  KORDuplicateDescriptor(saved_, STDOUT_FILENO);
  static_cast<void>(idxbase::CloseDescriptor(saved_));
  saved_ = -1;
}

}  // namespace idxbase_tool
