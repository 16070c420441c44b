#include "tools/replay/writing/golden.hpp"

#include "identity/build_name.hpp"
#include "ndjson/json_text.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::string_view AT = "{\"at\":";
constexpr std::string_view BEHIND_AT = ",\"outcome\":";
constexpr std::string_view REMARK = R"({"made by":)";

std::string beginOf(std::string_view place, std::string_view outcome) {
  std::string line(AT);
  appendJsonText(line, place);
  line += BEHIND_AT;
  appendJsonText(line, outcome);
  return line;
}

// More than one event is a broken law, but the file records it.
void appendEvents(std::string& line, std::string_view events) {
  for (int number = 1; !events.empty(); ++number) {
    const std::size_t end = events.find('\n');
    line += ",\"event";
    if (number > 1) line += std::to_string(number);
    line += "\":";
    line += events.substr(0, end);
    events.remove_prefix(end + 1);
  }
}

void appendLog(std::string& line, std::span<const log_line_t> log) {
  if (log.empty()) return;
  line += ",\"log\":[";
  for (const log_line_t& entry : log) {
    if (&entry != log.data()) line += ',';
    line += "{\"level\":" + std::to_string(entry.level) + ",\"text\":";
    appendJsonText(line, entry.text);
    line += '}';
  }
  line += ']';
}

} // namespace

std::string goldenLineOf(const record_t& record) {
  std::string line = beginOf(record.place(), nameOf(record.outcome));
  appendEvents(line, record.events);
  if (record.outcome == Outcome::MALFORMED) {
    line += ",\"reason\":";
    appendJsonText(line, record.malformed);
  }
  appendLog(line, record.log);
  line += '}';
  return line;
}

std::string goldenLineOf(std::span<const log_line_t> lines) {
  std::string line = beginOf("", "no message");
  appendLog(line, lines);
  line += '}';
  return line;
}

std::string goldenRemark(const std::string& plugin_build) {
  std::string line(REMARK);
  appendJsonText(line, VLT_BUILD_NAME);
  line += R"(,"plug-in":)";
  appendJsonText(line, plugin_build);
  return line + "}";
}

bool isGoldenLine(std::string_view line) noexcept {
  return line.starts_with(AT) && line.find(BEHIND_AT) != std::string_view::npos;
}

bool isGoldenRemark(std::string_view golden_line) noexcept {
  return golden_line.starts_with(REMARK);
}

std::string_view contentOf(std::string_view golden_line) noexcept {
  const std::size_t begin = golden_line.find(BEHIND_AT);
  return begin == std::string_view::npos ? golden_line : golden_line.substr(begin);
}

} // namespace com::velanto::connectivity::tools
