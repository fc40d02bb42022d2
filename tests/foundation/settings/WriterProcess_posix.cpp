#include <sys/wait.h>
#include <unistd.h>

#include "foundation/settings/WriterProcess.h"

namespace quillmarch::addin {

WriterProcess::WriterProcess(const std::string& role) : process_(fork()) {
  if (process_ == 0) _exit(ActInRole(role) ? 0 : 1);
}

WriterProcess::~WriterProcess() {
  if (process_ > 0) waitpid(static_cast<pid_t>(process_), nullptr, 0);
}

bool WriterProcess::Runs() {
  if (process_ <= 0) return false;
  int status = 0;
  if (waitpid(static_cast<pid_t>(process_), &status, WNOHANG) == 0) return true;
  process_ = 0;
  succeeded_ = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  return false;
}

}  // namespace quillmarch::addin
