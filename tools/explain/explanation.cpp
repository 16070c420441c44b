#include "tools/explain/explanation.hpp"

#include <algorithm>

#include "tools/explain/rows.hpp"

namespace com::velanto::connectivity::tools {

namespace {

bool isUnchanged(const row_t& row) { return row.fate == Fate::UNCHANGED; }

} // namespace

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
