// Runs another build of the plug-in next to the first: each line goes through both, and it compares
// the results. Both are in this process, since a plug-in exports nothing that another one could be
// bound to.
#ifndef VLT_TOOLS_REPLAY_COMPARING_OTHER_BUILD_HPP
#define VLT_TOOLS_REPLAY_COMPARING_OTHER_BUILD_HPP

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/replay/comparing/comparer.hpp"
#include "tools/replay/running/worker.hpp"

namespace com::velanto::connectivity::tools {

class OtherBuild final : public Consumer {
 public:
  // Throws PluginError. `diagnostics` must outlive this.
  OtherBuild(const std::string& path, const data_t& configuration, Direction direction,
             std::ostream& diagnostics);

  void take(const record_t& record) override;
  // The lines that the first plug-in logs without a message, at its end, belong to finish().
  void takeLog(std::span<const log_line_t> lines) override;

  // Ends the other plug-in, too, and unloads its library.
  exit_status_t finish() override;

  // It shows the differences; whoever listens gets them, too.
  [[nodiscard]] Comparer& comparer() noexcept { return comparer_; }
  // Until finish().
  [[nodiscard]] const PluginLibrary& library() const noexcept { return build_->library; }

 private:
  void compareLogs();

  // All that holds blocks of the host.
  struct build_t {
    build_t(const std::string& path, const data_t& configuration, Direction direction,
            std::vector<log_line_t>& log)
        : library(path), worker(library, configuration, direction, batching_t{1, true}, log) {}

    PluginLibrary library;
    Worker worker;
    record_t record;
  };

  std::vector<log_line_t> log_; // of the other build, without a message
  std::vector<log_line_t> log_of_first_;
  std::optional<build_t> build_;
  Comparer comparer_;
};

} // namespace com::velanto::connectivity::tools

#endif
