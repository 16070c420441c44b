#include "tools/replay/writing/diagnostics.hpp"

#include "ndjson/json_line.hpp"
#include "ndjson/visible_text.hpp"

namespace com::velanto::connectivity::tools {

namespace {

std::string jsonOf(const log_line_t& logged, const std::string& place) {
  JsonLine line;
  line.open('{');
  if (!place.empty()) line.item("at").text(place);
  line.item("level").raw(std::to_string(logged.level));
  line.item("text").text(logged.text);
  line.close('}');
  return std::move(line).take();
}

std::string malformedJson(const record_t& record) {
  JsonLine line;
  line.open('{');
  line.item("at").text(record.place());
  if (record.column != 0) line.item("column").number(record.column);
  line.item("malformed").text(record.malformed);
  line.close('}');
  return std::move(line).take();
}

std::string malformedText(const record_t& record) {
  std::string line = record.place();
  if (record.column != 0) line.append(":").append(std::to_string(record.column));
  return visible(line.append(": ").append(record.malformed)) + "\n";
}

} // namespace

void Diagnostics::take(const record_t& record) {
  if (record.outcome == Outcome::MALFORMED) {
    out_ << (format_ == LogFormat::JSON ? malformedJson(record) : malformedText(record));
  }
  if (!record.log.empty()) show(record.log, record.place());
}

void Diagnostics::show(std::span<const log_line_t> lines, const std::string& place) {
  for (const log_line_t& line : lines) {
    if (line.level > level_) continue;
    if (format_ == LogFormat::JSON) {
      out_ << jsonOf(line, place);
    } else {
      out_ << visible(place + (place.empty() ? "" : ": ") + line.text) + "\n";
    }
  }
}

} // namespace com::velanto::connectivity::tools
