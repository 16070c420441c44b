#include "tools/explain/silence.hpp"

#include <fcntl.h>
#include <unistd.h>

namespace com::velanto::connectivity::tools {

Silence::Silence() noexcept : standard_error_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere < 0) return;
  if (standard_error_ >= 0) dup2(nowhere, STDERR_FILENO);
  close(nowhere);
}

Silence::~Silence() {
  if (standard_error_ < 0) return;
  dup2(standard_error_, STDERR_FILENO);
  close(standard_error_);
}

} // namespace com::velanto::connectivity::tools
