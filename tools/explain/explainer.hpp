// Writes the fates of the fields of each message. It explains a line only at its first reading.
#ifndef VLT_TOOLS_EXPLAIN_EXPLAINER_HPP
#define VLT_TOOLS_EXPLAIN_EXPLAINER_HPP

#include <chrono>
#include <cstdint>
#include <ostream>

#include "tools/explain/explanation_groups.hpp"
#include "tools/explain/inquiry.hpp"
#include "tools/record/output.hpp"

namespace com::velanto::connectivity::tools {

enum class ExplanationForm { TEXT, COLOURED_TEXT, JSON };

class Explainer final : public Consumer {
 public:
  // `library` and `out` must outlive it. Throws PluginError.
  Explainer(const PluginLibrary& library, const data_t& configuration, Direction direction,
            ExplanationForm form, std::ostream& out);

  void take(const record_t& record) override;
  void pause() override { out_.flush(); }

  // Ends its plug-in.
  exit_status_t finish() override;

  [[nodiscard]] const ExplanationGroups& groups() const noexcept { return groups_; }
  // Nobody reads the explanations any more.
  [[nodiscard]] bool closed() const noexcept { return out_.closed(); }
  // Time that explaining has taken.
  [[nodiscard]] std::chrono::nanoseconds time() const noexcept { return time_; }
  // Blocks of the host that its plug-in has kept for good, once it has ended.
  [[nodiscard]] std::int64_t lostBlocks() const noexcept { return inquiry_.lostBlocks(); }

 private:
  ExplanationForm form_;
  Output out_;
  Inquiry inquiry_;
  bool first_ = true;
  ExplanationGroups groups_;
  std::chrono::nanoseconds time_{};
};

} // namespace com::velanto::connectivity::tools

#endif
