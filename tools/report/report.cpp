#include "tools/report/report.hpp"

#include <algorithm>

#include "ndjson/json_writer.hpp"
#include "tools/report/page.hpp"
#include "tools/report/sections.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

// The options that change what a run does or is compared with.
named_values_t optionsOf(const ReplayOptions& options) {
  named_values_t values;
  const auto add = [&values](const char* name, const std::optional<std::string>& value) {
    if (value) values.emplace_back(name, *value);
  };
  const auto add_count = [&values](const char* name, std::size_t count) {
    if (count > 1) values.emplace_back(name, std::to_string(count));
  };
  add("--config", options.config);
  add_count("--batch-size", options.batch_size);
  add_count("--repeat", options.repeat);
  add_count("--threads", options.threads);
  if (options.direction != "host") values.emplace_back("--direction", options.direction);
  if (options.as_recorded) values.emplace_back("--as-recorded", "");
  if (options.follow) values.emplace_back("--follow", "");
  if (options.strict) values.emplace_back("--strict", "");
  add("--expect", options.expect);
  add("--expect-events", options.expect_events);
  add("--against", options.against);
  return values;
}

named_values_t membersOf(const data_t& configuration) {
  named_values_t values;
  for (const auto& [key, value] : configuration.get<map_t>()) {
    values.emplace_back(key.is_string() ? text_or_empty(key.get<const char*>()) : toJson(key),
                        toJson(value));
  }
  std::sort(values.begin(), values.end());
  return values;
}

} // namespace

Report::Report(const ReplayOptions& options)
    : file_(*options.report), as_recorded_(options.as_recorded) {
  settings_t& settings = contents_.settings;
  settings.inputs = options.paths;
  if (settings.inputs.empty()) settings.inputs.emplace_back("-");
  settings.options = optionsOf(options);
  settings.timed = options.summary.has_value();
}

void Report::explainWith(const PluginLibrary& library, const data_t& configuration,
                         Direction direction) {
  contents_.settings.configuration = membersOf(configuration);
  inquiry_.emplace(library, configuration, direction);
}

void Report::nameBuild(const std::string& role, const file_identity_t& file,
                       const PluginLibrary& library) {
  contents_.settings.builds.push_back({role, file, text_or_empty(library.productVersion())});
}

// A message that was recorded on its way to the transport would go the other way here.
void Report::explain(example_t& example) {
  // Values that all runs of a message together look at: half a second.
  constexpr std::size_t MOST_VALUES = 100'000;
  const bool same_way = !as_recorded_ || !example.record.recorded ||
                        directionOf(*example.record.recorded) == Direction::TOWARDS_HOST;
  if (example.whole && same_way) {
    example.explanation = inquiry_->explain(example.record, MOST_VALUES);
  }
  example.record.outputs.clear();
}

exit_status_t Report::finish() {
  std::size_t number = 0;
  for (reason_t* reason : contents_.collection.reasons()) {
    if (number++ == SHOWN_REASONS) break;
    for (example_t& example : reason->examples) explain(example);
  }
  number = 0;
  for (way_t* way : contents_.collection.ways()) {
    if (number++ < SHOWN_WAYS) {
      explain(way->example);
    } else {
      way->example.record.outputs.clear(); // blocks of the host
    }
  }
  inquiry_->end();
  return EXIT_FINE;
}

void Report::write(outcome_t outcome) {
  contents_.outcome = std::move(outcome);
  file_.write(pageOf(contents_));
  file_.commit();
}

} // namespace com::velanto::connectivity::tools::report
