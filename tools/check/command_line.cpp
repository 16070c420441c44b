#include "tools/check/command_line.hpp"

#include <cmath>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <vector>

#include "tools/check/check_plugin.hpp"
#include "tools/check/report.hpp"
#include "tools/check/selection.hpp"
#include "tools/options/check_plugin_options.hpp"
#include "tools/options/parser.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

run_settings_t settingsOf(const command_t& command, Plugin plugin) {
  const std::uint64_t seed = command.seed ? *command.seed : std::random_device()();
  const double milliseconds = std::ceil(command.timeout_seconds * 1000);
  return {{command.path, plugin, {}},
          seed,
          std::chrono::milliseconds(static_cast<std::int64_t>(milliseconds))};
}

int obey(const command_t& command, bool may_colour, std::ostream& out) {
  if (!command.list && command.path.empty()) throw std::runtime_error("which library? See --help");
  const Plugin plugin = pluginIn(command.path);
  const std::vector<check_t> all = command.path.empty() ? allChecks() : checksOf(plugin);
  const std::vector<check_t> checks = select(all, command.only, command.skip);
  if (command.list) {
    for (const check_t& check : checks) out << listLine(check) << '\n';
    return STATUS_ALL_PASSED;
  }
  const Format plain = may_colour ? Format::COLOURED : Format::TEXT;
  return checkPlugin(settingsOf(command, plugin), checks, command.json ? Format::JSON : plain, out);
}

} // namespace

int runCheckPlugin(int count, const char* const* arguments, bool may_colour, std::ostream& out,
                   std::ostream& diagnostics) noexcept {
  try {
    int status = STATUS_ALL_PASSED;
    command_t command;
    if (parse(checkPluginTool(command), count, arguments, out)) {
      status = obey(command, may_colour, out);
    }
    if (!out.flush()) throw std::runtime_error("cannot write to standard output");
    return status;
  } catch (const std::exception& error) {
    diagnostics << PROGRAM_NAME << ": " << error.what() << '\n';
    return STATUS_NOT_CHECKED;
  }
}

} // namespace com::velanto::connectivity::tools::check
