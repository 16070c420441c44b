#include "tools/record/tally.hpp"

namespace com::velanto::connectivity::tools {

void Tally::take(const record_t& record) {
  add(record.kind, record.outcome, 1);
  if (record.outcome != Outcome::CONVERTED) return;
  for (const Message& output : record.outputs) addEvents(metadata_.channelOf(output), 1);
}

void Tally::addEvents(std::string_view channel, std::uint64_t events) {
  const auto found = channels_.find(channel);
  if (found != channels_.end()) {
    found->second += events;
  } else if (channels_.size() == most_channels_) {
    other_channels_ += events;
  } else {
    channels_.emplace(channel, events);
  }
}

std::uint64_t Tally::count(Kind kind) const noexcept {
  std::uint64_t sum = 0;
  for (const Outcome outcome : {Outcome::CONVERTED, Outcome::PASSED, Outcome::DROPPED}) {
    sum += count(kind, outcome);
  }
  return sum;
}

std::uint64_t Tally::count(Outcome outcome) const noexcept {
  std::uint64_t sum = 0;
  for (const auto& of_kind : counts_) sum += of_kind[static_cast<std::size_t>(outcome)];
  return sum;
}

std::vector<std::pair<std::string, std::uint64_t>> Tally::channels() const {
  std::vector<std::pair<std::string, std::uint64_t>> ranked(channels_.begin(), channels_.end());
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  return ranked;
}

} // namespace com::velanto::connectivity::tools
