#include "tools/replay/command_line.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "tools/host/plugin_library.hpp"
#include "tools/options/help.hpp"
#include "tools/replay/replay.hpp"
#include "tools/replay/running/configuration.hpp"
#include "tools/replay/suite.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// Nothing, or what is wrong with `text` as a number of messages. The library's own check lets -1
// through, as a very large number.
std::string checkCount(const std::string& text) {
  std::size_t count = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, count);
  if (result.ec == std::errc() && result.ptr == end && count > 0) return "";
  return "'" + text + "' is not a number of at least 1";
}

// Nothing when `text` is one of `choices`, "a|b|…".
std::string checkChoice(const std::string& text, const std::string& choices) {
  const bool found = text.find('|') == std::string::npos &&
                     ("|" + choices + "|").find("|" + text + "|") != std::string::npos;
  return found ? "" : "'" + text + "' is none of " + choices;
}

// Makes the command line's option for a row of the table.
class OptionMaker {
 public:
  OptionMaker(CLI::App& app, ReplayOptions& options, const option_row_t& row) noexcept
      : app_(app), options_(options), row_(row) {}

  void operator()(bool ReplayOptions::*target) const { app_.add_flag(row_.name, options_.*target); }
  void operator()(std::size_t ReplayOptions::*target) const {
    app_.add_option(row_.name, options_.*target)->check(CLI::Validator(&checkCount, ""));
  }
  template <class Value>
  void operator()(Value ReplayOptions::*target) const {
    if (*row_.argument == '[') return addWithDefault(options_.*target);
    CLI::Option* const option = app_.add_option(row_.name, options_.*target);
    option->type_name(row_.argument);
    restrict(option, row_.argument);
  }

 private:
  template <class Value>
  void addWithDefault(Value& value) const {
    if constexpr (std::is_same_v<Value, std::optional<std::string>>) {
      std::string choices(row_.argument + 2);
      choices.pop_back();
      const std::string first = choices.substr(0, choices.find('|'));
      restrict(app_.add_flag(std::string(row_.name) + "{" + first + "}", value), choices);
    }
  }
  static void restrict(CLI::Option* option, const std::string& choices) {
    if (choices.find('|') == std::string::npos) return;
    option->check(CLI::Validator(
        [choices](const std::string& text) { return checkChoice(text, choices); }, ""));
  }

  CLI::App& app_;
  ReplayOptions& options_;
  const option_row_t& row_;
};

// Nothing: the arguments are done with, by help, version or a complaint; `status` tells which.
std::optional<ReplayOptions> parse(int count, const char* const* arguments, std::ostream& out,
                                   std::ostream& diagnostics, int& status) {
  ReplayOptions options;
  CLI::App app("", REPLAY_NAME);
  app.set_help_flag("--help,-h");
  app.set_version_flag("--version", std::string(REPLAY_NAME) + " " + VLT_VERSION);
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string(REPLAY_NAME) + ": " + error.what() + "\n";
  });
  app.add_option("FILES", options.paths);
  for (const option_group_t& group : optionTable()) {
    for (const option_row_t& row : group.rows) {
      std::visit(OptionMaker(app, options, row), row.target);
    }
  }
  try {
    app.parse(count, arguments);
    return options;
  } catch (const CLI::CallForHelp&) {
    out << helpText();
  } catch (const CLI::ParseError& error) {
    if (app.exit(error, out, diagnostics) != 0) status = EXIT_USAGE;
  }
  if (!out.flush()) throw ReplayError(EXIT_IO, "cannot write to standard output");
  return std::nullopt;
}

// What no option can tell by itself.
void checkTogether(const ReplayOptions& options) {
  for (const std::optional<std::string>& output :
       {options.dropped, options.record, options.junit}) {
    if (!output) continue;
    refuseToOverwrite(options.paths, *output);
    if (options.expect) refuseToOverwrite({*options.expect}, *output);
  }
  const bool reads_standard_input =
      options.paths.empty() ||
      std::find(options.paths.begin(), options.paths.end(), "-") != options.paths.end();
  if (options.repeat > 1 && reads_standard_input && !options.suite && !options.check_config) {
    throw ReplayError(EXIT_USAGE, "standard input cannot be read again, which --repeat asks for");
  }
  if (options.check_config && (!options.config || !options.paths.empty())) {
    throw ReplayError(EXIT_USAGE, "--check-config needs --config and takes no FILES");
  }
  if (!options.suite && (options.update || options.junit)) {
    throw ReplayError(EXIT_USAGE, "--update and --junit need --suite");
  }
  if (options.suite && (!options.paths.empty() || options.expect || options.record ||
                        options.dropped || options.summary || options.explain)) {
    throw ReplayError(EXIT_USAGE,
                      "--suite takes no FILES, --expect, --record, --dropped, --summary or "
                      "--explain");
  }
}

} // namespace

int runReplay(int count, const char* const* arguments, std::ostream& out, std::ostream& diagnostics,
              const display_t& display) noexcept {
  try {
    int status = EXIT_FINE;
    std::optional<ReplayOptions> options = parse(count, arguments, out, diagnostics, status);
    if (!options) return status;
    checkTogether(*options);
    if (options->plugin_path.empty()) options->plugin_path = PluginLibrary::defaultPath();
    if (options->check_config) return checkConfiguration(*options, out, diagnostics);
    if (options->suite) return runSuite(*options, diagnostics);
    const std::vector<input_t> inputs = inputsFrom(options->paths);
    if (!display.progress) {
      return replay(*options, inputs, out, diagnostics, nullptr, display.colour);
    }
    Terminal terminal(*diagnostics.rdbuf());
    std::ostream above(&terminal);
    return replay(*options, inputs, out, above, &terminal, display.colour);
  } catch (const ReplayError& error) {
    diagnostics << REPLAY_NAME << ": " << error.what() << '\n';
    return error.status();
  } catch (const PluginError& error) {
    diagnostics << REPLAY_NAME << ": " << error.what() << '\n';
    return EXIT_PLUGIN;
  } catch (const std::exception& error) {
    diagnostics << REPLAY_NAME << ": " << error.what() << '\n';
    return EXIT_IO;
  }
}

} // namespace com::velanto::connectivity::tools
