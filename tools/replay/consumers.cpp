#include "tools/replay/consumers.hpp"

namespace com::velanto::connectivity::tools {

Consumers::Consumers(const ReplayOptions& options, std::ostream& events, std::ostream& diagnostics)
    : events_(events), diagnostics_(diagnostics, shownLogLevel(options)) {
  all_ = {&figures_};
  if (!options.explain) all_.push_back(&events_);
  // What is malformed is part of a case, and its golden file tells of it.
  if (!options.suite) all_.push_back(&diagnostics_);
  if (options.summary) all_.push_back(&summary_.emplace());
  if (options.dropped) all_.push_back(&dead_letters_.emplace(*options.dropped));
  if (options.record) all_.push_back(&golden_.emplace(*options.record));
  if (options.expect) all_.push_back(&expectation_.emplace(*options.expect, diagnostics));
}

} // namespace com::velanto::connectivity::tools
