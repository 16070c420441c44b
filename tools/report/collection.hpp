// All that a report tells of the messages of a run, collected in memory with fixed bounds: counts,
// and whole messages as examples, the first of each reason and of each way.
//
//   reason   why messages were dropped: the code and the key of the log line
//   way      messages that came out, with the same fields and kinds of values before and after
#ifndef VLT_TOOLS_REPORT_COLLECTION_HPP
#define VLT_TOOLS_REPORT_COLLECTION_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tools/explain/explanation.hpp"
#include "tools/record/record.hpp"
#include "tools/record/tally.hpp"
#include "tools/report/distribution.hpp"
#include "tools/report/own_time.hpp"
#include "tools/report/timeline.hpp"

namespace com::velanto::connectivity::tools::report {

// A message to show. Its record has no events.
struct example_t {
  record_t record;
  std::string place; // FILE:LINE
  bool whole = true; // otherwise only the beginning of its line was kept
  std::optional<explanation_t> explanation{};
};

struct reason_t {
  std::string code;
  std::string key;
  std::uint64_t count = 0;
  std::uint64_t first_number = 0;    // of the record
  std::vector<std::string> places{}; // the first ones, FILE:LINE
  std::vector<example_t> examples{}; // the first ones
};

struct way_t {
  std::uint64_t shape = 0; // the same in every run
  std::uint64_t count = 0;
  std::uint64_t first_number = 0; // of the record
  example_t example{};
};

struct malformed_t {
  std::string place;
  std::string reason;
};

class Collection : public Tally {
 public:
  static constexpr std::size_t MOST_REASONS = 200;
  static constexpr std::size_t MOST_WAYS = 500;
  static constexpr std::size_t MOST_CHANNELS = 200;
  static constexpr std::size_t MOST_MALFORMED = 10;
  static constexpr std::size_t PLACES = 5;                              // of a reason
  static constexpr std::size_t EXAMPLES = 2;                            // of a reason
  static constexpr std::size_t LONGEST_EXAMPLE = std::size_t{64} << 10; // bytes

  Collection() : Tally(MOST_CHANNELS) {}

  void take(const record_t& record);
  void takeBatch(std::size_t messages, std::chrono::nanoseconds time);

  [[nodiscard]] const Timeline& times() const noexcept { return times_; }
  [[nodiscard]] const Timeline& places() const noexcept { return places_; }
  [[nodiscard]] const std::vector<malformed_t>& malformed() const noexcept { return malformed_; }
  [[nodiscard]] const Distribution& batchSizes() const noexcept { return batch_sizes_; }
  [[nodiscard]] const Distribution& batchTimes() const noexcept { return batch_times_; } // µs

  // The most frequent first, among equals the earliest. The pointers are valid until the next take.
  [[nodiscard]] std::vector<reason_t*> reasons() { return ranked(reasons_); }
  [[nodiscard]] std::vector<way_t*> ways() { return ranked(ways_); }
  // Messages beyond the bounds.
  [[nodiscard]] std::uint64_t otherReasons() const noexcept { return other_reasons_; }
  [[nodiscard]] std::uint64_t otherWays() const noexcept { return other_ways_; }

 private:
  void takeReason(const record_t& record);
  void takeWay(const record_t& record, const Message& message);

  JsonReader reader_;
  OwnTimeReader own_time_;
  Timeline times_{WIDTHS_OF_TIMES};
  Timeline places_{WIDTHS_OF_PLACES};
  std::map<std::pair<std::string, std::string>, reason_t> reasons_; // by code and key
  std::uint64_t other_reasons_ = 0;
  std::map<std::tuple<Kind, Outcome, std::uint64_t>, way_t> ways_; // by shape as well
  std::uint64_t other_ways_ = 0;
  std::vector<malformed_t> malformed_;
  Distribution batch_sizes_;
  Distribution batch_times_;
};

} // namespace com::velanto::connectivity::tools::report

#endif
