// The counts that summaries and pages share, messages by kind and outcome and events by channel, and
// the order of all tables of counts.
#ifndef VLT_TOOLS_RECORD_TALLY_HPP
#define VLT_TOOLS_RECORD_TALLY_HPP

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/record/kind.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

class Tally {
 public:
  // Tells at most `most_channels` channels apart.
  explicit Tally(std::size_t most_channels) : most_channels_(most_channels) {}

  void take(const record_t& record);
  void add(Kind kind, Outcome outcome, std::uint64_t messages) noexcept {
    counts_[static_cast<std::size_t>(kind)][static_cast<std::size_t>(outcome)] += messages;
  }
  void addEvents(std::string_view channel, std::uint64_t events);

  [[nodiscard]] std::uint64_t count(Kind kind, Outcome outcome) const noexcept {
    return counts_[static_cast<std::size_t>(kind)][static_cast<std::size_t>(outcome)];
  }
  [[nodiscard]] std::uint64_t count(Kind kind) const noexcept; // without malformed lines
  [[nodiscard]] std::uint64_t count(Outcome outcome) const noexcept;

  // The channels of converted messages with their number, the most frequent first.
  [[nodiscard]] std::vector<std::pair<std::string, std::uint64_t>> channels() const;
  // Events in further channels.
  [[nodiscard]] std::uint64_t otherChannels() const noexcept { return other_channels_; }

 private:
  MetadataReader metadata_;
  std::array<std::array<std::uint64_t, OUTCOMES>, KINDS> counts_{};
  std::map<std::string, std::uint64_t, std::less<>> channels_;
  std::size_t most_channels_;
  std::uint64_t other_channels_ = 0;
};

// The values of `map`, which have a `count` and the `first_number` of a record: the most frequent
// first, among equals the earliest. The pointers are valid as long as the values.
template <class Map>
[[nodiscard]] auto ranked(Map& map) {
  std::vector<decltype(&map.begin()->second)> values;
  values.reserve(map.size());
  for (auto& [key, value] : map) values.push_back(&value);
  std::sort(values.begin(), values.end(), [](const auto* one, const auto* other) {
    if (one->count != other->count) return one->count > other->count;
    return one->first_number < other->first_number;
  });
  return values;
}

} // namespace com::velanto::connectivity::tools

#endif
