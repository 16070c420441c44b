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

// Case-sensitive. Any other string is a fault, "Unrecognized alarm severity: TEXT".
[[nodiscard]] AlarmSeverity alarmSeverityFromString(char const* text, Fault& fault);
// The same for a status, "Unrecognized alarm status: TEXT"; a null string is the fault of a string
// value with a null pointer.
[[nodiscard]] AlarmStatus alarmStatusFromString(char const* text, Fault& fault);
// The constant words. Throw std::runtime_error "Unrecognized enum value.".
[[nodiscard]] constant_t const& alarmSeverityToDataTString(AlarmSeverity severity);
[[nodiscard]] constant_t const& alarmStatusToDataTString(AlarmStatus status);

// The host event of type "com.tivra.ostrovia.Alarm". `id`, `source_id`, `text` and `type` must be
// strings; `time` is in seconds since the epoch.
class AlarmMessageBuilder final : public TivraMessageBuilder {
 public:
  AlarmMessageBuilder(data_t&& id, std::int64_t count, AlarmSeverity severity, data_t&& source_id,
                      AlarmStatus status, data_t&& text, double time, data_t&& type,
                      SpareParts& spares);
};

// Consumes the notification. Null for a faulty one, which notes its first fault in the steps' order.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertAlarm(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
