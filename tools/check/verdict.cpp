#include "tools/check/verdict.hpp"

#include <sys/wait.h>

#include <cstring>
#include <optional>
#include <string_view>

namespace com::velanto::connectivity::tools::check {

namespace {

// Takes records off the front of a string.
class RecordReader {
 public:
  explicit RecordReader(std::string_view records) : rest_(records) {}

  // The next field; nothing at the end and for one that breaks off.
  std::optional<std::string> next() {
    const std::size_t end = rest_.find('\0');
    if (end == std::string_view::npos) return std::nullopt;
    std::string field(rest_.substr(0, end));
    rest_.remove_prefix(end + 1);
    return field;
  }

 private:
  std::string_view rest_;
};

struct records_t {
  bool finished = false;
  std::optional<std::string> skip_reason;
  std::vector<mismatch_t> mismatches;
};

records_t readRecords(std::string_view records) {
  records_t result;
  RecordReader reader(records);
  while (const std::optional<std::string> letter = reader.next()) {
    if (*letter == "E") {
      result.finished = true;
    } else if (*letter == "S") {
      result.skip_reason = reader.next();
    } else if (*letter == "F") {
      const std::optional<std::string> where = reader.next();
      const std::optional<std::string> expected = reader.next();
      const std::optional<std::string> actual = reader.next();
      if (actual) result.mismatches.push_back({*where, *expected, *actual});
    }
  }
  return result;
}

std::string describeSignal(int signal) {
  const char* const name = sigabbrev_np(signal);
  return "signal " + std::to_string(signal) + (name == nullptr ? "" : std::string(", SIG") + name) +
         ", " + strsignal(signal); // NOLINT(concurrency-mt-unsafe): one thread
}

} // namespace

const char* nameOf(Ending ending) noexcept {
  switch (ending) {
    case Ending::OK:
      return "ok";
    case Ending::FAILED:
      return "failed";
    case Ending::CRASHED:
      return "crashed";
    case Ending::HUNG:
      return "hung";
    case Ending::SKIPPED:
      return "skipped";
  }
  return "";
}

verdict_t judge(const process_end_t& end) {
  records_t records = readRecords(end.records);
  verdict_t verdict;
  verdict.mismatches = std::move(records.mismatches);
  if (end.stopped) {
    verdict.ending = Ending::HUNG;
    verdict.reason = "did not end in time";
  } else if (WIFSIGNALED(end.status)) {
    verdict.ending = Ending::CRASHED;
    verdict.reason = describeSignal(WTERMSIG(end.status));
  } else if (!records.finished) {
    verdict.ending = Ending::CRASHED;
    verdict.reason = "the process was ended with exit status " +
                     std::to_string(WEXITSTATUS(end.status)) + " in the middle of the check";
  } else if (records.skip_reason) {
    verdict.ending = Ending::SKIPPED;
    verdict.reason = *records.skip_reason;
  } else if (!verdict.mismatches.empty()) {
    verdict.ending = Ending::FAILED;
  }
  if (verdict.ending != Ending::OK && verdict.ending != Ending::SKIPPED) {
    verdict.printed = end.printed;
  }
  return verdict;
}

} // namespace com::velanto::connectivity::tools::check
