#include "tools/host/replay_chain.hpp"

#include <utility>

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* CHAIN_NAME = "replay";

// The link of the direction without messages.
void ignore(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) noexcept {}

} // namespace

ReplayChain::ReplayChain(const PluginLibrary& library, const data_t& configuration,
                         Direction direction, std::vector<log_line_t>& log)
    : direction_(direction) {
  const LogScope scope(log);
  plugin_.emplace(library, PluginLibrary::CLASS_NAME, CHAIN_NAME, configuration);
  const link_t nowhere{nullptr, &ignore};
  const link_t here{&received_, &Received::take};
  const bool to_host = direction == Direction::TOWARDS_HOST;
  plugin_->link(to_host ? here : nowhere, to_host ? nowhere : here);
  plugin_->start();
}

call_result_t& ReplayChain::send(std::span<Message> messages) {
  return record([&] { return plugin_->send(direction_, messages); });
}

call_result_t& ReplayChain::shutdown() {
  return record([&] {
    const bool worked = plugin_->shutdown();
    plugin_.reset();
    return worked;
  });
}

template <class Call>
call_result_t& ReplayChain::record(const Call& call) {
  // Cleared and not replaced: the vectors keep their room.
  received_.messages.clear();
  result_.outputs.clear();
  result_.log.clear();
  const LogScope scope(result_.log);
  const auto start = std::chrono::steady_clock::now();
  result_.failed = !call();
  result_.time = std::chrono::steady_clock::now() - start;
  result_.outputs.swap(received_.messages);
  if (received_.failure) std::rethrow_exception(std::exchange(received_.failure, nullptr));
  return result_;
}

} // namespace com::velanto::connectivity::tools
