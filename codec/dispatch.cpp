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
  Conversion tryConvert;
};

// In the order in which they are tried.
constexpr std::array ROUTES = {
    Route{STR_alarms, tryConvertAlarm},
    Route{STR_events, tryConvertEvent},
    Route{STR_measurements, tryConvertMeasurement},
    Route{STR_managedobjects, tryConvertManagedObject},
    Route{STR_operations, tryConvertOperation},
};

} // namespace

bool isOfKind(const char* typeSegment, const char* kind) noexcept {
  // The first character tells most kinds apart without a call.
  return *typeSegment == *kind && std::strncmp(typeSegment, kind, std::strlen(kind)) == 0;
}

std::unique_ptr<TivraMessageBuilder> convertPulsarToTivraMessage(
    PulsarMessageDisassembler& notification) {
  const char* const typeSegment = notification.getStartCharOfMessageType();
  return notification.getFault().orThrow(tryConvertPulsarToTivraMessage(notification, typeSegment));
}

std::unique_ptr<TivraMessageBuilder> tryConvertPulsarToTivraMessage(
    PulsarMessageDisassembler& notification, const char* typeSegment) {
  for (const Route& route : ROUTES) {
    if (!isOfKind(typeSegment, route.kind)) continue;
    notification.discardMetadata(); // and with it the path
    return route.tryConvert(notification);
  }
  const std::string type(typeSegment, std::strcspn(typeSegment, "/"));
  notification.getFault().note(
      std::runtime_error("Unrecognised Pulsar message type: '" + type + "'"));
  return nullptr;
}

} // namespace com::velanto::connectivity::plugins::pulsar
