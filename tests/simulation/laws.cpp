#include "tests/simulation/laws.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tests/docs/markdown.hpp"

namespace com::velanto::connectivity::simulation {

namespace {

using fuzz::find;
using fuzz::put;
using fuzz::text;

constexpr const char* STAMP = "simulated stamp";
constexpr vlt_log_level_t SETUP_LEVEL = 2;
constexpr vlt_log_level_t FAILURE_LEVEL = 3;
constexpr vlt_log_level_t TRACE_LEVEL = 6;

bool isEmpty(const message_t& message) {
  return message.payload.tag == VLT_TAG_EMPTY && !message.metadata.exists;
}

bool isNotification(const message_t& message) {
  return message.payload.tag != VLT_TAG_EMPTY && find(message.metadata, "pulsarPath") != nullptr;
}

// In the payload, where a conversion carries it over; in the metadata of a message without fields.
void stamp(message_t& message, std::size_t number) {
  if (isEmpty(message)) return;
  const bool has_fields = message.payload.tag == VLT_TAG_MAP;
  test::model::value_t value;
  value.tag = VLT_TAG_INTEGER;
  value.bits = number;
  put(has_fields ? message.payload.table : message.metadata, text(STAMP), value);
}

// 0: none.
std::size_t stampOf(const Message& message) {
  static const data_t KEY(STAMP);
  const auto* const fields = message.getPayload().get_if<map_t>();
  const map_t& bearer = fields == nullptr ? message.getMetadataMap() : *fields;
  const data_t* const value = bearer.find_value(KEY);
  return value == nullptr ? 0 : static_cast<std::size_t>(value->get<std::int64_t>());
}

// An empty range begins and ends here.
Message nowhere; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

std::string labelOf(const log_line_t& line) { return "<" + line.category + "> "; }

std::size_t linesLike(const char* beginning, const lines_t& lines) {
  const auto is_it = [=](const log_line_t& line) {
    return line.text.starts_with(labelOf(line) + beginning);
  };
  return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), is_it));
}

} // namespace

std::string describe(const figures_t& figures) {
  return std::to_string(figures.steps) + " steps, " + std::to_string(figures.sent) +
         " messages sent, " + std::to_string(figures.arrived) + " arrived, " +
         std::to_string(figures.dropped) + " dropped, " + std::to_string(figures.recorded) +
         " recorded; " + std::to_string(figures.refusals) + " steps without memory, " +
         std::to_string(figures.failed_links) + " failed links, " + std::to_string(figures.parked) +
         " batches with other threads in between";
}

sending_t::sending_t(const step_t& sent_by, Direction towards)
    : step(sent_by),
      direction(towards),
      messages([&] {
        std::vector<message_t> stamped = messagesOf(sent_by);
        for (std::size_t i = 0; i < stamped.size(); ++i) stamp(stamped[i], i + 1);
        return stamped;
      }()),
      batch(messages),
      start(messages.empty() ? (sent_by.seed % 2 == 0 ? nullptr : &nowhere) : batch.begin()) {}

Laws::Laws() {
  constexpr std::string_view REASON = "REASON";
  const test::document_t operating = test::readDocument("docs/operating.md");
  const auto reasons = readTable(operating, "Reason");
  for (const auto& document : {operating, test::readDocument("docs/recording.md")}) {
    for (const auto& row : readTable(document, "Level")) {
      if (!row[1].ends_with(REASON)) {
        forms_.push_back({row[0], row[1]});
        continue;
      }
      const std::string before = row[1].substr(0, row[1].size() - REASON.size());
      for (const auto& reason : reasons) forms_.push_back({row[0], before + reason[0]});
    }
  }
  static_cast<void>(stampOf(Message())); // its key is a block of the host
}

void Laws::require(bool holds, const char* law, const std::string& detail) {
  if (holds) return;
  const std::lock_guard guard(lock_);
  if (!breach_) breach_ = {law, detail};
}

void Laws::requireSame(std::size_t actual, std::size_t expected, const char* law,
                       const char* what) {
  require(actual == expected, law,
          std::to_string(actual) + " instead of " + std::to_string(expected) + " " + what);
}

// A message without a stamp is an empty one; these may not be missing.
void Laws::judgeArrival(sending_t& sending, const Message* start, const Message* end) {
  const std::vector<message_t>& sent = sending.messages;
  const auto size = static_cast<std::ptrdiff_t>(sent.size());
  require(++sending.arrivals == 1, "links", "a batch arrives again");
  const bool is_front = start == sending.start && end >= start && end - start <= size;
  require(is_front, "links", "not the front of the batch arrives");
  if (!is_front) return;
  sending.kept = static_cast<std::size_t>(end - start);
  std::size_t next = 0; // of the messages sent
  for (const Message* message = start; message != end; ++message) {
    const std::size_t stamped = stampOf(*message);
    const auto empty =
        std::find_if(sent.begin() + static_cast<std::ptrdiff_t>(next), sent.end(), isEmpty);
    const std::size_t found =
        stamped != 0 ? stamped - 1 : static_cast<std::size_t>(empty - sent.begin());
    const bool is_later = found >= next && found < sent.size();
    require(is_later, "order",
            "message " + std::to_string(stamped) + " after message " + std::to_string(next));
    if (!is_later) return;
    judgeMissing(sending, next, found);
    next = found + 1;
    if (sending.direction == Direction::TOWARDS_HOST && isNotification(sent[found])) continue;
    const auto& arrived = reinterpret_cast<const vlt_underlying_message_t&>(*message);
    const std::string changed = difference(arrived, sent[found]);
    require(changed.empty(), "order", "message " + std::to_string(next) + ": " + changed);
  }
  judgeMissing(sending, next, sent.size());
  figures.arrived += sending.kept;
}

void Laws::judgeMissing(const sending_t& sending, std::size_t from, std::size_t to) {
  for (; from < to; ++from) {
    const message_t& missing = sending.messages[from];
    const bool may_be = isNotification(missing) || (sending.was_refused && !isEmpty(missing));
    require(sending.direction == Direction::TOWARDS_HOST && may_be, "order",
            "message " + std::to_string(from + 1) + " is missing");
  }
}

void Laws::judgeSending(const sending_t& sending, std::size_t plugins, vlt_log_level_t level,
                        int result) {
  const std::vector<message_t>& sent = sending.messages;
  const bool is_to_host = sending.direction == Direction::TOWARDS_HOST;
  const auto at = [=](vlt_log_level_t least, std::size_t count) {
    return level >= least ? count : 0;
  };
  require(result == (sending.has_failed ? 1 : 0), "calls", "a batch returns another result");
  require((sending.arrivals == 1) == sending.must_arrive, "links", "a batch does not arrive");
  const std::size_t failures = linesLike("Exception from sendBatch", sending.lines) +
                               linesLike("Unknown exception from sendBatch", sending.lines);
  requireSame(failures, at(FAILURE_LEVEL, sending.has_failed ? plugins : 0), "calls",
              "lines about a failed link");
  const std::size_t reports = linesLike("Error when transforming message ", sending.lines);
  const std::size_t dropped = is_to_host && sending.must_arrive ? sent.size() - sending.kept : 0;
  if (sending.must_arrive || !is_to_host) {
    requireSame(reports, at(FAILURE_LEVEL, dropped), "counts", "lines about dropped messages");
  }
  const std::size_t traces = linesLike("Processing message: ", sending.lines);
  const auto notifications =
      static_cast<std::size_t>(std::count_if(sent.begin(), sent.end(), isNotification));
  if (!sending.was_refused) {
    requireSame(traces, at(TRACE_LEVEL, is_to_host ? notifications : 0), "counts", "traces");
  }
  requireSame(sending.lines.size(), failures + reports + traces, "log", "lines");
  for (const log_line_t& line : sending.lines) judgeLine(line, level);
  figures.sent += sent.size();
  figures.dropped += reports;
  figures.failed_links += sending.has_failed ? 1 : 0;
  figures.refusals += sending.was_refused ? 1 : 0;
}

void Laws::judgeCall(bool failed, bool must_fail, bool was_refused, const lines_t& lines,
                     vlt_log_level_t level) {
  require(failed ? must_fail || was_refused : !must_fail, "calls",
          failed ? "a call fails for no reason" : "a call succeeds that must fail");
  const bool is_excused = was_refused && lines.empty(); // no memory for the line
  if (!is_excused) {
    requireSame(lines.size(), failed && level >= SETUP_LEVEL ? 1 : 0, "calls", "lines");
  }
  for (const log_line_t& line : lines) judgeLine(line, level);
  figures.refusals += was_refused ? 1 : 0;
}

void Laws::judgeLine(const log_line_t& line, vlt_log_level_t level) {
  const std::string label = labelOf(line);
  const auto is_it = [&](const form_t& form) {
    return std::to_string(line.level) == form.level &&
           test::matches(form.pattern, std::string_view(line.text).substr(label.size()));
  };
  require(line.level <= level, "log", "at level " + std::to_string(level) + ": " + line.text);
  require(line.text.starts_with(label) && std::any_of(forms_.begin(), forms_.end(), is_it), "log",
          "in no table: " + std::to_string(line.level) + " " + line.text);
}

void Laws::judgeRecording(const std::string& folder, const std::string& name,
                          const test::foot_t& expected, bool may_have_lost) {
  try {
    const auto files = test::readRecording(folder, name);
    const std::string breach = breachIn(files);
    require(breach.empty(), "recordings", breach);
    figures.recorded += static_cast<std::size_t>(recordsIn(files));
    if (may_have_lost) return;
    const auto records = static_cast<std::size_t>(recordsIn(files));
    requireSame(records, static_cast<std::size_t>(expected.recorded), "recordings", "records");
    if (files.empty()) return;
    const std::optional<test::foot_t>& foot = files.back().foot;
    require(foot && foot->seen == expected.seen && foot->recorded == expected.recorded,
            "recordings", name + " ends with another foot, or without");
  } catch (const std::exception& e) {
    require(false, "recordings", name + ": " + e.what());
  }
}

} // namespace com::velanto::connectivity::simulation
