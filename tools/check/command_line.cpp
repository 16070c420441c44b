#include "tools/check/command_line.hpp"

#include <sodium.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <streambuf>
#include <vector>

#include "ndjson/visible_text.hpp"
#include "tools/check/check_plugin.hpp"
#include "tools/check/report.hpp"
#include "tools/check/selection.hpp"
#include "tools/options/check_plugin_options.hpp"
#include "tools/options/parser.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

run_settings_t settingsOf(const command_t& command, Plugin plugin) {
  const std::uint64_t seed = command.seed ? *command.seed : randombytes_random();
  const double milliseconds = std::ceil(command.timeout_seconds * 1000);
  return {{command.path, plugin, {}},
          seed,
          std::chrono::milliseconds(static_cast<std::int64_t>(milliseconds))};
}

// Hands output on, and goes on without it when the reader has closed its pipe: the verdict is in the
// exit status as well. Other faults of the output stay faults.
class PipeBuffer final : public std::streambuf {
 public:
  explicit PipeBuffer(std::streambuf& next) : next_(next) {}

 protected:
  int_type overflow(int_type c) override {
    const char byte = traits_type::to_char_type(c);
    return xsputn(&byte, 1) == 1 ? traits_type::not_eof(c) : traits_type::eof();
  }
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    errno = 0;
    const bool written = closed_ || next_.sputn(bytes, count) == count;
    return written || readerIsGone() ? count : 0;
  }
  int sync() override {
    errno = 0;
    return closed_ || next_.pubsync() == 0 || readerIsGone() ? 0 : -1;
  }

 private:
  // After a write that failed.
  bool readerIsGone() noexcept { return closed_ = errno == EPIPE; }

  std::streambuf& next_;
  bool closed_ = false;
};

int obey(const command_t& command, bool may_colour, std::ostream& out) {
  if (command.list && command.json) throw std::runtime_error("--list takes no --json");
  if (!command.list && command.path.empty()) throw std::runtime_error("which library? See --help");
  const Plugin plugin = command.path.empty() ? Plugin::CODEC : pluginIn(command.path);
  const std::vector<check_t> all = command.path.empty() ? allChecks() : checksOf(plugin);
  const std::vector<check_t> checks = select(all, command.only, command.skip);
  if (command.list) {
    writeList(out, checks);
    return STATUS_ALL_PASSED;
  }
  const Format plain = may_colour ? Format::COLOURED : Format::TEXT;
  return checkPlugin(settingsOf(command, plugin), checks, command.strict,
                     command.json ? Format::JSON : plain, out);
}

} // namespace

int runCheckPlugin(int count, const char* const* arguments, bool may_colour, std::ostream& output,
                   std::ostream& diagnostics) noexcept {
  try {
    PipeBuffer buffer(*output.rdbuf());
    std::ostream out(&buffer);
    int status = STATUS_ALL_PASSED;
    command_t command;
    if (parse(checkPluginTool(command), count, arguments, out)) {
      status = obey(command, may_colour, out);
    }
    if (!out.flush()) throw std::runtime_error("cannot write to standard output");
    return status;
  } catch (const std::exception& error) {
    diagnostics << PROGRAM_NAME << ": " << visible(error.what()) << '\n';
    return STATUS_NOT_CHECKED;
  }
}

} // namespace com::velanto::connectivity::tools::check
