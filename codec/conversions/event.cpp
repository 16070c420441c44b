// Event: (1) source, id  (2) the source's id  (3) text, time, type  (4) builder
//        (5) optional dates  (6) all remaining fields
// The order is behaviour: the report names the first field that is missing or wrong.
#include "codec/conversions/event.hpp"

#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

std::unique_ptr<TivraMessageBuilder> convertEvent(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  data_t source = extractField(notification, DATA_T_source);
  data_t& id = notification.holdId(extractField(notification, DATA_T_id));
  data_t source_id = extractSourceId(std::move(source), notification);
  data_t text = extractField(notification, DATA_T_text);
  const double time = extractTimeTimestamp(notification);
  data_t type = extractField(notification, DATA_T_type);
  ensureValueDataTIsString("id", id, fault);
  ensureValueDataTIsString("source", source_id, fault);
  ensureValueDataTIsString("text", text, fault);
  ensureValueDataTIsString("type", type, fault);
  if (fault) return nullptr;

  auto builder =
      std::make_unique<EventMessageBuilder>(std::move(id), std::move(source_id), std::move(text),
                                            time, std::move(type), notification.getSpareParts());
  carryOverDatesAndRemaining(notification, *builder);
  return builder;
}

EventMessageBuilder::EventMessageBuilder(data_t&& id, data_t&& source, data_t&& text, double time,
                                         data_t&& type, SpareParts& spares)
    : TivraMessageBuilder(std::move(id), EVENT_TYPE_DATA_T.copy(), spares) {
  addField(DATA_T_source, std::move(source), spares);
  addField(DATA_T_text, std::move(text), spares);
  // Under this name on purpose: an event has no field "time". One that the notification brings
  // under this name replaces it.
  addField(DATA_T_firstOccurrenceTime, data_t(time), spares);
  addField(DATA_T_type, std::move(type), spares);
}

} // namespace com::velanto::connectivity::plugins::pulsar
