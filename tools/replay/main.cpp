// Connects the replay tool to its process: arguments, standard output, standard error.
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

#include "tools/host/standard_error_capture.hpp"
#include "tools/options/standard_streams.hpp"
#include "tools/replay/command_line.hpp"
#include "tools/replay/input/interruption.hpp"

int main(int argc, char** argv) {
  com::velanto::connectivity::tools::openClosedStreams();
  // Closing the reader is then an error of the write, which the tool reports.
  std::signal(SIGPIPE, SIG_IGN);
  com::velanto::connectivity::tools::catchInterruption();
  std::ios::sync_with_stdio(false);
  const bool shows_out = isatty(STDOUT_FILENO) == 1;
  const char* const no_colour = std::getenv("NO_COLOR"); // NOLINT(concurrency-mt-unsafe)
  // A status line would break into the output on the same terminal.
  const bool may_colour = no_colour == nullptr || *no_colour == '\0';
  using com::velanto::connectivity::tools::Screen;
  const Screen with_colours = may_colour ? Screen::COLOURED : Screen::PLAIN;
  const com::velanto::connectivity::tools::display_t display = {
      isatty(STDERR_FILENO) == 1 && !shows_out, shows_out ? with_colours : Screen::NONE,
      isatty(STDIN_FILENO) == 1};
  com::velanto::connectivity::tools::StandardErrorBuffer standard_error;
  std::ostream diagnostics(&standard_error);
  return com::velanto::connectivity::tools::runReplay(argc, argv, std::cout, diagnostics, display);
}
