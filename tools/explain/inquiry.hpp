// Explains single messages with another instance of the plug-in in another chain, so the run neither
// shows nor counts the messages sent to find out.
#ifndef VLT_TOOLS_EXPLAIN_INQUIRY_HPP
#define VLT_TOOLS_EXPLAIN_INQUIRY_HPP

#include <cstddef>
#include <cstdint>
#include <optional>

#include "tools/explain/explanation.hpp"
#include "tools/host/replay_chain.hpp"

namespace com::velanto::connectivity::tools {

class Inquiry {
 public:
  // `library` must outlive it. Throws PluginError.
  Inquiry(const PluginLibrary& library, const data_t& configuration, Direction direction);

  // `record` is no malformed one. No other chain may be at work meanwhile. `most_values` bounds the
  // effort, see Probe.
  [[nodiscard]] explanation_t explain(const record_t& record,
                                      std::size_t most_values = Probe::MOST_VALUES);

  // Ends the plug-in; the last call.
  void end();
  // Blocks of the host that the plug-in has kept for good, once it has ended.
  [[nodiscard]] std::int64_t lostBlocks() const noexcept { return lost_blocks_; }

 private:
  JsonReader reader_;
  std::int64_t lost_blocks_ = 0;
  std::optional<ReplayChain> chain_;
};

} // namespace com::velanto::connectivity::tools

#endif
