#include "tools/replay/comparing/recorded_batches.hpp"

#include <algorithm>
#include <utility>

#include "tools/replay/input/inputs.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// A batch takes less time between the two recorders.
constexpr std::int64_t ON_THE_WAY = 10'000'000; // nanoseconds

std::string runOf(const record_t& record) { return record.run == nullptr ? "" : *record.run; }

bool isOf(const recorded_batch_t& batch, const record_t& record) {
  return record.recorded->batch == batch.first.batch &&
         record.recorded->direction == batch.first.direction && runOf(record) == batch.run;
}

} // namespace

RecordedBatches::RecordedBatches(const std::string& path) : reader_(inputsFrom({path}), {}) {
  readLine();
}

std::optional<recorded_batch_t> RecordedBatches::take(const std::string& run,
                                                      const recorded_t& wanted) {
  forget(run, wanted);
  while (true) {
    const auto known = std::find(runs_.begin(), runs_.end(), run);
    const auto found = ahead_.find(
        {static_cast<std::size_t>(known - runs_.begin()), wanted.batch, wanted.direction});
    if (found != ahead_.end()) {
      recorded_batch_t batch = std::move(found->second);
      ahead_.erase(found);
      return batch;
    }
    if (isBeyond(run, wanted) || !readBatch()) return {};
    forget(run, wanted);
  }
}

// Reads up to the next line with a remark.
bool RecordedBatches::readLine() {
  while (true) {
    has_next_ = reader_.next(next_);
    if (!has_next_ || next_.recorded) return has_next_;
    ++untaken_;
  }
}

bool RecordedBatches::readBatch() {
  if (!has_next_) return false;
  recorded_batch_t batch{runOf(next_), *next_.recorded, {}};
  last_run_ = batch.run;
  last_ = batch.first;
  if (runs_.empty() || runs_.back() != batch.run) runs_.push_back(batch.run);
  do {
    noteTime();
    batch.lines.push_back({next_.place(), next_.line});
  } while (readLine() && isOf(batch, next_));
  if (!has_next_ || runOf(next_) != batch.run) endSpan();
  const key_t key{runs_.size() - 1, batch.first.batch, batch.first.direction};
  const auto [place, is_new] = ahead_.try_emplace(key, std::move(batch));
  if (!is_new) untaken_ += batch.lines.size(); // a number used twice: the first one counts
  return true;
}

// Takes the time of the next line into the span of messages without a missing number.
void RecordedBatches::noteTime() {
  const recording_t* const recording = reader_.recordings().current();
  if (recording == nullptr) return; // nothing is known about it
  const recorded_t& recorded = *next_.recorded;
  const bool is_sample = recording->one_in > 1 && !recording->filters;
  if (!spans_.empty()) {
    span_t& last = spans_.back();
    const bool goes_on = last.run == recording->run && last.session == recording->sessions &&
                         last.gaps == recording->gaps;
    if (goes_on && (is_sample || last.number + 1 == recorded.number)) {
      last.end = recorded.time - ON_THE_WAY;
      last.number = recorded.number;
      return;
    }
  }
  const bool from_start = recording->gaps == 0 && recording->sessions == 1 &&
                          (recorded.number == 1 || (is_sample && recording->files.front() == 1));
  spans_.push_back({recording->run, is_sample ? recording->one_in : 1, recording->sessions,
                    recording->gaps, from_start ? recording->started : recorded.time,
                    recorded.time - ON_THE_WAY, recorded.number});
}

// Nothing was missing up to the orderly end of the recorder.
void RecordedBatches::endSpan() {
  if (spans_.empty()) return;
  span_t& last = spans_.back();
  for (const recording_t& recording : recordings().all()) {
    const bool is_its = recording.run == last.run && recording.sessions == last.session &&
                        recording.gaps == last.gaps && recording.ended != 0;
    if (is_its && (last.one_in > 1 || recording.counts->seen == last.number)) {
      last.end = recording.ended;
    }
  }
}

bool RecordedBatches::sawNothingOf(const std::string& run, const recorded_t& wanted,
                                   std::uint64_t one_in) const {
  return std::any_of(spans_.begin(), spans_.end(), [&](const span_t& span) {
    return span.run == run && (span.one_in == 1 || span.one_in == one_in) &&
           span.begin <= wanted.time && wanted.time <= span.end;
  });
}

// Whether the batch read last is so far behind the wanted one that none of that number comes.
bool RecordedBatches::isBeyond(const std::string& run, const recorded_t& wanted) const {
  if (!last_) return false;
  const bool later = last_->time > wanted.time + ON_THE_WAY;
  return later && (last_run_ != run || last_->batch > wanted.batch + WINDOW);
}

// Drops batches so far before the wanted one that nobody will ask for them.
void RecordedBatches::forget(const std::string& run, const recorded_t& wanted) {
  while (!ahead_.empty()) {
    const recorded_batch_t& oldest = ahead_.begin()->second;
    const bool stale = oldest.run == run ? oldest.first.batch + WINDOW < wanted.batch
                                         : oldest.first.time < wanted.time;
    if (!stale) break;
    untaken_ += oldest.lines.size();
    ahead_.erase(ahead_.begin());
  }
  constexpr std::int64_t LONG_AGO = 60'000'000'000; // nanoseconds
  while (spans_.size() > 1 && spans_.front().end < wanted.time - LONG_AGO) spans_.pop_front();
}

std::uint64_t RecordedBatches::finish() {
  do {
    for (const auto& [key, batch] : ahead_) untaken_ += batch.lines.size();
    ahead_.clear();
    spans_.clear();
  } while (readBatch());
  return untaken_;
}

} // namespace com::velanto::connectivity::tools
