#include "tools/explain/explainer.hpp"

#include <utility>

namespace com::velanto::connectivity::tools {

Explainer::Explainer(const PluginLibrary& library, const data_t& configuration, Direction direction,
                     ExplanationForm form, std::ostream& out)
    : form_(form),
      out_(out, "cannot write the explanations"),
      inquiry_(library, configuration, direction) {}

void Explainer::take(const record_t& record) {
  if (record.pass > 0) return;
  const auto start = std::chrono::steady_clock::now();
  const explanation_t explanation =
      record.outcome == Outcome::MALFORMED ? explanation_t{} : inquiry_.explain(record);
  if (record.outcome != Outcome::MALFORMED && explanation.stopped.empty()) {
    groups_.add(record, explanation);
  }
  // An empty line separates explanations.
  const bool first = std::exchange(first_, false);
  if (!first && form_ != ExplanationForm::JSON && record.outcome != Outcome::MALFORMED)
    out_.write("\n");
  out_.write(form_ == ExplanationForm::JSON
                 ? explanationJson(record, explanation)
                 : explanationText(record, explanation, form_ == ExplanationForm::COLOURED_TEXT));
  time_ += std::chrono::steady_clock::now() - start;
}

exit_status_t Explainer::finish() {
  inquiry_.end();
  return EXIT_FINE;
}

} // namespace com::velanto::connectivity::tools
