#include "codec/dispatch.hpp"

#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "codec/conversions/alarm.hpp"
#include "codec/conversions/event.hpp"
#include "codec/conversions/managed_object.hpp"
#include "codec/conversions/measurement.hpp"
#include "codec/conversions/operation.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

struct kind_t {
  std::string_view word; // that its type segments begin with: alarmsX is accepted as alarms
  Channel channel;
  std::unique_ptr<TivraMessageBuilder> (*convert)(PulsarMessageDisassembler&);
};

// In the order in which they are tried.
constexpr kind_t KINDS[] = {
    {STR_alarms, Channel::DEVICES, convertAlarm},
    {STR_events, Channel::DEVICES, convertEvent},
    {STR_measurements, Channel::MEASUREMENTS, convertMeasurement},
    {STR_managedobjects, Channel::DEVICES, convertManagedObject},
    {STR_operations, Channel::DEVICES, convertOperation},
};

bool isOfKind(const char* typeSegment, const kind_t& kind) noexcept {
  // The first character tells most kinds apart without a call.
  return *typeSegment == kind.word.front() &&
         std::strncmp(typeSegment, kind.word.data(), kind.word.size()) == 0;
}

} // namespace

converted_t convertPulsarToTivraMessage(PulsarMessageDisassembler& notification) {
  const char* const typeSegment = notification.getStartCharOfMessageType();
  for (const kind_t& kind : KINDS) {
    if (!isOfKind(typeSegment, kind)) continue;
    notification.discardMetadata(); // and with it the path
    return {kind.convert(notification), kind.channel};
  }
  const std::string segment(typeSegment, std::strcspn(typeSegment, "/"));
  notification.getFault().note(
      std::runtime_error("Unrecognised Pulsar message type: '" + segment + "'"));
  return {};
}

} // namespace com::velanto::connectivity::plugins::pulsar
