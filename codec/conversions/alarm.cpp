// Alarm: (1) source, id  (2) count  (3) severity  (4) the source's id  (5) status
//        (6) text, time, type  (7) builder  (8) optional dates  (9) all that is left
// The order is behaviour: the first field that is missing or wrong is the one reported.
#include "codec/conversions/alarm.hpp"

#include "codec/constants.hpp"
#include "codec/conversions/enum_texts.hpp"
#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

constexpr EnumTexts<AlarmSeverity, 4, constant_t> SEVERITY_TEXTS = {
    {&DATA_T_CRITICAL, &DATA_T_MAJOR, &DATA_T_MINOR, &DATA_T_WARNING}};

constexpr EnumTexts<AlarmStatus, 3, constant_t> ALARM_STATUS_TEXTS = {
    {&DATA_T_ACTIVE, &DATA_T_ACKNOWLEDGED, &DATA_T_CLEARED}};

// What an id of the source that is no string is reported as, on purpose.
constexpr const char* SOURCE_ID = "id";

AlarmSeverity severityFrom(const data_t& severity, Fault& fault) {
  const char* const text = getFromDataTNotingFault<char const*>(severity, "severity", fault);
  return SEVERITY_TEXTS.fromString(text_or_empty(text), "alarm severity", fault);
}

AlarmStatus statusFrom(const data_t& status, Fault& fault) {
  const char* const text = getFromDataTNotingFault<char const*>(status, "status", fault);
  if (text == nullptr && !fault) fault.note(nullText()); // unlike a severity
  return ALARM_STATUS_TEXTS.fromString(text, "alarm status", fault);
}

} // namespace

std::unique_ptr<TivraMessageBuilder> convertAlarm(PulsarMessageDisassembler& notification) {
  return notification.getFault().orThrow(tryConvertAlarm(notification));
}

std::unique_ptr<TivraMessageBuilder> tryConvertAlarm(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  data_t source = takeField(notification, DATA_T_source);
  data_t id = takeField(notification, DATA_T_id);
  const data_t count = takeField(notification, DATA_T_count);
  const std::int64_t countValue = getFromDataTNotingFault<long long>(count, "count", fault);
  data_t severity = takeField(notification, DATA_T_severity);
  const AlarmSeverity severityValue = severityFrom(severity, fault);
  data_t sourceId = reduceToId(std::move(source), notification);
  data_t status = takeField(notification, DATA_T_status);
  const AlarmStatus statusValue = statusFrom(status, fault);
  data_t text = takeField(notification, DATA_T_text);
  const double time = takeTime(notification);
  data_t type = takeField(notification, DATA_T_type);
  noteUnlessStrings({{"id", id}, {SOURCE_ID, sourceId}, {"text", text}, {"type", type}}, fault);
  if (fault) return nullptr;

  notification.getSpareParts().keep(SEVERITY_TEXTS.toDataTString(severityValue),
                                    std::move(severity));
  notification.getSpareParts().keep(ALARM_STATUS_TEXTS.toDataTString(statusValue),
                                    std::move(status));

  auto builder = std::make_unique<AlarmMessageBuilder>(
      std::move(id), countValue, severityValue, std::move(sourceId), statusValue, std::move(text),
      time, std::move(type), notification.getSpareParts());
  carryOverDatesAndRemaining(notification, *builder);
  return builder;
}

AlarmMessageBuilder::AlarmMessageBuilder(data_t&& id, std::int64_t count, AlarmSeverity severity,
                                         data_t&& sourceId, AlarmStatus status, data_t&& text,
                                         double time, data_t&& type, SpareParts&& spares)
    : TivraMessageBuilder(std::move(id), ALARM_TYPE_DATA_T.copy(), spares.lend()) {
  addField(DATA_T_count, data_t(count), spares);
  addField(DATA_T_severity, spares.take(SEVERITY_TEXTS.toDataTString(severity)), spares);
  ensureValueDataTIsString(SOURCE_ID, sourceId);
  addField(DATA_T_source, std::move(sourceId), spares);
  addField(DATA_T_status, spares.take(ALARM_STATUS_TEXTS.toDataTString(status)), spares);
  ensureValueDataTIsString("text", text);
  addField(DATA_T_text, std::move(text), spares);
  addField(DATA_T_time, data_t(time), spares);
  ensureValueDataTIsString("type", type);
  addField(DATA_T_type, std::move(type), spares);
}

AlarmSeverity alarmSeverityFromString(char const* text) {
  return SEVERITY_TEXTS.fromString(text, "alarm severity");
}

AlarmStatus alarmStatusFromString(char const* text) {
  requireText(text);
  return ALARM_STATUS_TEXTS.fromString(text, "alarm status");
}

data_t alarmSeverityToDataTString(AlarmSeverity severity) {
  return SEVERITY_TEXTS.toDataTString(severity).copy();
}

data_t alarmStatusToDataTString(AlarmStatus status) {
  return ALARM_STATUS_TEXTS.toDataTString(status).copy();
}

} // namespace com::velanto::connectivity::plugins::pulsar
