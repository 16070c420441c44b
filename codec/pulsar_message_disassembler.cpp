#include "codec/pulsar_message_disassembler.hpp"

#include <cstring>
#include <new>
#include <stdexcept>

#include "value/get_visitor.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

// The character after the first '/', or the terminating NUL.
const char* afterSlash(const char* text) {
  const char* const slash = std::strchr(text, '/');
  return slash == nullptr ? text + std::strlen(text) : slash + 1;
}

} // namespace

const char* PulsarMessageDisassembler::getStartCharOfMessageType() const {
  const data_t* const path = notification_.getMetadataMap().find_value(DATA_T_pulsarPath);
  if (path == nullptr) throw std::runtime_error("No Pulsar path found");
  return afterSlash(afterSlash(text_or_empty(path->get<const char*>())));
}

map_t& PulsarMessageDisassembler::getPayloadMap() {
  return notification_.getPayload().get<map_t>();
}

map_t PulsarMessageDisassembler::extractRemainingPayload() { return std::move(getPayloadMap()); }

data_t PulsarMessageDisassembler::reduceToId(const char* text) noexcept {
  if (text == nullptr) return {};
  try {
    map_t payload = extractRemainingPayload();
    payload.extract(DATA_T_id, [this](map_entry_t&& entry) noexcept {
      spares_.keep(DATA_T_id, std::move(entry.key));
      if (id_.empty()) id_ = std::move(entry.value);
    });
    data_t id = id_.empty() ? data_t(text) : std::move(id_);
    if (id.type_tag() == VLT_TAG_BORROWED_STRING) id = data_t(id); // its owner may be gone soon
    payload.clear();
    payload.add(DATA_T_id.hash(), spares_.take(DATA_T_id), std::move(id));
    return payload;
  } catch (const std::bad_alloc&) {
    return {};
  }
}

} // namespace com::velanto::connectivity::plugins::pulsar
