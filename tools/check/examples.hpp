// Notifications of all five kinds and their results, worked out by hand.
#ifndef VLT_TOOLS_CHECK_EXAMPLES_HPP
#define VLT_TOOLS_CHECK_EXAMPLES_HPP

#include <span>
#include <string>

#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// One notification and its event, in a chain whose whole configuration is {"tenantId": "t1"}.
struct example_t {
  const char* kind; // of event, as vlt.type ends
  const char* path;
  const char* payload; // JSON
  const char* event;   // the event's payload; "tenantId": "t1" is left out
  const char* shows;
};

[[nodiscard]] std::span<const example_t> workedExamples();

// The metadata and payload of the example's event, and the notification.
[[nodiscard]] Message notificationOf(const example_t& example);
[[nodiscard]] data_t eventOf(const example_t& example);
[[nodiscard]] data_t metadataOf(const example_t& example);

inline constexpr const char* EVENT_PATH = "tenant/subscription/events/1";
inline constexpr const char* MEASUREMENT_PATH = "tenant/subscription/measurements/1";
inline constexpr const char* UNKNOWN_PATH = "tenant/subscription/inventory/1";

// A notification of an event with the least that its kind requires; on the other path it fails.
[[nodiscard]] Message plainEvent(const std::string& id, const char* path = EVENT_PATH);
[[nodiscard]] Message plainMeasurement(const std::string& id);
// Its event, without "tenantId".
[[nodiscard]] data_t plainEventPayload(const std::string& id);

} // namespace com::velanto::connectivity::tools::check

#endif
