#include "tools/record/drop_reason.hpp"

#include <algorithm>
#include <array>

namespace com::velanto::connectivity::tools {

namespace {

// `what` begins with `begin` and contains `then` after it. The key is `key`, or, when that is null,
// the part in the last quotes that `quoted` opens.
struct reason_row_t {
  const char* begin;
  const char* then;
  const char* code;
  const char* key;
  const char* quoted;
};

// The first row that fits decides; the last one fits every text.
constexpr std::array ROWS = {
    reason_row_t{"Required key '", "' missing from message payload", "missing-key", nullptr,
                 "key '"},
    reason_row_t{"Required key 'id' missing from source", "", "missing-key", "source.id", nullptr},
    reason_row_t{"Required key '", "' missing from ", "missing-key", nullptr, "key '"},
    reason_row_t{"Value for key '", "' is not a string.", "wrong-type", nullptr, "key '"},
    reason_row_t{"Problem with key '", "': Incorrect type in get", "wrong-type", nullptr, "key '"},
    reason_row_t{"Problem with key '", "': Get from empty", "wrong-type", nullptr, "key '"},
    reason_row_t{"Incorrect type in get", "", "wrong-type", "", nullptr},
    reason_row_t{"Get from empty", "", "wrong-type", "", nullptr},
    reason_row_t{"Message payload is not a map", "", "wrong-type", "payload", nullptr},
    reason_row_t{"Error parsing timestamp '", "' in key '", "bad-timestamp", nullptr, "key '"},
    reason_row_t{"Unrecognized alarm severity: ", "", "bad-severity", "severity", nullptr},
    reason_row_t{"Unrecognized alarm status: ", "", "bad-status", "status", nullptr},
    reason_row_t{"Unrecognized operation status: ", "", "bad-status", "status", nullptr},
    reason_row_t{"Unrecognised Pulsar message type: ''", "", "no-path-segment", "pulsarPath",
                 nullptr},
    reason_row_t{"Unrecognised Pulsar message type: '", "", "unknown-kind", "pulsarPath", nullptr},
    reason_row_t{"std::bad_alloc", "", "out-of-memory", "", nullptr},
    reason_row_t{"Exception from sendBatch", "", "batch-failed", "", nullptr},
    reason_row_t{"", "", "other", "", nullptr},
};

bool fits(const reason_row_t& row, std::string_view what) noexcept {
  if (!what.starts_with(row.begin)) return false;
  const std::size_t after = std::string_view(row.begin).size();
  return what.find(row.then, after) != std::string_view::npos;
}

std::string keyOf(const reason_row_t& row, std::string_view what) {
  if (row.key != nullptr) return row.key;
  const std::size_t opening = what.rfind(row.quoted);
  const std::size_t begin = opening + std::string_view(row.quoted).size();
  return std::string(what.substr(begin, what.find('\'', begin) - begin));
}

// The rest of a log line after the label and the words that all of these lines share.
std::string_view whatOf(std::string_view line) noexcept {
  constexpr std::string_view BEGIN = "Error when transforming message towards ";
  if (line.starts_with('<')) line.remove_prefix(std::min(line.find("> ") + 2, line.size()));
  if (!line.starts_with(BEGIN)) return line;
  line.remove_prefix(BEGIN.size());
  const std::size_t id = line.find(" ('id' = '");
  const std::size_t colon = line.find(": ");
  if (id != std::string_view::npos && id < colon) {
    constexpr std::string_view AFTER_ID = "'): ";
    const std::size_t end = line.find(AFTER_ID);
    return end == std::string_view::npos ? "" : line.substr(end + AFTER_ID.size());
  }
  return colon == std::string_view::npos ? "" : line.substr(colon + 2);
}

} // namespace

drop_reason_t dropReasonOfText(std::string_view what) {
  const auto* const row = std::find_if(ROWS.begin(), ROWS.end(),
                                       [&](const reason_row_t& each) { return fits(each, what); });
  return {row->code, keyOf(*row, what), {}};
}

drop_reason_t dropReasonOf(std::span<const log_line_t> log) {
  for (const log_line_t& line : log) {
    if (line.level > DROPPED_LEVEL) continue; // a trace
    drop_reason_t reason = dropReasonOfText(whatOf(line.text));
    reason.text = line.text;
    return reason;
  }
  return {"unreported", {}, {}};
}

} // namespace com::velanto::connectivity::tools
