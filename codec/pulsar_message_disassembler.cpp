#include "codec/pulsar_message_disassembler.hpp"

#include <cstring>
#include <stdexcept>

#include "codec/constants.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

// The character behind the first '/', or the terminating NUL.
const char* behindSlash(const char* text) {
  const char* const slash = std::strchr(text, '/');
  return slash == nullptr ? text + std::strlen(text) : slash + 1;
}

} // namespace

const char* PulsarMessageDisassembler::getStartCharOfMessageType() const {
  const data_t* const path = notification_.getMetadataMap().find_value(DATA_T_pulsarPath);
  if (path == nullptr) throw std::runtime_error("No Pulsar path found");

  return getStartCharOfMessageType(*path);
}

const char* PulsarMessageDisassembler::getStartCharOfMessageType(const data_t& path) {
  const char* const text = text_or_empty(path.get<const char*>());
  return behindSlash(behindSlash(text));
}

map_t& PulsarMessageDisassembler::getPayloadMap() {
  return notification_.getPayload().get<map_t>();
}

const map_entry_t* PulsarMessageDisassembler::findField(const constant_t& key) {
  const bool is_known = id_ != nullptr && &key == &DATA_T_id;
  return is_known ? std::exchange(id_, nullptr) : getPayloadMap().find_entry(key);
}

map_t PulsarMessageDisassembler::extractRemainingPayload() { return std::move(getPayloadMap()); }

} // namespace com::velanto::connectivity::plugins::pulsar
