// Event: (1) source, id  (2) the source's id  (3) text, time, type  (4) builder
//        (5) optional dates  (6) all that is left
// The order is behaviour: the first field that is missing or wrong is the one reported.
#include "codec/conversions/event.hpp"

#include "codec/constants.hpp"
#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

std::unique_ptr<TivraMessageBuilder> convertEvent(PulsarMessageDisassembler& notification) {
  map_t& payload = notification.getPayloadMap();
  data_t source = extractFromMapOrThrow(payload, DATA_T_source, IN_MESSAGE_PAYLOAD);
  data_t id = extractFromMapOrThrow(payload, DATA_T_id, IN_MESSAGE_PAYLOAD);
  data_t sourceId = extractSourceId(source);
  data_t text = extractFromMapOrThrow(payload, DATA_T_text, IN_MESSAGE_PAYLOAD);
  const double time = extractTimeTimestampOrThrow(notification);
  data_t type = extractFromMapOrThrow(payload, DATA_T_type, IN_MESSAGE_PAYLOAD);

  auto builder = std::make_unique<EventMessageBuilder>(std::move(id), std::move(sourceId),
                                                       std::move(text), time, std::move(type));
  convertDateTimePayloadElement(DATA_T_creationTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_firstOccurrenceTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, *builder);
  copyOverRemainingPayloadElements(notification, *builder);
  return builder;
}

EventMessageBuilder::EventMessageBuilder(data_t&& id, data_t&& source, data_t&& text, double time,
                                         data_t&& type)
    : TivraMessageBuilder(std::move(id), data_t(EVENT_TYPE_DATA_T)) {
  ensureValueDataTIsString("source", source);
  fields[data_t(DATA_T_source)] = std::move(source);
  ensureValueDataTIsString("text", text);
  fields[data_t(DATA_T_text)] = std::move(text);
  // Under this name on purpose: an event has no field "time". One that the notification brings
  // under this name replaces it.
  fields[data_t(DATA_T_firstOccurrenceTime)] = data_t(time);
  ensureValueDataTIsString("type", type);
  fields[data_t(DATA_T_type)] = std::move(type);
}

} // namespace com::velanto::connectivity::plugins::pulsar
