#include "tools/explain/explanation.hpp"

#include <algorithm>

#include "tools/explain/rows.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t MOST_MEBIBYTES = 6;
constexpr std::size_t MOST_STEPS = 1'000'000; // of all paths

bool isUnchanged(const row_t& row) { return row.fate == Fate::UNCHANGED; }

// The steps of the paths of all values, and WEIGHT more for each value itself.
std::size_t stepsIn(std::string_view json) noexcept {
  constexpr std::size_t WEIGHT = 16;
  std::size_t steps = 0;
  std::size_t depth = 0;
  bool in_text = false;
  for (std::size_t i = 0; i < json.size(); ++i) {
    const char c = json[i];
    if (c == '"') in_text = !in_text;
    if (c == '\\') ++i;
    if (in_text) continue;
    if (c == '{' || c == '[') ++depth;
    if ((c == '}' || c == ']') && depth > 0) --depth;
    if (c == '{' || c == '[' || c == ',') steps += depth + WEIGHT;
  }
  return steps;
}

} // namespace

std::string whyTooLarge(std::string_view line) {
  if (line.size() > MOST_MEBIBYTES << 20U) {
    return "everything: explanations reach up to " + std::to_string(MOST_MEBIBYTES) +
           " MiB, this message has " + std::to_string(line.size() >> 20U);
  }
  if (stepsIn(line) <= MOST_STEPS) return "";
  return "everything: the message has too many values, or is nested too deep, to run again";
}

explanation_t explain(const record_t& record, Probe& probe) {
  explanation_t explanation;
  const answer_t base = probe.ask();
  explanation.stable = base.messages == record.outputs.size() &&
                       base.after.sameContent(Trace(std::span(record.outputs)));
  if (!explanation.stable) return explanation;
  if (base.cameOut()) {
    explanation.rows = rowsOf(base, linksOf(probe, base));
    explanation.passed =
        base.passed() && std::all_of(explanation.rows.begin(), explanation.rows.end(), isUnchanged);
  } else {
    explanation.rows = lostRowsOf(base.before);
    explanation.blame = blameFor(probe, base);
  }
  // A plug-in that remembers messages answers the same question differently some time.
  explanation.stable = probe.ask().after.sameContent(base.after);
  if (!explanation.stable) return {false};
  explanation.runs = probe.runs();
  explanation.limited = probe.exhausted();
  return explanation;
}

} // namespace com::velanto::connectivity::tools
