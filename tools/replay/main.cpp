// Connects the replay tool to its process: arguments, standard output, standard error.
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "tools/replay/command_line.hpp"
#include "tools/replay/interruption.hpp"

int main(int argc, char** argv) {
  // A reader that goes away is then an error of the write, which is reported.
  std::signal(SIGPIPE, SIG_IGN);
  com::velanto::connectivity::tools::catchInterruption();
  std::ios::sync_with_stdio(false);
  return com::velanto::connectivity::tools::runReplay(argc, argv, std::cout, std::cerr,
                                                      isatty(STDERR_FILENO) == 1);
}
