#include "codec/pulsar_message_disassembler.hpp"

#include <stdexcept>

#include "codec/constants.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

const char* PulsarMessageDisassembler::getStartCharOfMessageType() const {
  constexpr int SLASHES_BEFORE_TYPE = 2;
  const map_t& metadata = notification_.getMetadataMap();
  const map_t::const_iterator path = metadata.find(DATA_T_pulsarPath);
  if (path == metadata.end()) throw std::runtime_error("No Pulsar path found");

  const char* at = text_or_empty((*path).second.get<const char*>());
  for (int slashes = 0; slashes < SLASHES_BEFORE_TYPE && *at != '\0'; ++at) {
    if (*at == '/') ++slashes;
  }
  return at;
}

map_t& PulsarMessageDisassembler::getPayloadMap() {
  return notification_.getPayload().get<map_t>();
}

map_t PulsarMessageDisassembler::extractRemainingPayload() { return std::move(getPayloadMap()); }

} // namespace com::velanto::connectivity::plugins::pulsar
