#include "codec/dispatch.hpp"

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
  std::string_view prefix; // of the type segment: alarmsX is a path of alarms
  Channel channel;
  std::unique_ptr<TivraMessageBuilder> (*convert)(PulsarMessageDisassembler&);
};

// In the order of the comparisons.
constexpr kind_t KINDS[] = {
    {STR_alarms, Channel::DEVICES, convertAlarm},
    {STR_events, Channel::DEVICES, convertEvent},
    {STR_measurements, Channel::MEASUREMENTS, convertMeasurement},
    {STR_managedobjects, Channel::DEVICES, convertManagedObject},
    {STR_operations, Channel::DEVICES, convertOperation},
};

} // namespace

converted_t convertPulsarToTivraMessage(PulsarMessageDisassembler& notification) {
  const std::string_view rest = notification.getStartCharOfMessageType();
  for (const kind_t& kind : KINDS) {
    if (!rest.starts_with(kind.prefix)) continue;
    notification.discardMetadata(); // and with it the path
    return {kind.convert(notification), kind.channel};
  }
  const std::string segment(rest.substr(0, rest.find('/')));
  notification.getFault().note(
      std::runtime_error("Unrecognised Pulsar message type: '" + segment + "'"));
  return {};
}

} // namespace com::velanto::connectivity::plugins::pulsar
