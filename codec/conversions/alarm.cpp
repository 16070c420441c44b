// Alarm: (1) source, id  (2) count  (3) severity  (4) the source's id  (5) status
//        (6) text, time, type  (7) builder  (8) optional dates  (9) all remaining fields
// The order is behaviour: the report names the first field that is missing or wrong.
#include "codec/conversions/alarm.hpp"

#include "codec/conversions/enum_texts.hpp"
#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

constexpr EnumTexts<AlarmSeverity, 4> SEVERITY_TEXTS = {
    {&DATA_T_CRITICAL, &DATA_T_MAJOR, &DATA_T_MINOR, &DATA_T_WARNING}};

constexpr EnumTexts<AlarmStatus, 3> STATUS_TEXTS = {
    {&DATA_T_ACTIVE, &DATA_T_ACKNOWLEDGED, &DATA_T_CLEARED}};

} // namespace

AlarmSeverity alarmSeverityFromString(char const* text, Fault& fault) {
  return SEVERITY_TEXTS.fromString(text_or_empty(text), "alarm severity", fault);
}

AlarmStatus alarmStatusFromString(char const* text, Fault& fault) {
  if (text == nullptr && !fault) fault.note(null_text_error()); // unlike a severity
  return STATUS_TEXTS.fromString(text, "alarm status", fault);
}

constant_t const& alarmSeverityToDataTString(AlarmSeverity severity) {
  return SEVERITY_TEXTS.toDataTString(severity);
}

constant_t const& alarmStatusToDataTString(AlarmStatus status) {
  return STATUS_TEXTS.toDataTString(status);
}

std::unique_ptr<TivraMessageBuilder> convertAlarm(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  SpareParts& spares = notification.getSpareParts();
  data_t source = extractField(notification, DATA_T_source);
  data_t& id = notification.holdId(extractField(notification, DATA_T_id));
  const data_t count = extractField(notification, DATA_T_count);
  const auto count_value = getFromDataTReportingKey<std::int64_t>(count, "count", fault);
  data_t severity = extractField(notification, DATA_T_severity);
  const AlarmSeverity severity_value = alarmSeverityFromString(
      getFromDataTReportingKey<char const*>(severity, "severity", fault), fault);
  data_t source_id = extractSourceId(std::move(source), notification);
  data_t status = extractField(notification, DATA_T_status);
  const AlarmStatus status_value =
      alarmStatusFromString(getFromDataTReportingKey<char const*>(status, "status", fault), fault);
  data_t text = extractField(notification, DATA_T_text);
  const double time = extractTimeTimestamp(notification);
  data_t type = extractField(notification, DATA_T_type);
  ensureValueDataTIsString("id", id, fault);
  ensureValueDataTIsString("id", source_id, fault); // named like the alarm's own, on purpose
  ensureValueDataTIsString("text", text, fault);
  ensureValueDataTIsString("type", type, fault);
  if (fault) return nullptr;

  spares.keep(alarmSeverityToDataTString(severity_value), std::move(severity));
  spares.keep(alarmStatusToDataTString(status_value), std::move(status));
  auto builder = std::make_unique<AlarmMessageBuilder>(
      std::move(id), count_value, severity_value, std::move(source_id), status_value,
      std::move(text), time, std::move(type), spares);
  carryOverDatesAndRemaining(notification, *builder);
  return builder;
}

AlarmMessageBuilder::AlarmMessageBuilder(data_t&& id, std::int64_t count, AlarmSeverity severity,
                                         data_t&& source_id, AlarmStatus status, data_t&& text,
                                         double time, data_t&& type, SpareParts& spares)
    : TivraMessageBuilder(std::move(id), ALARM_TYPE_DATA_T.copy(), spares) {
  addField(DATA_T_count, data_t(count), spares);
  addField(DATA_T_severity, spares.take(alarmSeverityToDataTString(severity)), spares);
  addField(DATA_T_source, std::move(source_id), spares);
  addField(DATA_T_status, spares.take(alarmStatusToDataTString(status)), spares);
  addField(DATA_T_text, std::move(text), spares);
  addField(DATA_T_time, data_t(time), spares);
  addField(DATA_T_type, std::move(type), spares);
}

} // namespace com::velanto::connectivity::plugins::pulsar
