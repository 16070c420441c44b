#include "tools/check_plugin/command_line.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <charconv>
#include <cmath>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/check_plugin/check_plugin.hpp"
#include "tools/check_plugin/report.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr const char* EXAMPLES_OF_USE =
    "Examples:\n"
    "  ostrovia-check-plugin libOstroviaNotifications2Codec.so\n"
    "  ostrovia-check-plugin --list\n"
    "  ostrovia-check-plugin --only 'memory.*' --only 'ownership.*' "
    "libOstroviaNotifications2Codec.so\n"
    "  ostrovia-check-plugin --skip 'loading.thousand*' --timeout 60 "
    "libOstroviaNotifications2Codec.so\n"
    "  ostrovia-check-plugin --json --seed 4711 libOstroviaNotifications2Codec.so > report.json\n"
    "\n"
    "Checks a build of the plug-in before it goes into production: loads it as a host does, each\n"
    "check in a process of its own, and says what does not hold.\n";

constexpr const char* EXIT_STATUSES =
    "Exit status: 0 all checks passed or were skipped for a reason; 1 some failed, crashed or\n"
    "hung; 2 wrong use, or a library that cannot be loaded.\n";

constexpr double MOST_SECONDS = 86400;

// What a command line asks for.
struct command_t {
  std::string path; // of the library
  std::vector<std::string> only;
  std::vector<std::string> skip;
  double timeout_seconds = 10;
  std::optional<std::uint64_t> seed;
  bool list = false;
  bool json = false;
};

// Nothing, or what is wrong with `text` as a time limit. The library's own check lets nan through.
std::string checkSeconds(const std::string& text) {
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, seconds);
  const bool number = result.ec == std::errc() && result.ptr == end;
  if (number && seconds >= 0.001 && seconds <= MOST_SECONDS) return "";
  return "'" + text + "' is not a number of seconds between 0.001 and 86400";
}

// Likewise as a seed; the library's own check lets -1 through, as a very large number.
std::string checkSeed(const std::string& text) {
  std::uint64_t seed = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, seed);
  if (result.ec == std::errc() && result.ptr == end) return "";
  return "'" + text + "' is not a whole number of 64 bits";
}

void addOptions(CLI::App& app, command_t& command) {
  app.add_option("LIBRARY", command.path, "The plug-in library to check")->type_name("");
  app.add_option("--only", command.only,
                 "Run the checks whose names match: * any text, ? a character; may be repeated")
      ->type_name("PATTERN")
      ->allow_extra_args(false);
  app.add_option("--skip", command.skip, "Leave these checks out; may be repeated")
      ->type_name("PATTERN")
      ->allow_extra_args(false);
  app.add_option("--timeout", command.timeout_seconds, "Time limit of a check")
      ->type_name("SECONDS")
      ->check(CLI::Validator(&checkSeconds, ""))
      ->capture_default_str();
  app.add_option("--seed", command.seed,
                 "Seed of the randomised checks, to repeat them; default: another each time")
      ->type_name("N")
      ->check(CLI::Validator(&checkSeed, ""));
  app.add_flag("--json", command.json, "Write one JSON document instead of lines");
  app.add_flag("--list", command.list, "List the checks, or those selected, and run none");
}

// Nothing: the arguments are done with, by help, version or a complaint; `status` tells which.
std::optional<command_t> parse(int count, const char* const* arguments, std::ostream& out,
                               std::ostream& diagnostics, int& status) {
  command_t command;
  CLI::App app(EXAMPLES_OF_USE, PROGRAM_NAME);
  app.footer(EXIT_STATUSES);
  app.set_version_flag("--version", std::string(PROGRAM_NAME) + " " + VLT_VERSION);
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string(PROGRAM_NAME) + ": " + error.what() + "\n";
  });
  addOptions(app, command);
  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    status = app.exit(error, out, diagnostics) == 0 ? STATUS_ALL_PASSED : STATUS_NOT_CHECKED;
    return std::nullopt;
  }
  if (!command.list && command.path.empty()) {
    throw std::runtime_error("which library? See --help");
  }
  return command;
}

surroundings_t surroundingsOf(const command_t& command) {
  const std::uint64_t seed = command.seed ? *command.seed : std::random_device()();
  const double milliseconds = std::ceil(command.timeout_seconds * 1000);
  return {command.path, seed, std::chrono::milliseconds(static_cast<std::int64_t>(milliseconds))};
}

int obey(const command_t& command, bool may_colour, std::ostream& out) {
  const std::vector<check_t> checks = select(allChecks(), command.only, command.skip);
  if (command.list) {
    for (const check_t& check : checks) out << listLine(check) << '\n';
    return STATUS_ALL_PASSED;
  }
  const Format plain = may_colour ? Format::coloured : Format::text;
  return checkPlugin(surroundingsOf(command), checks, command.json ? Format::json : plain, out);
}

} // namespace

int runCheckPlugin(int count, const char* const* arguments, bool may_colour, std::ostream& out,
                   std::ostream& diagnostics) noexcept {
  try {
    int status = STATUS_ALL_PASSED;
    const std::optional<command_t> command = parse(count, arguments, out, diagnostics, status);
    if (command) status = obey(*command, may_colour, out);
    if (!out.flush()) throw std::runtime_error("cannot write to standard output");
    return status;
  } catch (const std::exception& error) {
    diagnostics << PROGRAM_NAME << ": " << error.what() << '\n';
    return STATUS_NOT_CHECKED;
  }
}

} // namespace com::velanto::connectivity::tools::check
