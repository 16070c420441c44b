#include "tools/check/runner.hpp"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "tools/check/shared_file.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

using clock_t = std::chrono::steady_clock;

[[noreturn]] void fail(const char* call) {
  throw std::system_error(errno, std::generic_category(), call);
}

void runBody(Trial& trial, const std::function<void(Trial&)>& body) noexcept {
  try {
    trial.part([&] { body(trial); });
  } catch (const skipped_t&) { // NOLINT(bugprone-empty-catch): the record is written
  }
  trial.finish();
}

// Without the exit handlers: they are the parent's, and a leak checker's report at the end of each
// child would name blocks that checks leave on purpose.
[[noreturn]] void runChild(const run_settings_t& settings, const SharedFile& records,
                           const SharedFile& printed, const std::function<void(Trial&)>& body) {
  prctl(PR_SET_PDEATHSIG, SIGKILL); // a check does not outlive an interrupted tool
  const rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  dup2(printed.descriptor(), STDOUT_FILENO);
  dup2(printed.descriptor(), STDERR_FILENO);
  Trial trial(settings.subject, settings.seed, records.descriptor(), printed.descriptor());
  runBody(trial, body);
  static_cast<void>(std::fflush(nullptr));
  _exit(0);
}

// False: the time was up first.
bool awaitEnd(pid_t child, std::chrono::milliseconds limit) {
  // By its number: C++ cannot link the declaration of glibc 2.36.
  const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
  if (descriptor < 0) fail("pidfd_open");
  const clock_t::time_point deadline = clock_t::now() + limit;
  pollfd ended{descriptor, POLLIN, 0};
  int result = 0;
  do {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - clock_t::now()).count();
    result = poll(&ended, 1, static_cast<int>(std::max<decltype(left)>(left, 0)));
  } while (result < 0 && errno == EINTR);
  close(descriptor);
  return result > 0;
}

} // namespace

verdict_t runInChild(const run_settings_t& settings, const std::function<void(Trial&)>& body) {
  const SharedFile records;
  const SharedFile printed;
  static_cast<void>(std::fflush(nullptr)); // or the child would print it again
  const pid_t child = fork();
  if (child < 0) fail("fork");
  if (child == 0) runChild(settings, records, printed, body);
  process_end_t end;
  end.stopped = !awaitEnd(child, settings.time_limit);
  if (end.stopped) kill(child, SIGKILL);
  while (waitpid(child, &end.status, 0) < 0 && errno == EINTR) {
  }
  end.records = readWhole(records.descriptor());
  end.printed = readWhole(printed.descriptor());
  return judge(end);
}

} // namespace com::velanto::connectivity::tools::check
