#include "tools/record/tally.hpp"

namespace com::velanto::connectivity::tools {

void Tally::take(const record_t& record) {
  ++counts_[static_cast<std::size_t>(record.kind)][static_cast<std::size_t>(record.outcome)];
  if (record.outcome != Outcome::CONVERTED) return;
  for (const Message& output : record.outputs) {
    const std::string_view channel = metadata_.channelOf(output);
    const auto found = channels_.find(channel);
    if (found != channels_.end()) {
      ++found->second;
    } else if (channels_.size() == most_channels_) {
      ++other_channels_;
    } else {
      channels_.emplace(channel, 1);
    }
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
