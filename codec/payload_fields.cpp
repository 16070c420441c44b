#include "codec/payload_fields.hpp"

#include <stdexcept>
#include <string>

#include "codec/constants.hpp"
#include "codec/timestamps.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

std::runtime_error missing(data_t const& key, char const* where) {
  return std::runtime_error("Required key '" + std::string(text_or_empty(key.get<char const*>())) +
                            "' missing from " + where);
}

std::runtime_error unreadableTime(char const* text) {
  return std::runtime_error("Error parsing timestamp '" + std::string(text) + "' in key 'time'");
}

// Removes the entry that was found under `key` and returns its value; the key is kept for the event.
// Always inline: there are two callers, and one of them runs half a dozen times a message.
[[gnu::always_inline]] inline data_t take(map_t& map, const map_entry_t* found,
                                          constant_t const& key, char const* where,
                                          PulsarMessageDisassembler& notification) {
  if (found == nullptr) {
    notification.getFault().note(missing(key, where));
    return {};
  }
  return map.extract(*found, [&](map_entry_t&& entry) noexcept {
    notification.getSpareParts().keep(key, std::move(entry.key));
    return std::move(entry.value);
  });
}

} // namespace

boost::optional<data_t> extractFromMapIfPresent(map_t& map, key_ref key) {
  map_entry_t entry = map.extract(key);
  if (!entry) return boost::none;
  return std::move(entry.value);
}

data_t extractFromMapOrThrow(map_t& map, key_ref key, char const* where) {
  map_entry_t entry = map.extract(key);
  if (!entry) throw missing(key.key, where);
  return std::move(entry.value);
}

double extractTimeTimestampOrThrow(PulsarMessageDisassembler& notification) {
  return notification.getFault().orThrow(takeTime(notification));
}

data_t takeField(PulsarMessageDisassembler& notification, constant_t const& key) {
  if (notification.getFault()) return {};
  return take(notification.getPayloadMap(), notification.findField(key), key, IN_MESSAGE_PAYLOAD,
              notification);
}

double takeTime(PulsarMessageDisassembler& notification) {
  const data_t time = takeField(notification, DATA_T_time);
  Fault& fault = notification.getFault();
  const char* const text = text_or_empty(getFromDataTNotingFault<char const*>(time, "time", fault));
  if (const auto seconds = tryParseTime(text)) return *seconds;
  if (!fault) fault.note(unreadableTime(text));
  return 0;
}

data_t reduceToId(data_t&& source, PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  if (fault) return {};
  auto* const entries = source.get_if<map_t>();
  if (entries == nullptr) {
    fault.note(problemWithKey("source", source.get_error<map_t>()));
    return {};
  }
  data_t id = take(*entries, entries->find_entry(DATA_T_id), DATA_T_id, IN_SOURCE, notification);
  notification.getSpareParts().keep(std::move(*entries));
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
  notification.getPayloadMap().extract(key, [&](map_entry_t&& entry) {
    if (entry.value.is_string()) {
      if (const auto seconds = tryParseTime(entry.value.get<char const*>())) {
        entry.value = data_t(*seconds);
      }
    }
    builder.fields.assign(std::move(entry));
  });
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
