// The forms of results: for people lines while they come, for programs one JSON document.
//
//   {"library": …, "seed": …, "loads": …,
//    "checks": [{"name": …, "claim": …, "outcome": "ok", "milliseconds": …, "reason": …,
//                "differences": [{"where": …, "expected": …, "came": …}], "printed": …}],
//    "counts": {"ok": …, "failed": …, "crashed": …, "hung": …, "skipped": …}}
//
// "reason", "differences" and "printed" are there when they hold something.
#ifndef VLT_TOOLS_CHECK_REPORT_HPP
#define VLT_TOOLS_CHECK_REPORT_HPP

#include <array>
#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>

#include "tools/check/check.hpp"
#include "tools/check/verdict.hpp"

namespace com::velanto::connectivity::tools::check {

struct result_t {
  const check_t* check;
  verdict_t verdict;
  std::chrono::milliseconds time;
};

// Results by outcome.
class Counts {
 public:
  void add(Ending ending) noexcept { ++counts_[static_cast<std::size_t>(ending)]; }
  [[nodiscard]] int of(Ending ending) const noexcept {
    return counts_[static_cast<std::size_t>(ending)];
  }
  [[nodiscard]] int total() const noexcept;
  [[nodiscard]] bool allGood() const noexcept {
    return total() == of(Ending::OK) + of(Ending::SKIPPED);
  }

 private:
  std::array<int, 5> counts_{};
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
  std::string path; // of the library
  std::uint64_t seed = 0;
  bool loads = true;
};

// A line a check, its details indented below it.
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

// "name  claim", names padded to one width.
[[nodiscard]] std::string listLine(const check_t& check);

} // namespace com::velanto::connectivity::tools::check

#endif
