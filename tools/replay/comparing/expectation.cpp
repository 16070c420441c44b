#include "tools/replay/comparing/expectation.hpp"

#include <cerrno>
#include <system_error>

#include "tools/options/exit_status.hpp"
#include "tools/replay/writing/golden.hpp"

namespace com::velanto::connectivity::tools {

Expectation::Expectation(const std::string& path, std::ostream& diagnostics)
    : path_(path), file_(path, std::ios::binary), comparer_(diagnostics, path) {
  file_.peek(); // a folder opens, too
  if (!file_.is_open() || file_.bad()) {
    throw ReplayError(EXIT_IO, path + ": " + std::generic_category().message(errno));
  }
}

side_t Expectation::nextExpected() {
  for (std::string line; std::getline(file_, line);) {
    ++line_number_;
    if (isGoldenRemark(line)) continue;
    const std::string place = path_ + ":" + std::to_string(line_number_);
    if (!isGoldenLine(line)) {
      throw ReplayError(EXIT_IO, place + ": no line of a golden file, which --record makes");
    }
    return {place, line};
  }
  if (file_.bad()) throw ReplayError(EXIT_IO, path_ + ": cannot be read to its end");
  return {path_, {}};
}

void Expectation::take(const record_t& record) {
  comparer_.compare(nextExpected(), {record.place(), goldenLineOf(record)});
}

void Expectation::takeLog(std::span<const log_line_t> lines) {
  if (lines.empty()) return;
  comparer_.compare(nextExpected(), {"the log without a message", goldenLineOf(lines)});
}

exit_status_t Expectation::finish() {
  for (side_t side = nextExpected(); side.line; side = nextExpected()) comparer_.compare(side, {});
  return comparer_.report();
}

} // namespace com::velanto::connectivity::tools
