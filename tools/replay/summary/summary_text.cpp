#include <array>
#include <cstdio>

#include "ndjson/visible_text.hpp"
#include "tools/record/columns.hpp"
#include "tools/replay/summary/summary.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::array SHOWN = {Outcome::CONVERTED, Outcome::PASSED, Outcome::DROPPED};

std::string number(double value, const char* format) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format,
                value); // NOLINT(clang-diagnostic-format-nonliteral)
  return text.data();
}

std::string microsecondsText(std::chrono::nanoseconds time) {
  return number(static_cast<double>(time.count()) / 1e3, "%.1f µs");
}

void appendKinds(std::string& out, const Summary& summary) {
  out += padded("", 16);
  for (const Outcome outcome : SHOWN) out += leftPadded(nameOf(outcome), 12);
  out += '\n';
  for (std::size_t i = 0; i < KINDS; ++i) {
    const Kind kind = static_cast<Kind>(i);
    if (summary.count(kind) == 0) continue;
    out += padded(nameOf(kind), 16);
    for (const Outcome outcome : SHOWN) {
      out += leftPadded(std::to_string(summary.count(kind, outcome)), 12);
    }
    out += '\n';
  }
  out += padded("all", 16);
  for (const Outcome outcome : SHOWN) {
    out += leftPadded(std::to_string(summary.count(outcome)), 12);
  }
  out += '\n';
  const std::uint64_t malformed = summary.count(Outcome::MALFORMED);
  if (malformed > 0) out += "malformed lines: " + std::to_string(malformed) + "\n";
}

void appendReasons(std::string& out, const Summary& summary) {
  const std::vector<const counted_reason_t*> reasons = summary.reasons();
  if (reasons.empty()) return;
  out += '\n';
  out += leftPadded("dropped", 12) + "  " + padded("reason", 16) + padded("key", 20) + "first in\n";
  for (const counted_reason_t* reason : reasons) {
    out += leftPadded(std::to_string(reason->count), 12) + "  " + padded(reason->code, 16) +
           padded(cutBehind(reason->key, 19), 20) + visible(reason->first) + "\n";
  }
}

void appendChannels(std::string& out, const Summary& summary) {
  const auto channels = summary.channels();
  if (channels.empty()) return;
  out += '\n';
  out += leftPadded("events", 12) + "  channel\n";
  for (const auto& [channel, count] : channels) {
    out += leftPadded(std::to_string(count), 12) + "  " + cutBehind(channel, 65) + "\n";
  }
}

void appendBuilds(std::string& out, const builds_t& builds) {
  const auto append = [&out](const char* name, const std::string& build) {
    out += padded(name, 9) + cutBehind(build, 70) + "\n";
  };
  append("tool", builds.tool);
  append("plug-in", buildText(builds.plugin));
  if (builds.against) append("against", buildText(*builds.against));
}

} // namespace

std::string summaryText(const Summary& summary, const run_figures_t& run) {
  std::string out = "\n";
  appendKinds(out, summary);
  appendReasons(out, summary);
  appendChannels(out, summary);
  const double seconds = std::chrono::duration<double>(run.elapsed).count();
  const double rate = seconds > 0 ? static_cast<double>(run.read) / seconds : 0;
  out += '\n';
  appendBuilds(out, summary.builds());
  out += number(rate, "%.0f messages/s") + ", a batch: median " +
         microsecondsText(summary.batches().quantile(0.5)) + ", 99th percentile " +
         microsecondsText(summary.batches().quantile(0.99)) + "\n";
  return out;
}

} // namespace com::velanto::connectivity::tools
