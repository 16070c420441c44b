#include "tests/soak/figures.hpp"

#include "value/murmur_hash.hpp"

namespace com::velanto::connectivity::soak {

std::uint64_t mixed(std::uint64_t digest, std::string_view text) noexcept {
  return hashes::murmur_hash(reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                             digest);
}

std::string figures_t::imbalance() const {
  if (sent_towards_host != reached_host + dropped) {
    return "towards the host, arrivals and logged drops do not add up to the messages sent";
  }
  if (sent_towards_transport != reached_transport) {
    return "towards the transport, the messages that arrived are not those sent";
  }
  return {};
}

std::string describe(const figures_t& figures) {
  return "sent " + std::to_string(figures.sent_towards_host) + " + " +
         std::to_string(figures.sent_towards_transport) + ", reached the host " +
         std::to_string(figures.reached_host) + ", dropped " + std::to_string(figures.dropped) +
         ", reached the transport " + std::to_string(figures.reached_transport) + ", traced " +
         std::to_string(figures.traced) + ", digest " + std::to_string(figures.digest);
}

} // namespace com::velanto::connectivity::soak
