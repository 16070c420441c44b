#include "tools/replay/comparing/other_build.hpp"

#include "tools/replay/writing/golden.hpp"

namespace com::velanto::connectivity::tools {

OtherBuild::OtherBuild(const std::string& path, const data_t& configuration, Direction direction,
                       std::ostream& diagnostics)
    : comparer_(diagnostics, path) {
  build_.emplace(path, configuration, direction, log_);
}

void OtherBuild::take(const record_t& record) {
  compareLogs();
  record_t& same = build_->record;
  same.number = record.number;
  same.file = record.file;
  same.line_number = record.line_number;
  same.line = record.line;
  same.refused = record.refused;
  same.recorded = record.recorded;
  build_->worker.process({&same, 1}, [&](const record_t& other) {
    comparer_.compare({record.place(), goldenLineOf(record)},
                      {record.place() + ", the other build", goldenLineOf(other)});
  });
  build_->worker.incidents() = {}; // of batches; their effects on the message are compared
}

void OtherBuild::takeLog(std::span<const log_line_t> lines) {
  log_of_first_.insert(log_of_first_.end(), lines.begin(), lines.end());
}

exit_status_t OtherBuild::finish() {
  const call_result_t& last = build_->worker.shutdown();
  log_.insert(log_.end(), last.log.begin(), last.log.end());
  build_.reset();
  compareLogs();
  return comparer_.report();
}

void OtherBuild::compareLogs() {
  if (log_.empty() && log_of_first_.empty()) return;
  comparer_.compare({"the log without a message", goldenLineOf(log_of_first_)},
                    {"the same of the other build", goldenLineOf(log_)});
  log_.clear();
  log_of_first_.clear();
}

} // namespace com::velanto::connectivity::tools
