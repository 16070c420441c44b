// Notifications of all five kinds, and the least ones of two.
#ifndef VLT_TOOLS_CHECK_EXAMPLES_HPP
#define VLT_TOOLS_CHECK_EXAMPLES_HPP

#include <string>
#include <vector>

#include "tools/check/conformance/case.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// Lines of the conformance files that convert, some of each kind.
[[nodiscard]] std::vector<line_t> exampleLines();
// The notification of such a line.
[[nodiscard]] Message notificationOf(const line_t& example);

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
