// The forms of results: for people lines while they come, for programs one JSON document, which
// docs/check-report.schema.json describes.
//
// A check has a mark, its name and its claim; its details are indented below it. No line is longer
// than 80 columns, so long claims and values go on in the next line.
#ifndef VLT_TOOLS_CHECK_REPORT_HPP
#define VLT_TOOLS_CHECK_REPORT_HPP

#include <array>
#include <chrono>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <utility>

#include "tools/check/check.hpp"
#include "tools/check/verdict.hpp"
#include "tools/host/file_identity.hpp"

namespace com::velanto::connectivity::tools::check {

struct result_t {
  const check_t* check;
  verdict_t verdict;
  std::chrono::milliseconds time;
  bool strict = false; // advised checks count, too

  // It did not pass, and does not count.
  [[nodiscard]] bool warns() const noexcept;
};

// Results by outcome.
class Counts {
 public:
  void add(const result_t& result) noexcept;
  [[nodiscard]] int warned() const noexcept { return warned_; }
  // Without warnings.
  [[nodiscard]] int of(Ending ending) const noexcept {
    return counts_[static_cast<std::size_t>(ending)];
  }
  [[nodiscard]] int total() const noexcept;
  [[nodiscard]] bool allGood() const noexcept {
    return total() == of(Ending::OK) + warned() + of(Ending::SKIPPED);
  }

 private:
  std::array<int, 5> counts_{};
  int warned_ = 0;
};

class Report {
 public:
  Report() = default;
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;
  virtual ~Report() = default;
  virtual void add(const result_t& result) = 0;
  virtual void close(const Counts& counts) = 0;
};

struct heading_t {
  file_identity_t file;
  std::uint64_t seed = 0;
  bool loads = true;
  bool strict = false;
};

class TextReport final : public Report {
 public:
  TextReport(std::ostream& out, heading_t heading, bool coloured)
      : out_(out), heading_(std::move(heading)), coloured_(coloured) {}
  void add(const result_t& result) override;
  void close(const Counts& counts) override;

 private:
  std::ostream& out_;
  heading_t heading_;
  bool coloured_;
};

class JsonReport final : public Report {
 public:
  JsonReport(std::ostream& out, const heading_t& heading);
  void add(const result_t& result) override;
  void close(const Counts& counts) override;

 private:
  std::ostream& out_;
  bool first_ = true;
};

// The lines of --list: the names, their claims beside them, "(advised)" behind those of advised
// checks.
void writeList(std::ostream& out, std::span<const check_t> checks);

} // namespace com::velanto::connectivity::tools::check

#endif
