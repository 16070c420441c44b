#include "tools/replay/summary/summary.hpp"

#include <algorithm>

#include "tools/record/drop_reason.hpp"

namespace com::velanto::connectivity::tools {

void Summary::take(const record_t& record) {
  ++counts_[static_cast<std::size_t>(record.kind)][static_cast<std::size_t>(record.outcome)];
  if (record.outcome == Outcome::DROPPED) {
    drop_reason_t reason = dropReasonOf(record.log);
    reason_count_t& counted = reasons_[{reason.code, std::move(reason.key)}];
    if (counted.count++ == 0) {
      counted.first_number = record.number;
      counted.first = record.place();
    }
  }
  if (record.outcome != Outcome::CONVERTED) return;
  for (const Message& output : record.outputs) {
    const std::string_view channel = metadata_.channelOf(output);
    const auto found = channels_.find(channel);
    if (found != channels_.end()) {
      ++found->second;
    } else {
      channels_.emplace(channel, 1);
    }
  }
}

void Summary::takeBatch(std::size_t, std::chrono::nanoseconds time) { batches_.add(time); }

std::uint64_t Summary::count(Outcome outcome) const noexcept {
  std::uint64_t sum = 0;
  for (const auto& of_kind : counts_) sum += of_kind[static_cast<std::size_t>(outcome)];
  return sum;
}

std::vector<ranked_reason_t> Summary::reasons() const {
  using entry_t = std::pair<std::pair<std::string, std::string>, reason_count_t>;
  std::vector<entry_t> entries(reasons_.begin(), reasons_.end());
  std::sort(entries.begin(), entries.end(), [](const entry_t& a, const entry_t& b) {
    if (a.second.count != b.second.count) return a.second.count > b.second.count;
    return a.second.first_number < b.second.first_number;
  });
  std::vector<ranked_reason_t> ranked;
  ranked.reserve(entries.size());
  for (const entry_t& entry : entries) {
    ranked.push_back(
        {entry.first.first, entry.first.second, entry.second.count, entry.second.first});
  }
  return ranked;
}

std::vector<std::pair<std::string, std::uint64_t>> Summary::channels() const {
  std::vector<std::pair<std::string, std::uint64_t>> ranked(channels_.begin(), channels_.end());
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  return ranked;
}

} // namespace com::velanto::connectivity::tools
