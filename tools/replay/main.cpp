// Connects the replay tool to its process: arguments, standard output, standard error.
#include <csignal>
#include <iostream>

#include "tools/replay/command_line.hpp"

int main(int argc, char** argv) {
  // A reader that goes away is then an error of the write, which is reported.
  std::signal(SIGPIPE, SIG_IGN);
  std::ios::sync_with_stdio(false);
  return com::velanto::connectivity::tools::runReplay(argc, argv, std::cout, std::cerr);
}
