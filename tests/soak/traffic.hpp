// Mixed traffic through a plug-in, in rounds. A round sends every message of the input
//
//   in both directions, in batches of 1, 7, 64 and 256, each time as fresh copies
//
// and adds up the results of links and log. Rounds differ by their number, and these differences
// must not change the results:
//
//   every 5th    destroys the codec and creates another one
//   every 10th   creates the codec at the trace level, which adds lines and nothing else
#ifndef VLT_TESTS_SOAK_TRAFFIC_HPP
#define VLT_TESTS_SOAK_TRAFFIC_HPP

#include <optional>
#include <string>
#include <vector>

#include "tests/soak/figures.hpp"
#include "tools/host/hosted_plugin.hpp"
#include "tools/host/log_capture.hpp"

namespace com::velanto::connectivity::soak {

class Traffic {
 public:
  static constexpr int NEW_CODEC_EVERY = 5;
  static constexpr int TRACED_EVERY = 10;

  // `library` must outlive it. Takes the process's log for as long as it lives.
  Traffic(const tools::PluginLibrary& library, std::vector<Message>&& messages);
  Traffic(const Traffic&) = delete;
  Traffic& operator=(const Traffic&) = delete;
  ~Traffic() = default;

  [[nodiscard]] static bool isTraced(std::int64_t round) noexcept {
    return round % TRACED_EVERY == TRACED_EVERY - 1;
  }

  // Throws std::runtime_error when the plug-in reports failure.
  [[nodiscard]] figures_t run(std::int64_t round);

 private:
  void renewCodec(bool traced);
  void send(tools::Direction direction, std::size_t batch_size);
  void addLog();
  void add(const Message* start, const Message* end, std::int64_t& reached);

  static void takeTowardsHost(void* handle, vlt_underlying_message_t* start,
                              vlt_underlying_message_t* end) noexcept;
  static void takeTowardsTransport(void* handle, vlt_underlying_message_t* start,
                                   vlt_underlying_message_t* end) noexcept;

  const tools::PluginLibrary& library_;
  std::vector<Message> messages_;
  std::vector<Message> batch_;
  const tools::LogCapture capture_;
  std::vector<tools::log_line_t> lines_;
  const tools::LogScope scope_{lines_};
  std::optional<tools::HostedPlugin> codec_;
  bool codec_traces_ = false;
  figures_t figures_;
};

} // namespace com::velanto::connectivity::soak

#endif
