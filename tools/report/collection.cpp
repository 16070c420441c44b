#include "tools/report/collection.hpp"

#include <algorithm>

#include "tools/explain/change.hpp"
#include "tools/record/drop_reason.hpp"
#include "tools/report/shape.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

example_t exampleOf(const record_t& record) {
  example_t example;
  example.place = record.place();
  example.whole = record.line.size() <= Collection::LONGEST_EXAMPLE;
  example.record.number = record.number;
  example.record.line = record.line.substr(0, Collection::LONGEST_EXAMPLE);
  example.record.recorded = record.recorded;
  example.record.kind = record.kind;
  example.record.outcome = record.outcome;
  example.record.log = record.log;
  if (!example.whole) return example;
  for (const Message& output : record.outputs) example.record.outputs.push_back(copyOf(output));
  return example;
}

} // namespace

void Collection::take(const record_t& record) {
  ++counts_[static_cast<std::size_t>(record.kind)][static_cast<std::size_t>(record.outcome)];
  if (record.outcome == Outcome::MALFORMED) {
    if (malformed_.size() < MOST_MALFORMED) {
      malformed_.push_back({record.place(), record.malformed});
    }
    return;
  }
  const bool dropped = record.outcome == Outcome::DROPPED;
  const Message message = reader_.parseMessage(record.line);
  if (const std::optional<std::int64_t> seconds = own_time_.timeOf(message)) {
    times_.add(*seconds, record.kind, dropped);
  }
  places_.add(static_cast<std::int64_t>(record.number) - 1, record.kind, dropped);
  if (dropped) return takeReason(record);
  takeWay(record, message);
  takeChannels(record);
}

void Collection::takeReason(const record_t& record) {
  const drop_reason_t reason = dropReasonOf(record.log);
  const std::pair key(std::string(reason.code), reason.key);
  if (reasons_.size() == MOST_REASONS && !reasons_.contains(key)) {
    ++other_reasons_;
    return;
  }
  reason_t& counted = reasons_[key];
  if (counted.count++ == 0) {
    counted.code = reason.code;
    counted.key = reason.key;
    counted.first_number = record.number;
  }
  if (counted.places.size() < PLACES) counted.places.push_back(record.place());
  if (counted.examples.size() < EXAMPLES) counted.examples.push_back(exampleOf(record));
}

void Collection::takeWay(const record_t& record, const Message& message) {
  std::uint64_t shape = shapeOf(message);
  for (const Message& output : record.outputs) shape = combined(shape, shapeOf(output));
  const std::tuple key(record.kind, record.outcome, shape);
  const auto found = ways_.find(key);
  if (found != ways_.end()) {
    ++found->second.count;
  } else if (ways_.size() == MOST_WAYS) {
    ++other_ways_;
  } else {
    ways_.emplace(key, way_t{shape, 1, exampleOf(record)});
  }
}

void Collection::takeChannels(const record_t& record) {
  if (record.outcome != Outcome::CONVERTED) return;
  for (const Message& output : record.outputs) {
    const std::string_view channel = metadata_.channelOf(output);
    const auto found = channels_.find(channel);
    if (found != channels_.end()) {
      ++found->second;
    } else if (channels_.size() == MOST_CHANNELS) {
      ++other_channels_;
    } else {
      channels_.emplace(channel, 1);
    }
  }
}

void Collection::takeBatch(std::size_t messages, std::chrono::nanoseconds time) {
  constexpr std::int64_t NANOSECONDS = 1000; // of a microsecond
  batch_sizes_.add(messages);
  batch_times_.add(static_cast<std::uint64_t>(std::max<std::int64_t>(0, time.count())) /
                   NANOSECONDS);
}

std::uint64_t Collection::count(Kind kind) const noexcept {
  std::uint64_t sum = 0;
  for (const Outcome outcome : {Outcome::CONVERTED, Outcome::PASSED, Outcome::DROPPED}) {
    sum += count(kind, outcome);
  }
  return sum;
}

std::uint64_t Collection::count(Outcome outcome) const noexcept {
  std::uint64_t sum = 0;
  for (const auto& of_kind : counts_) sum += of_kind[static_cast<std::size_t>(outcome)];
  return sum;
}

std::vector<reason_t*> Collection::reasons() {
  std::vector<reason_t*> ranked;
  for (auto& [key, reason] : reasons_) ranked.push_back(&reason);
  std::sort(ranked.begin(), ranked.end(), [](const reason_t* one, const reason_t* other) {
    if (one->count != other->count) return one->count > other->count;
    return one->first_number < other->first_number;
  });
  return ranked;
}

std::vector<way_t*> Collection::ways() {
  std::vector<way_t*> ranked;
  for (auto& [key, way] : ways_) ranked.push_back(&way);
  std::sort(ranked.begin(), ranked.end(), [](const way_t* one, const way_t* other) {
    if (one->count != other->count) return one->count > other->count;
    return one->example.record.number < other->example.record.number;
  });
  return ranked;
}

std::vector<std::pair<std::string, std::uint64_t>> Collection::channels() const {
  std::vector<std::pair<std::string, std::uint64_t>> ranked(channels_.begin(), channels_.end());
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  return ranked;
}

} // namespace com::velanto::connectivity::tools::report
