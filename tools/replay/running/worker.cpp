#include "tools/replay/running/worker.hpp"

#include <algorithm>
#include <utility>

#include "ndjson/json_writer.hpp"

namespace com::velanto::connectivity::tools {

namespace {

bool sameMessage(const Message& one, const Message& other) {
  return toJson(one) == toJson(other) ||
         (one.getPayload() == other.getPayload() && one.getMetadataMap() == other.getMetadataMap());
}

// Takes elements equal to those of `front` off the front of `all`. False: they are not there.
template <class T, class Same>
bool takeFront(std::span<const T>& all, const std::vector<T>& front, Same same) {
  if (all.size() < front.size() || !std::equal(front.begin(), front.end(), all.begin(), same)) {
    return false;
  }
  all = all.subspan(front.size());
  return true;
}

} // namespace

void Worker::process(std::span<record_t> records, const Done& done) {
  while (!records.empty()) {
    std::size_t count = 0;
    batch_.clear();
    typed_before_.clear();
    const std::size_t most = lengthOfBatch(records);
    for (; count < most && (batching_.as_recorded || batch_.size() < batching_.size); ++count) {
      Message message;
      if (!read(records[count], message)) continue;
      typed_before_.push_back(metadata_.isTyped(message) ? 1 : 0);
      batch_.push_back(std::move(message));
    }
    sendBatch(records.first(count));
    for (record_t& record : records.first(count)) done(record);
    records = records.subspan(count);
  }
}

// How many of the records, from the first on, may go in one call.
std::size_t Worker::lengthOfBatch(std::span<const record_t> records) const noexcept {
  if (!batching_.as_recorded) return records.size();
  std::size_t count = 1;
  while (count < records.size() && sameBatch(records[count - 1], records[count])) ++count;
  return count;
}

// Reads the line's message, or notes why it has none.
bool Worker::read(record_t& record, Message& message) {
  record.outputs.clear();
  record.events.clear();
  record.log.clear();
  record.printed.clear();
  record.malformed = record.refused;
  record.column = 0;
  record.kind = Kind::NONE;
  record.outcome = Outcome::MALFORMED;
  if (!record.refused.empty()) return false;
  try {
    message = reader_.parseMessage(record.line);
  } catch (const MalformedJson& e) {
    record.malformed = e.what();
    record.column = e.column();
    return false;
  }
  record.outcome = Outcome::DROPPED;
  record.annotation = reader_.remark();
  record.kind = metadata_.kindOf(message);
  return true;
}

call_result_t& Worker::send(std::span<Message> messages, Direction direction) {
  call_result_t& result = chain_.send(messages, direction);
  incidents_.batches.push_back({messages.size(), result.time});
  return result;
}

void Worker::sendBatch(std::span<record_t> records) {
  if (batch_.empty()) return;
  call_result_t& result = send(batch_, wayOf(records.front()));
  if (result.failed) incidents_.failed.push_back(batch_.size());
  const bool whole = !result.failed && result.log.empty() && result.printed.empty() &&
                     result.outputs.size() == batch_.size();
  if (whole || batch_.size() == 1) {
    distribute(result, records);
  } else {
    separate(std::exchange(result, {}), records);
  }
}

// Gives each message its output, or the only message everything.
void Worker::distribute(call_result_t& result, std::span<record_t> records) {
  std::size_t next = 0;
  for (record_t& record : records) {
    if (record.outcome == Outcome::MALFORMED) continue;
    if (batch_.size() == 1) {
      std::swap(record.outputs, result.outputs);
      std::swap(record.log, result.log);
      std::swap(record.printed, result.printed);
    } else {
      record.outputs.push_back(std::move(result.outputs[next]));
    }
    if (!record.outputs.empty()) {
      const bool converted = typed_before_[next] == 0 && metadata_.isTyped(record.outputs.front());
      record.outcome = converted ? Outcome::CONVERTED : Outcome::PASSED;
    }
    ++next;
    conclude(record);
  }
}

void Worker::separate(const call_result_t& whole, std::span<record_t> records) {
  const std::vector<char> typed_before = std::exchange(typed_before_, {});
  std::size_t next = 0;
  std::span<const Message> outputs = whole.outputs; // not yet compared
  std::span<const log_line_t> log = whole.log;
  bool same = true;
  for (record_t& record : records) {
    if (record.outcome == Outcome::MALFORMED) continue;
    batch_.clear();
    batch_.push_back(reader_.parseMessage(record.line));
    typed_before_.assign(1, typed_before[next++]);
    call_result_t& alone = chain_.send(batch_, wayOf(record));
    distribute(alone, {&record, 1});
    same = same && takeFront(outputs, record.outputs, sameMessage) &&
           takeFront(log, record.log, std::equal_to<>());
  }
  if (!whole.failed && !(same && outputs.empty() && log.empty())) {
    incidents_.broken_laws.push_back(records.front().place() +
                                     ": the results of the messages depend on their batch, of " +
                                     std::to_string(typed_before.size()));
  }
}

void Worker::conclude(record_t& record) {
  if (record.outputs.size() > 1) {
    incidents_.broken_laws.push_back(record.place() + ": " + std::to_string(record.outputs.size()) +
                                     " messages came out for one");
  }
  for (const Message& output : record.outputs) {
    writeJson(record.events, output);
    record.events += '\n';
  }
}

} // namespace com::velanto::connectivity::tools
