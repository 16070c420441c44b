// The codec: replaces each notification on its way to the host by a typed host event. Reports and
// drops every notification that it cannot decode, and lets all other messages pass.
//
//   metadata has no "pulsarPath"   →  passes untouched, not even traced
//   conversion succeeds            →  replaced by the event
//   conversion fails               →  one level-3 line, dropped
//
// Configuration: "measurementSplittingChannel", "towardsHostChannelPrefix", "tenantId" (required).
#ifndef VLT_CODEC_OSTROVIA_NOTIFICATIONS2_CODEC_HPP
#define VLT_CODEC_OSTROVIA_NOTIFICATIONS2_CODEC_HPP

#include <boost/optional.hpp>

#include "codec/dispatch.hpp"
#include "plugin/abstract_simple_codec.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class OstroviaNotifications2Codec final : public AbstractSimpleCodec {
 public:
  // Throws std::runtime_error when "tenantId" is missing, empty of any value or not a string.
  // Throws std::bad_alloc, also when the library has no constants: there was no memory for them at
  // its load, or the process is ending.
  explicit OstroviaNotifications2Codec(
      const PluginConstructorParameters::CodecConstructorParameters& params);

  // Returns true for an event, and for a message without a path, which stays as it is. Reports any
  // other notification, drops it and returns false. A dropped notification keeps its "id" alone, if
  // that is a string and there is memory for it. A payload that is not a map stays whole. Throws,
  // with the message whole, when the trace fails or there is no memory for a long id.
  bool transformMessageTowardsHost(Message& message) override;
  // Returns true and changes nothing.
  bool transformMessageTowardsTransport(Message& message) override;
  // Reports the exception in flight at level 3. Returns false, which drops the message.
  bool handleException(Message& message, bool towards_transport) override;

 private:
  // The event, or an empty message for a notification with a fault. A custom value in a field's key,
  // a path that is not a string and exhausted memory are thrown.
  [[nodiscard]] Message processPulsarMessage(PulsarMessageDisassembler& notification) const;
  // Write the line about a dropped message, if the level asks for it. `id` is null for a message
  // without one, `what` for a failure without a message. Only a line of unusual length takes
  // memory; without memory it is cut.
  void reportDropped(const char* id, bool towards_transport, const char* what) const noexcept;
  void reportExceptionInFlight(const char* id, bool towards_transport) const noexcept;

  ConstantsUser constants_user_;      // first: the constructor needs the constants
  data_t measurementSplittingChannel; // for events made from measurements
  data_t devicesChannel;              // for all others, prefix included
  boost::optional<data_t> tenantId;   // written into every event when set
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
