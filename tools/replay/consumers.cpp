#include "tools/replay/consumers.hpp"

#include <algorithm>

#include "identity/build_name.hpp"
#include "tools/replay/summary/recordings.hpp"

namespace com::velanto::connectivity::tools {

Consumers::Consumers(const ReplayOptions& options, std::ostream& events, std::ostream& diagnostics,
                     Screen screen)
    : options_(options),
      events_out_(events),
      diagnostics_out_(diagnostics),
      screen_(screen),
      events_(events, screen != Screen::NONE),
      diagnostics_(diagnostics, shownLogLevel(options),
                   options.log_format == "json" ? LogFormat::JSON : LogFormat::PLAIN) {
  all_ = {&figures_, &printed_};
  if (!options.explain) all_.push_back(&events_);
  // Malformed lines are part of a case, and its golden file has them.
  if (!options.suite) all_.push_back(&diagnostics_);
  if (options.summary) all_.push_back(&summary_.emplace());
  if (options.dropped) all_.push_back(&dead_letters_.emplace(*options.dropped));
  if (options.record) all_.push_back(&golden_.emplace(*options.record, options.plugin_path));
  if (options.expect) all_.push_back(&expectation_.emplace(*options.expect, diagnostics));
  if (options.expect_events) {
    add(recorded_events_.emplace(*options.expect_events, diagnostics));
  }
  if (options.report) add(report_.emplace(options));
}

void Consumers::addPlugins(const PluginLibrary& library, const data_t& configuration,
                           Direction direction) {
  if (options_.against) {
    add(other_build_.emplace(*options_.against, configuration, direction, diagnostics_out_));
  }
  if (options_.redacted) {
    add(redaction_.emplace(options_, library, configuration, direction, diagnostics_out_));
  }
  if (options_.explain) {
    const ExplanationForm text =
        screen_ == Screen::COLOURED ? ExplanationForm::COLOURED_TEXT : ExplanationForm::TEXT;
    add(explainer_.emplace(library, configuration, direction,
                           *options_.explain == "json" ? ExplanationForm::JSON : text,
                           events_out_));
  }
  if (summary_) {
    summary_->takeBuilds(
        {VLT_BUILD_NAME, identityOf(options_.plugin_path),
         options_.against ? std::optional(identityOf(*options_.against)) : std::nullopt});
  }
  if (report_) addToReport(library, configuration, direction);
}

void Consumers::addToReport(const PluginLibrary& library, const data_t& configuration,
                            Direction direction) {
  report_->explainWith(library, configuration, direction);
  report_->nameBuild("Plug-in", identityOf(options_.plugin_path), library);
  if (expectation_) {
    showDifferences(expectation_->comparer(),
                    report_->compare("changes-expect", *options_.expect, "Golden run", "This run"));
  }
  if (recorded_events_) {
    showDifferences(
        recorded_events_->comparer(),
        report_->compare("changes-events", *options_.expect_events, "Recorded", "This run"));
  }
  if (other_build_) {
    report_->nameBuild("Other build", identityOf(*options_.against), other_build_->library());
    showDifferences(other_build_->comparer(), report_->compare("changes-against", *options_.against,
                                                               "This build", "Other build"));
  }
}

void Consumers::showDifferences(Comparer& comparer, report::Changes& changes) {
  comparer.listen([&changes](const side_t& before, const side_t& after,
                             const std::vector<difference_t>& differences) {
    changes.add(before.line ? before.place : "", after.line ? after.place : "", differences);
  });
  compared_.emplace_back(&comparer, &changes);
}

void Consumers::writeReport(const run_figures_t& run, exit_status_t status) {
  if (!report_) return;
  for (const auto& [comparer, changes] : compared_) {
    changes->close(comparer->compared(), comparer->different());
  }
  report_->write(
      {run.read, run.out, run.blocks, status, recordingsText(run.recordings, run.pairing)});
}

exit_status_t Consumers::finish() {
  exit_status_t worst = EXIT_FINE;
  // NOLINTNEXTLINE(modernize-loop-convert): from the last to the first
  for (auto consumer = all_.rbegin(); consumer != all_.rend(); ++consumer) {
    worst = std::max(worst, (*consumer)->finish());
  }
  return worst;
}

bool Consumers::hasNoUse() const noexcept {
  const bool closed = explainer_ ? explainer_->closed() : events_.closed();
  return closed && !options_.strict && !options_.summary && !options_.dropped &&
         !options_.redacted && !options_.record && !options_.expect && !options_.expect_events &&
         !options_.against && !options_.report;
}

std::string Consumers::summaryOf(const run_figures_t& run) const {
  if (!summary_) return "";
  if (*options_.summary == "json") return summaryJson(*summary_, run, printed_);
  return (explainer_ ? explainer_->groups().text() : "") + summaryText(*summary_, run);
}

} // namespace com::velanto::connectivity::tools
