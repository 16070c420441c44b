// Connects the plug-in checker to its process: arguments, standard output, standard error, colour.
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

#include "tools/check/command_line.hpp"
#include "tools/options/standard_streams.hpp"

int main(int argc, char** argv) {
  com::velanto::connectivity::tools::openClosedStreams();
  // A reader that closes its pipe does not end the checks.
  std::signal(SIGPIPE, SIG_IGN);
  const char* const no_colour = std::getenv("NO_COLOR"); // NOLINT(concurrency-mt-unsafe)
  const bool may_colour =
      isatty(STDOUT_FILENO) == 1 && (no_colour == nullptr || *no_colour == '\0');
  return com::velanto::connectivity::tools::check::runCheckPlugin(argc, argv, may_colour, std::cout,
                                                                  std::cerr);
}
