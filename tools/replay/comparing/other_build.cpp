#include "tools/replay/comparing/other_build.hpp"

#include "tools/replay/writing/golden.hpp"

namespace com::velanto::connectivity::tools {

OtherBuild::OtherBuild(const std::string& path, const data_t& configuration, Direction direction,
                       std::ostream& diagnostics)
    : library_(path),
      worker_(library_, configuration, direction, {1, true}, log_),
      comparer_(diagnostics) {}

void OtherBuild::take(const record_t& record) {
  compareLogs();
  record_.number = record.number;
  record_.file = record.file;
  record_.line_number = record.line_number;
  record_.line = record.line;
  worker_.process({&record_, 1}, [&](const record_t& other) {
    comparer_.compare({record.place(), goldenLineOf(record)},
                      {record.place() + ", the other build", goldenLineOf(other)});
  });
  worker_.incidents() = {}; // of batches; what they did to the message is compared
}

void OtherBuild::takeLog(std::span<const log_line_t> lines) {
  log_of_first_.insert(log_of_first_.end(), lines.begin(), lines.end());
}

void OtherBuild::finish() {
  const call_result_t& last = worker_.shutdown();
  log_.insert(log_.end(), last.log.begin(), last.log.end());
  compareLogs();
}

void OtherBuild::compareLogs() {
  if (log_.empty() && log_of_first_.empty()) return;
  comparer_.compare({"the log without a message", goldenLineOf(log_of_first_)},
                    {"the same of the other build", goldenLineOf(log_)});
  log_.clear();
  log_of_first_.clear();
}

} // namespace com::velanto::connectivity::tools
