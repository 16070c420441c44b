// Alarms: something is wrong at a device, how badly, and whether anybody has seen to it.
#ifndef VLT_CODEC_CONVERSIONS_ALARM_HPP
#define VLT_CODEC_CONVERSIONS_ALARM_HPP

#include <cstdint>
#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

enum class AlarmSeverity { CRITICAL, MAJOR, MINOR, WARNING };
enum class AlarmStatus { ACTIVE, ACKNOWLEDGED, CLEARED };

// `text` is not null; the comparison is case-sensitive. Throws std::runtime_error
// "Unrecognized alarm severity: TEXT".
[[nodiscard]] AlarmSeverity alarmSeverityFromString(char const* text);
// The same for a status, "Unrecognized alarm status: TEXT"; a null text is refused as no text for a
// string value.
[[nodiscard]] AlarmStatus alarmStatusFromString(char const* text);
// Copies of the constant texts. Throw std::runtime_error "Unrecognized enum value.".
[[nodiscard]] data_t alarmSeverityToDataTString(AlarmSeverity severity);
[[nodiscard]] data_t alarmStatusToDataTString(AlarmStatus status);

// The host event of type "com.tivra.ostrovia.Alarm". `id`, `sourceId`, `text` and `type` must be
// strings; `time` is in seconds since the epoch.
class AlarmMessageBuilder final : public TivraMessageBuilder {
 public:
  AlarmMessageBuilder(data_t&& id, std::int64_t count, AlarmSeverity severity, data_t&& sourceId,
                      AlarmStatus status, data_t&& text, double time, data_t&& type,
                      SpareParts&& spares = SpareParts());
};

// Consumes the notification. Throws std::runtime_error naming the first field that is missing or
// wrong, in the order of the steps.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertAlarm(
    PulsarMessageDisassembler& notification);
// The same, but notes the error in the notification and returns null.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> tryConvertAlarm(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
