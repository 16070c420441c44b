#include "tools/replay/explain/explanation.hpp"

#include "tools/replay/explain/rows.hpp"

namespace com::velanto::connectivity::tools {

explanation_t explain(const record_t& record, Probe& probe) {
  explanation_t explanation;
  const answer_t base = probe.ask();
  explanation.stable = base.messages == record.outputs.size() &&
                       base.after.sameContent(Trace(std::span(record.outputs)));
  if (!explanation.stable) return explanation;
  explanation.passed = base.passed();
  if (base.cameOut()) {
    explanation.rows = rowsOf(base, linksOf(probe, base));
  } else {
    explanation.rows = lostRowsOf(base.before);
    explanation.blame = blameFor(probe, base);
  }
  explanation.runs = probe.runs();
  explanation.limited = probe.exhausted();
  return explanation;
}

} // namespace com::velanto::connectivity::tools
