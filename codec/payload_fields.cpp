#include "codec/payload_fields.hpp"

#include <stdexcept>
#include <string>

#include "codec/constants.hpp"
#include "codec/timestamps.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

data_t valueOrThrow(boost::optional<data_t>&& value, data_t const& key, char const* where) {
  if (value) return std::move(*value);
  throw std::runtime_error("Required key '" + std::string(text_or_empty(key.get<char const*>())) +
                           "' missing from " + where);
}

// Removes the entry under a constant and keeps its key for the event.
boost::optional<data_t> extractKeepingKey(map_t& map, constant_t const& key, SpareParts&& spares) {
  map_entry_t entry = map.extract(key);
  if (!entry) return boost::none;
  spares.keep(key, std::move(entry.key));
  return std::move(entry.value);
}

} // namespace

boost::optional<data_t> extractFromMapIfPresent(map_t& map, key_ref key) {
  map_entry_t entry = map.extract(key);
  if (!entry) return boost::none;
  return std::move(entry.value);
}

data_t extractFromMapOrThrow(map_t& map, key_ref key, char const* where) {
  return valueOrThrow(extractFromMapIfPresent(map, key), key.key, where);
}

boost::optional<data_t> extractFieldIfPresent(PulsarMessageDisassembler& notification,
                                              constant_t const& key) {
  return extractKeepingKey(notification.getPayloadMap(), key, notification.getSpareParts());
}

data_t extractFieldOrThrow(PulsarMessageDisassembler& notification, constant_t const& key) {
  return valueOrThrow(extractFieldIfPresent(notification, key), key, IN_MESSAGE_PAYLOAD);
}

double extractTimeTimestampOrThrow(PulsarMessageDisassembler& notification) {
  const data_t time = extractFieldOrThrow(notification, DATA_T_time);
  const char* const text = text_or_empty(getFromDataTReportingKey<char const*>(time, "time"));
  if (const auto seconds = tryParseTime(text)) return *seconds;
  throw std::runtime_error("Error parsing timestamp '" + std::string(text) + "' in key 'time'");
}

data_t extractSourceId(data_t& source, SpareParts&& spares) {
  map_t& entries = getFromDataTReportingKey<map_t&>(source, "source");
  return valueOrThrow(extractKeepingKey(entries, DATA_T_id, std::move(spares)), DATA_T_id,
                      IN_SOURCE);
}

data_t reduceToId(data_t&& source, PulsarMessageDisassembler& notification) {
  data_t id = extractSourceId(source, notification.getSpareParts());
  notification.getSpareParts().keep(std::move(source.get<map_t>()));
  return id;
}

void remapPayloadElement(data_t const& from, data_t&& to, PulsarMessageDisassembler& notification,
                         TivraMessageBuilder& builder) {
  auto value = extractFromMapIfPresent(notification.getPayloadMap(), from);
  if (value) builder.fields[std::move(to)] = std::move(*value);
}

void remapPayloadElement(constant_t const& from, constant_t const& to,
                         PulsarMessageDisassembler& notification, TivraMessageBuilder& builder) {
  auto value = extractFromMapIfPresent(notification.getPayloadMap(), from);
  if (value) builder.fields.assign(to.with(std::move(*value)));
}

void convertDateTimePayloadElement(constant_t const& key, PulsarMessageDisassembler& notification,
                                   TivraMessageBuilder& builder) {
  map_entry_t entry = notification.getPayloadMap().extract(key);
  if (!entry) return;
  if (entry.value.is_string()) {
    if (const auto seconds = tryParseTime(entry.value.get<char const*>())) {
      entry.value = data_t(*seconds);
    }
  }
  builder.fields.assign(std::move(entry));
}

void copyOverRemainingPayloadElements(PulsarMessageDisassembler& notification,
                                      TivraMessageBuilder& builder) {
  static_cast<void>(notification.extractRemainingPayload().drain(
      [&builder](map_entry_t&& entry) { builder.fields.assign(std::move(entry)); }));
}

} // namespace com::velanto::connectivity::plugins::pulsar
