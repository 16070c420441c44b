// ostrovia-soak: the long life of a codec and two recorders, run by ./dev soak and, for seconds, by the tests.
//
//   ostrovia-soak SECONDS CODEC RECORDER FILE…   FILE: messages, good ones and bad ones
//
// Exit status 0, 1 when something is off, 2 when it is not called like that.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tests/soak/watch.hpp"

namespace com::velanto::connectivity::soak {
namespace {

void readInto(std::vector<Message>& messages, const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  JsonReader reader;
  for (std::string line; std::getline(file, line);) {
    try {
      messages.push_back(reader.parseMessage(line));
    } catch (const MalformedJson&) { // NOLINT(bugprone-empty-catch): no message, not sent
    }
  }
}

// Reading a value as the wrong kind writes a line to standard error, some hundred thousand here.
void silenceStandardError() {
  const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nothing < 0 || dup2(nothing, STDERR_FILENO) < 0) throw std::runtime_error("no /dev/null");
  close(nothing);
}

void run(seconds_t length, const std::string& codec, const std::string& recorder,
         const std::vector<std::string>& paths) {
  constexpr seconds_t MINUTE{60};
  constexpr seconds_t TEN_SECONDS{10};
  using tools::PluginLibrary;
  const PluginLibrary codecs(codec);
  const PluginLibrary recorders(recorder, PluginLibrary::Version::OURS,
                                PluginLibrary::RECORDER_CLASS_NAME);
  std::vector<Message> messages;
  for (const std::string& path : paths) readInto(messages, path);
  if (messages.empty()) throw std::runtime_error("there are no messages to send");
  Traffic traffic(codecs, recorders, std::move(messages));
  silenceStandardError();
  Watch(traffic, std::cout, isatty(STDOUT_FILENO) != 0 ? TEN_SECONDS : MINUTE).run(length);
}

} // namespace
} // namespace com::velanto::connectivity::soak

int main(int argc, char** argv) {
  using com::velanto::connectivity::soak::seconds_t;
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  char* end = nullptr;
  const double seconds = arguments.empty() ? -1 : std::strtod(arguments[0].c_str(), &end);
  if (arguments.size() < 4 || *end != '\0' || !(seconds >= 0)) {
    std::cout << "usage: ostrovia-soak SECONDS CODEC RECORDER FILE...\n";
    return 2;
  }
  try {
    com::velanto::connectivity::soak::run(seconds_t(seconds), arguments[1], arguments[2],
                                          {arguments.begin() + 3, arguments.end()});
    return 0;
  } catch (const std::exception& e) {
    std::cout << "soak: failed: " << e.what() << '\n'; // standard error leads nowhere
    return 1;
  }
}
