// A consumer that makes a page of the run, for people who look at it later or never open a terminal:
//
//   take, takeBatch   collect counts and examples
//   differences       of comparisons with other runs, while they are made
//   finish            explains the examples that the page will show
//   write             makes the page, once the outcome of the run is known
#ifndef VLT_TOOLS_REPORT_REPORT_HPP
#define VLT_TOOLS_REPORT_REPORT_HPP

#include <optional>
#include <string>
#include <vector>

#include "tools/explain/inquiry.hpp"
#include "tools/options/replay_options.hpp"
#include "tools/record/output_file.hpp"
#include "tools/report/contents.hpp"

namespace com::velanto::connectivity::tools::report {

class Report final : public Consumer {
 public:
  // The file of `options.report`. Throws ReplayError with EXIT_IO.
  explicit Report(const ReplayOptions& options);

  // The plug-in of the run, whose messages another instance explains; `library` must stay until
  // finish(). Throws PluginError.
  void explainWith(const PluginLibrary& library, const data_t& configuration, Direction direction);
  void nameBuild(const std::string& role, const file_identity_t& file,
                 const PluginLibrary& library);

  // A comparison with another run; the result stays valid.
  Changes& compare(const char* anchor, const std::string& title, const char* before,
                   const char* after) {
    return contents_.changes.emplace_back(anchor, title, before, after);
  }

  void take(const record_t& record) override { contents_.collection.take(record); }
  void takeBatch(std::size_t messages, std::chrono::nanoseconds time) override {
    contents_.collection.takeBatch(messages, time);
  }
  exit_status_t finish() override;

  // The last call, for a run that has reached the end of its input: the file appears. Throws
  // ReplayError with EXIT_IO.
  void write(outcome_t outcome);

  // Blocks of the host that its plug-in has kept for good, once it has ended.
  [[nodiscard]] std::int64_t lostBlocks() const noexcept {
    return inquiry_ ? inquiry_->lostBlocks() : 0;
  }

 private:
  void explain(example_t& example);

  OutputFile file_;
  bool as_recorded_;
  contents_t contents_;
  std::optional<Inquiry> inquiry_;
};

} // namespace com::velanto::connectivity::tools::report

#endif
