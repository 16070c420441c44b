// A process of its own for a part of a test: one that is killed, or gets limits of its own.
#ifndef VLT_TESTS_RECORDING_CHILD_HPP
#define VLT_TESTS_RECORDING_CHILD_HPP

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <stdexcept>

namespace com::velanto::connectivity::test {

// Runs `body`, which returns an exit status below 100, in a child. An exception of it is status 100.
// No handlers of exit run.
template <class Body>
pid_t startChild(const Body& body) {
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child > 0) return child;
  int status = 100;
  try {
    status = body();
  } catch (const std::exception& e) {
    static_cast<void>(write(STDERR_FILENO, e.what(), std::char_traits<char>::length(e.what())));
  }
  _exit(status);
}

// Waits for the end of a child: its exit status, or minus the signal that ended it.
inline int endOf(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

template <class Body>
int inChild(const Body& body) {
  return endOf(startChild(body));
}

} // namespace com::velanto::connectivity::test

#endif
