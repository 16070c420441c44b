#include "codec/payload_fields.hpp"

#include <stdexcept>
#include <string>

#include "codec/constants.hpp"
#include "codec/timestamps.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

// Errors are made by functions of their own: an expression that throws what it builds has
// temporaries to clean up, which makes the frame one more for the unwinding to stop at.
std::runtime_error missing(data_t const& key, char const* where) {
  return std::runtime_error("Required key '" + std::string(text_or_empty(key.get<char const*>())) +
                            "' missing from " + where);
}

std::runtime_error unreadableTime(char const* text) {
  return std::runtime_error("Error parsing timestamp '" + std::string(text) + "' in key 'time'");
}

inline map_entry_t extractEntryOrThrow(map_t& map, key_ref key, char const* where) {
  map_slot_t* const found = map.find_slot(key);
  if (found == nullptr) throw missing(key.key, where);
  return map.extract(*found);
}

// The value of an entry that was taken out under a constant, whose key is kept for the event.
data_t valueOf(map_entry_t&& entry, constant_t const& key, SpareParts&& spares) noexcept {
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
  return extractEntryOrThrow(map, key, where).value;
}

data_t* extractFieldIfPresent(PulsarMessageDisassembler& notification, constant_t const& key) {
  map_entry_t entry = notification.getPayloadMap().extract(key);
  if (!entry) return nullptr;
  return &notification.getTakenFields().keep(
      valueOf(std::move(entry), key, notification.getSpareParts()));
}

data_t& extractFieldOrThrow(PulsarMessageDisassembler& notification, constant_t const& key) {
  return notification.getTakenFields().keep(
      valueOf(extractEntryOrThrow(notification.getPayloadMap(), key, IN_MESSAGE_PAYLOAD), key,
              notification.getSpareParts()));
}

double extractTimeTimestampOrThrow(PulsarMessageDisassembler& notification) {
  const data_t& time = extractFieldOrThrow(notification, DATA_T_time);
  const char* const text = text_or_empty(getFromDataTReportingKey<char const*>(time, "time"));
  if (const auto seconds = tryParseTime(text)) return *seconds;
  throw unreadableTime(text);
}

data_t extractSourceId(data_t& source, SpareParts&& spares) {
  auto& entries = getFromDataTReportingKey<map_t&>(source, "source");
  return valueOf(extractEntryOrThrow(entries, DATA_T_id, IN_SOURCE), DATA_T_id, spares.lend());
}

data_t& reduceToId(data_t& source, PulsarMessageDisassembler& notification) {
  data_t& id =
      notification.getTakenFields().keep(extractSourceId(source, notification.getSpareParts()));
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

void convertDateTimePayloadElement(key_ref key, PulsarMessageDisassembler& notification,
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

void carryOverDatesAndRemaining(PulsarMessageDisassembler& notification,
                                TivraMessageBuilder& builder) {
  convertDateTimePayloadElement(DATA_T_creationTime, notification, builder);
  convertDateTimePayloadElement(DATA_T_firstOccurrenceTime, notification, builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, builder);
  copyOverRemainingPayloadElements(notification, builder);
}

void copyOverRemainingPayloadElements(PulsarMessageDisassembler& notification,
                                      TivraMessageBuilder& builder) {
  notification.extractRemainingPayload().drain(
      [&builder](map_entry_t&& entry) { builder.fields.assign(std::move(entry)); });
}

} // namespace com::velanto::connectivity::plugins::pulsar
