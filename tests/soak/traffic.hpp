// Mixed traffic through a chain, recorder, codec, recorder, in rounds. The recorders' files are small
// and rotate. A round sends every message of the input
//
//   in both directions, in batches of 1, 7, 64 and 256, each time as fresh copies
//
// and adds up the results of links and log. Rounds differ by their number, and these differences
// must not change the results:
//
//   every 5th    destroys the chain and creates another one; the recordings have seen all messages
//   every 10th   creates the chain at the trace level, which adds lines and nothing else
#ifndef VLT_TESTS_SOAK_TRAFFIC_HPP
#define VLT_TESTS_SOAK_TRAFFIC_HPP

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/soak/figures.hpp"
#include "tests/tools/temporary_folder.hpp"
#include "tools/host/hosted_plugin.hpp"
#include "tools/host/log_capture.hpp"

namespace com::velanto::connectivity::soak {

class Traffic {
 public:
  static constexpr int NEW_CHAIN_EVERY = 5;
  static constexpr int TRACED_EVERY = 10;

  // The libraries must outlive it. Takes the process's log for as long as it lives.
  Traffic(const tools::PluginLibrary& codecs, const tools::PluginLibrary& recorders,
          std::vector<Message>&& messages);
  Traffic(const Traffic&) = delete;
  Traffic& operator=(const Traffic&) = delete;
  ~Traffic() = default;

  [[nodiscard]] static bool isTraced(std::int64_t round) noexcept {
    return round % TRACED_EVERY == TRACED_EVERY - 1;
  }

  // Throws std::runtime_error when a plug-in reports failure, or a recording is not as it should be.
  [[nodiscard]] figures_t run(std::int64_t round);

 private:
  // Recorder, codec, recorder, as links lead towards the host.
  struct chain_t {
    chain_t(Traffic& traffic, const data_t& recorder_settings);
    [[nodiscard]] bool shutdown() noexcept {
      return before.shutdown() && codec.shutdown() && after.shutdown();
    }

    tools::HostedPlugin before;
    tools::HostedPlugin codec;
    tools::HostedPlugin after;
  };

  void renewChain(bool traced);
  void endChain();
  void send(tools::Direction direction, std::size_t batch_size);
  void addLog();
  void add(const Message* start, const Message* end, std::int64_t& reached);

  static void takeTowardsHost(void* handle, vlt_underlying_message_t* start,
                              vlt_underlying_message_t* end) noexcept;
  static void takeTowardsTransport(void* handle, vlt_underlying_message_t* start,
                                   vlt_underlying_message_t* end) noexcept;

  const tools::PluginLibrary& codecs_;
  const tools::PluginLibrary& recorders_;
  const test::TemporaryFolder folder_;
  std::vector<Message> messages_;
  std::vector<Message> batch_;
  const tools::LogCapture capture_;
  std::vector<tools::log_line_t> lines_;
  const tools::LogScope scope_{lines_};
  std::optional<chain_t> chain_;
  bool chain_traces_ = false;
  std::int64_t before_ = 0; // messages through the first recorder of this chain
  std::int64_t after_ = 0;  // and through the second one
  figures_t figures_;
};

} // namespace com::velanto::connectivity::soak

#endif
