#include "tools/host/replay_chain.hpp"

#include <utility>

#include "tools/host/standard_error_capture.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* CHAIN_NAME = "replay";

} // namespace

ReplayChain::ReplayChain(const PluginLibrary& library, const data_t& configuration,
                         Direction direction, std::vector<log_line_t>& log)
    : direction_(direction) {
  const LogScope scope(log);
  plugin_.emplace(library, PluginLibrary::CLASS_NAME, CHAIN_NAME, configuration);
  plugin_->link({&at_host_, &Received::take}, {&at_transport_, &Received::take});
  plugin_->start();
}

call_result_t& ReplayChain::send(std::span<Message> messages, Direction direction) {
  return record(direction, [&] { return plugin_->send(direction, messages); });
}

call_result_t& ReplayChain::shutdown() {
  return record(direction_, [&] {
    const bool worked = plugin_->shutdown();
    plugin_.reset();
    return worked;
  });
}

template <class Call>
call_result_t& ReplayChain::record(Direction direction, const Call& call) {
  Received& received = direction == Direction::TOWARDS_HOST ? at_host_ : at_transport_;
  // Cleared and not replaced: the vectors keep their room.
  at_host_.messages.clear();
  at_transport_.messages.clear();
  result_.outputs.clear();
  result_.log.clear();
  const LogScope scope(result_.log);
  const auto start = std::chrono::steady_clock::now();
  result_.failed = !call();
  result_.time = std::chrono::steady_clock::now() - start;
  result_.printed = StandardErrorCapture::takeOfCall();
  result_.outputs.swap(received.messages);
  if (received.failure) std::rethrow_exception(std::exchange(received.failure, nullptr));
  return result_;
}

} // namespace com::velanto::connectivity::tools
