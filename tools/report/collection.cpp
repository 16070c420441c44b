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
  Tally::take(record);
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
    ways_.emplace(key, way_t{shape, 1, record.number, exampleOf(record)});
  }
}

void Collection::takeBatch(std::size_t messages, std::chrono::nanoseconds time) {
  constexpr std::int64_t NANOSECONDS = 1000; // of a microsecond
  batch_sizes_.add(messages);
  batch_times_.add(static_cast<std::uint64_t>(std::max<std::int64_t>(0, time.count())) /
                   NANOSECONDS);
}

} // namespace com::velanto::connectivity::tools::report
