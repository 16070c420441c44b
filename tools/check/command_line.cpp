#include "tools/check/command_line.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <charconv>
#include <cmath>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "tools/check/check_plugin.hpp"
#include "tools/check/report.hpp"
#include "tools/options/check_plugin_options.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr const char* INTRODUCTION =
    "Checks a build of the plug-in before it goes into production: loads it as a host does, each\n"
    "check in a process of its own, and says what does not hold.\n";

constexpr double MOST_SECONDS = 86400;

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

// Makes the command line's option for a row of the table.
class OptionMaker {
 public:
  OptionMaker(CLI::App& app, command_t& command, const option_row_t& row) noexcept
      : app_(app), command_(command), row_(row) {}

  void operator()(bool command_t::*target) const {
    app_.add_flag(row_.name, command_.*target, row_.help);
  }
  void operator()(std::vector<std::string> command_t::*target) const {
    add(command_.*target)->allow_extra_args(false);
  }
  void operator()(double command_t::*target) const {
    add(command_.*target)->check(CLI::Validator(&checkSeconds, ""));
  }
  void operator()(std::optional<std::uint64_t> command_t::*target) const {
    add(command_.*target)->check(CLI::Validator(&checkSeed, ""));
  }

 private:
  template <class Value>
  CLI::Option* add(Value& value) const {
    return app_.add_option(row_.name, value, row_.help)->type_name(row_.argument);
  }

  CLI::App& app_;
  command_t& command_;
  const option_row_t& row_;
};

void addOptions(CLI::App& app, command_t& command) {
  app.add_option("LIBRARY", command.path, "the plug-in library to check")->type_name("");
  for (const option_row_t& row : optionTable()) {
    std::visit(OptionMaker(app, command, row), row.target);
  }
}

std::string openingOfHelp() {
  std::string text = "Examples:\n";
  for (const example_row_t& row : exampleTable()) {
    text += std::string("  # ") + row.purpose + "\n  " + row.command + "\n";
  }
  return text + "\n" + INTRODUCTION;
}

std::string closingOfHelp() {
  std::string text = "Exit status:\n";
  for (const status_row_t& row : statusTable()) {
    text += "  " + std::to_string(row.status) + "  " + row.meaning + "\n";
  }
  return text;
}

// Nothing: the arguments are done with, by help, version or a complaint; `status` tells which.
std::optional<command_t> parse(int count, const char* const* arguments, std::ostream& out,
                               std::ostream& diagnostics, int& status) {
  command_t command;
  CLI::App app(openingOfHelp(), PROGRAM_NAME);
  app.footer(closingOfHelp());
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
