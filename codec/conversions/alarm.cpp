// Alarm: (1) source, id  (2) count  (3) severity  (4) the source's id  (5) status
//        (6) text, time, type  (7) builder  (8) optional dates  (9) all that is left
// The order is behaviour: the first field that is missing or wrong is the one reported.
#include "codec/conversions/alarm.hpp"

#include "codec/constants.hpp"
#include "codec/conversions/enum_texts.hpp"
#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

std::unique_ptr<TivraMessageBuilder> convertAlarm(PulsarMessageDisassembler& notification) {
  map_t& payload = notification.getPayloadMap();
  data_t source = extractFromMapOrThrow(payload, DATA_T_source, IN_MESSAGE_PAYLOAD);
  data_t id = extractFromMapOrThrow(payload, DATA_T_id, IN_MESSAGE_PAYLOAD);
  const data_t count = extractFromMapOrThrow(payload, DATA_T_count, IN_MESSAGE_PAYLOAD);
  const std::int64_t countValue = getFromDataTReportingKey<long long>(count, "count");
  const data_t severity = extractFromMapOrThrow(payload, DATA_T_severity, IN_MESSAGE_PAYLOAD);
  const AlarmSeverity severityValue = alarmSeverityFromString(
      text_or_empty(getFromDataTReportingKey<char const*>(severity, "severity")));
  data_t sourceId = extractSourceId(source);
  const data_t status = extractFromMapOrThrow(payload, DATA_T_status, IN_MESSAGE_PAYLOAD);
  const AlarmStatus statusValue =
      alarmStatusFromString(getFromDataTReportingKey<char const*>(status, "status"));
  data_t text = extractFromMapOrThrow(payload, DATA_T_text, IN_MESSAGE_PAYLOAD);
  const double time = extractTimeTimestampOrThrow(notification);
  data_t type = extractFromMapOrThrow(payload, DATA_T_type, IN_MESSAGE_PAYLOAD);

  auto builder = std::make_unique<AlarmMessageBuilder>(std::move(id), countValue, severityValue,
                                                       std::move(sourceId), statusValue,
                                                       std::move(text), time, std::move(type));
  convertDateTimePayloadElement(DATA_T_creationTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_firstOccurrenceTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, *builder);
  copyOverRemainingPayloadElements(notification, *builder);
  return builder;
}

AlarmMessageBuilder::AlarmMessageBuilder(data_t&& id, std::int64_t count, AlarmSeverity severity,
                                         data_t&& sourceId, AlarmStatus status, data_t&& text,
                                         double time, data_t&& type)
    : TivraMessageBuilder(std::move(id), data_t(ALARM_TYPE_DATA_T)) {
  fields[data_t(DATA_T_count)] = data_t(count);
  fields[data_t(DATA_T_severity)] = alarmSeverityToDataTString(severity);
  ensureValueDataTIsString("id", sourceId); // reported as "id", on purpose
  fields[data_t(DATA_T_source)] = std::move(sourceId);
  fields[data_t(DATA_T_status)] = alarmStatusToDataTString(status);
  ensureValueDataTIsString("text", text);
  fields[data_t(DATA_T_text)] = std::move(text);
  fields[data_t(DATA_T_time)] = data_t(time);
  ensureValueDataTIsString("type", type);
  fields[data_t(DATA_T_type)] = std::move(type);
}

namespace {

constexpr EnumTexts<AlarmSeverity, 4> SEVERITY_TEXTS = {
    {&DATA_T_CRITICAL, &DATA_T_MAJOR, &DATA_T_MINOR, &DATA_T_WARNING}};

constexpr EnumTexts<AlarmStatus, 3> STATUS_TEXTS = {
    {&DATA_T_ACTIVE, &DATA_T_ACKNOWLEDGED, &DATA_T_CLEARED}};

} // namespace

AlarmSeverity alarmSeverityFromString(char const* text) {
  return SEVERITY_TEXTS.fromString(text, "alarm severity");
}

AlarmStatus alarmStatusFromString(char const* text) {
  requireText(text);
  return STATUS_TEXTS.fromString(text, "alarm status");
}

data_t alarmSeverityToDataTString(AlarmSeverity severity) {
  return SEVERITY_TEXTS.toDataTString(severity);
}

data_t alarmStatusToDataTString(AlarmStatus status) { return STATUS_TEXTS.toDataTString(status); }

} // namespace com::velanto::connectivity::plugins::pulsar
