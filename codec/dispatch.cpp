#include "codec/dispatch.hpp"

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>

#include "codec/constants.hpp"
#include "codec/conversions/alarm.hpp"
#include "codec/conversions/event.hpp"
#include "codec/conversions/managed_object.hpp"
#include "codec/conversions/measurement.hpp"
#include "codec/conversions/operation.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

using Conversion = std::unique_ptr<TivraMessageBuilder> (*)(PulsarMessageDisassembler&);

struct Route {
  const char* kind;
  Conversion convert;
};

// In the order in which they are tried.
constexpr std::array ROUTES = {
    Route{STR_alarms, convertAlarm},
    Route{STR_events, convertEvent},
    Route{STR_measurements, convertMeasurement},
    Route{STR_managedobjects, convertManagedObject},
    Route{STR_operations, convertOperation},
};

} // namespace

bool isOfKind(const char* typeSegment, const char* kind) noexcept {
  return std::strncmp(typeSegment, kind, std::strlen(kind)) == 0;
}

std::unique_ptr<TivraMessageBuilder> convertPulsarToTivraMessage(
    PulsarMessageDisassembler& notification) {
  return convertPulsarToTivraMessage(notification, notification.getStartCharOfMessageType());
}

std::unique_ptr<TivraMessageBuilder> convertPulsarToTivraMessage(
    PulsarMessageDisassembler& notification, const char* typeSegment) {
  for (const Route& route : ROUTES) {
    if (!isOfKind(typeSegment, route.kind)) continue;
    notification.discardMetadata(); // and with it the path
    return route.convert(notification);
  }
  const std::string type(typeSegment, std::strcspn(typeSegment, "/"));
  throw std::runtime_error("Unrecognised Pulsar message type: '" + type + "'");
}

} // namespace com::velanto::connectivity::plugins::pulsar
