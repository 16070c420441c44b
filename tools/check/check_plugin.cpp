#include "tools/check/check_plugin.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "tools/check/report.hpp"
#include "tools/host/plugin_library.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

using clock_t = std::chrono::steady_clock;

void loadAlone(Trial& trial) {
  if (openLibrary(trial.path()) == nullptr) throw std::runtime_error(dlerror());
}

// The reason why the library does not load; nothing when it does.
std::optional<std::string> whyNotLoaded(const run_settings_t& settings) {
  const verdict_t verdict = runInChild(settings, loadAlone);
  if (verdict.ending == Ending::OK) return std::nullopt;
  const std::string prefix = "the library cannot be loaded: ";
  if (!verdict.reason.empty()) return prefix + verdict.reason;
  const std::string& actual = verdict.mismatches.front().actual;
  const std::string exception = "exception: ";
  return prefix + (actual.rfind(exception, 0) == 0 ? actual.substr(exception.size()) : actual);
}

std::unique_ptr<Report> makeReport(std::ostream& out, const heading_t& heading, Format format) {
  if (format == Format::JSON) return std::make_unique<JsonReport>(out, heading);
  return std::make_unique<TextReport>(out, heading, format == Format::COLOURED);
}

result_t runCheck(run_settings_t settings, const check_t& check) {
  std::optional<TemporaryFolder> folder;
  if (settings.subject.plugin == Plugin::RECORDER) {
    settings.subject.folder = folder.emplace().path();
  }
  const clock_t::time_point start = clock_t::now();
  verdict_t verdict = runInChild(settings, check.run);
  return {&check, std::move(verdict),
          std::chrono::duration_cast<std::chrono::milliseconds>(clock_t::now() - start)};
}

result_t skippedResult(const check_t& check, const std::string& reason) {
  verdict_t verdict;
  verdict.ending = Ending::SKIPPED;
  verdict.reason = reason;
  return {&check, std::move(verdict), {}};
}

} // namespace

int checkPlugin(const run_settings_t& settings, std::span<const check_t> checks, bool strict,
                Format format, std::ostream& out) {
  const std::optional<std::string> obstacle = whyNotLoaded(settings);
  const std::unique_ptr<Report> report = makeReport(
      out, {identityOf(settings.subject.path), settings.seed, !obstacle, strict}, format);
  Counts counts;
  for (const check_t& check : checks) {
    result_t result = obstacle && check.use != Use::READ ? skippedResult(check, *obstacle)
                                                         : runCheck(settings, check);
    result.strict = strict;
    counts.add(result);
    report->add(result);
  }
  report->close(counts);
  if (obstacle) return STATUS_NOT_CHECKED;
  return counts.allGood() ? STATUS_ALL_PASSED : STATUS_SOME_FAILED;
}

} // namespace com::velanto::connectivity::tools::check
