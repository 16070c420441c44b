#include "tools/host/chain.hpp"

#include <utility>

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* PLUGIN_NAME = "OstroviaNotifications2Codec";
constexpr const char* CHAIN_NAME = "replay";

// The link of the direction in which nothing is sent.
void ignore(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) noexcept {}

} // namespace

void passage_t::clear() noexcept {
  failed = false;
  outputs.clear();
  log.clear();
  time = {};
}

Chain::Chain(const PluginLibrary& library, const data_t& configuration, Direction direction,
             std::vector<log_line_t>& log)
    : direction_(direction) {
  const LogScope scope(log);
  plugin_.emplace(library, PLUGIN_NAME, CHAIN_NAME, configuration);
  const link_t nowhere{nullptr, &ignore};
  const link_t here{this, &Chain::take};
  const bool to_host = direction == Direction::towardsHost;
  plugin_->link(to_host ? here : nowhere, to_host ? nowhere : here);
  plugin_->start();
}

passage_t& Chain::send(std::span<Message> messages) {
  passage_.clear();
  const LogScope scope(passage_.log);
  const auto start = std::chrono::steady_clock::now();
  passage_.failed = !plugin_->send(direction_, messages);
  passage_.time = std::chrono::steady_clock::now() - start;
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  return passage_;
}

passage_t& Chain::shutdown() {
  passage_.clear();
  const LogScope scope(passage_.log);
  passage_.failed = !plugin_->shutdown();
  plugin_.reset();
  return passage_;
}

void Chain::take(void* handle, vlt_underlying_message_t* start,
                 vlt_underlying_message_t* end) noexcept {
  auto& chain = *static_cast<Chain*>(handle);
  auto* const last = reinterpret_cast<Message*>(end);
  try {
    for (auto* message = reinterpret_cast<Message*>(start); message != last; ++message) {
      chain.passage_.outputs.push_back(std::move(*message));
    }
  } catch (...) {
    chain.failure_ = std::current_exception();
  }
}

} // namespace com::velanto::connectivity::tools
