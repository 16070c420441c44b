// One running check, in its own process: its inputs, and its report of unmet expectations. An unmet
// expectation does not end a check; later ones are worth reading too.
#ifndef VLT_TOOLS_CHECK_TRIAL_HPP
#define VLT_TOOLS_CHECK_TRIAL_HPP

#include <concepts>
#include <cstdint>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/check/subject.hpp"

namespace com::velanto::connectivity::tools::check {

// The form of values in a report.
[[nodiscard]] inline std::string shown(const std::string& text) { return text; }
[[nodiscard]] inline std::string shown(const char* text) { return text == nullptr ? "null" : text; }
[[nodiscard]] inline std::string shown(bool value) { return value ? "true" : "false"; }
// Lines of a log.
using lines_t = std::vector<std::string>;
[[nodiscard]] std::string shown(const lines_t& lines);
template <std::integral Number>
[[nodiscard]] std::string shown(Number value) {
  return std::to_string(value);
}

// Thrown by skip(), caught by the runner of checks.
struct skipped_t {};

class Trial {
 public:
  // Mismatches that a report holds; more of them would say nothing new.
  static constexpr int MOST_MISMATCHES = 8;

  // `records` is a descriptor to write records to, `printed` one of the file with the output.
  Trial(subject_t subject, std::uint64_t seed, int records, int printed)
      : subject_(std::move(subject)), seed_(seed), records_(records), printed_(printed) {}
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;
  ~Trial() = default;

  // The path of the library under test.
  [[nodiscard]] const std::string& path() const noexcept { return subject_.path; }
  [[nodiscard]] bool isCodec() const noexcept { return subject_.plugin == Plugin::CODEC; }
  [[nodiscard]] const char* className() const noexcept { return classNameOf(subject_.plugin); }
  // An empty folder of this check alone, for the files of a recorder.
  [[nodiscard]] const std::string& folder() const noexcept { return subject_.folder; }
  // For randomised checks: the same seed gives the same values.
  [[nodiscard]] std::uint64_t seed() const noexcept { return seed_; }

  // Expectations, for several threads at once. False when it did not hold.
  bool holds(bool condition, std::string_view where, std::string_view expected,
             std::string_view actual);
  template <class Expected, class Actual>
  bool equal(std::string_view where, const Expected& expected, const Actual& actual) {
    const std::string left = shown(expected);
    const std::string right = shown(actual);
    return holds(left == right, where, left, right);
  }

  // Runs the check or a part of it, also in a thread of its own. An exception that leaves the part
  // is a mismatch and ends the part, not the process; skipped_t passes.
  template <class Part>
  void part(const Part& part) {
    try {
      part();
    } catch (const std::exception& e) {
      holds(false, "the check", "to come to its end", std::string("exception: ") + e.what());
    }
  }

  [[nodiscard]] int mismatches() const noexcept { return mismatches_; }

  // All that this process has printed, the library's own output included.
  [[nodiscard]] std::string printed() const;

  // Ends the check as one that cannot run here.
  [[noreturn]] void skip(std::string_view reason) const;

  // Says that the check came to its end.
  void finish() const;

 private:
  void write(std::initializer_list<std::string_view> fields) const;

  subject_t subject_;
  std::uint64_t seed_;
  int records_;
  int printed_;
  std::mutex lock_; // guards the records and their number
  int mismatches_ = 0;
};

} // namespace com::velanto::connectivity::tools::check

#endif
