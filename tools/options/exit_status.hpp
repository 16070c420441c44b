// The exit statuses of ostrovia-replay: the one table of them, also for --help. The larger a
// status, the less reliable the rest of a run, so the largest that applies wins.
#ifndef VLT_TOOLS_OPTIONS_EXIT_STATUS_HPP
#define VLT_TOOLS_OPTIONS_EXIT_STATUS_HPP

#include <array>
#include <stdexcept>
#include <string>

#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools {

enum exit_status_t : int {
  EXIT_FINE = 0,
  EXIT_DROPPED = 1,
  EXIT_USAGE = 2,
  EXIT_BAD_INPUT = 3,
  EXIT_PLUGIN = 4,
  EXIT_DIFFERENT = 5,
  EXIT_LAW = 6,
  EXIT_IO = 7,
  EXIT_INTERRUPTED = 130
};

inline constexpr std::array<status_row_t, 9> EXIT_STATUSES = {{
    {EXIT_FINE, "fine, also when messages were dropped"},
    {EXIT_DROPPED, "with --strict: messages were dropped"},
    {EXIT_USAGE, "the command line is wrong"},
    {EXIT_BAD_INPUT, "lines of the input are malformed"},
    {EXIT_PLUGIN, "the plug-in or its configuration is unusable, or a call failed"},
    {EXIT_DIFFERENT, "the run differs from the recorded one, the other build or the copy"},
    {EXIT_LAW, "the plug-in lost or made up messages, or leaked blocks of the host"},
    {EXIT_IO, "reading or writing failed"},
    {EXIT_INTERRUPTED, "ended by Ctrl-C, with the results so far"},
}};

// Ends a run; what() is one line without a full stop.
class ReplayError : public std::runtime_error {
 public:
  ReplayError(exit_status_t status, const std::string& text)
      : std::runtime_error(text), status_(status) {}
  [[nodiscard]] exit_status_t status() const noexcept { return status_; }

 private:
  exit_status_t status_;
};

// Calls `body` and gives its plain exceptions the status `status`.
template <class Body>
auto failingWith(exit_status_t status, const Body& body) {
  try {
    return body();
  } catch (const ReplayError&) {
    throw;
  } catch (const std::runtime_error& e) {
    throw ReplayError(status, e.what());
  }
}

} // namespace com::velanto::connectivity::tools

#endif
