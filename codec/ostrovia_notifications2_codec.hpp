// The codec: replaces each notification on its way to the host by a typed host event, drops and
// reports what it cannot decode, and lets everything else pass.
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
  // Throws std::runtime_error when "tenantId" is missing, empty of any value or not a string, and
  // std::bad_alloc, also when there was no memory for the constants while the library was loaded.
  explicit OstroviaNotifications2Codec(
      const PluginConstructorParameters::CodecConstructorParameters& params);

  // Returns true for an event, and for a message without a path, which is left as it is. Reports any
  // other notification, drops it and returns false. A dropped notification leaves its "id" alone, if
  // that is a string and there is memory for it; one whose payload is no map is left untouched.
  // Throws, with the message untouched, when the trace fails or there is no memory for a long id.
  bool transformMessageTowardsHost(Message& message) override;
  // Returns true and changes nothing.
  bool transformMessageTowardsTransport(Message& message) override;
  // Reports the exception in flight at level 3. Returns false: the message is dropped.
  bool handleException(Message& message, bool towardsTransport) override;

 private:
  // The event, or an empty message for a notification with a fault. A custom value in a field's key,
  // a path that is no string and exhausted memory are thrown.
  [[nodiscard]] Message processPulsarMessage(PulsarMessageDisassembler& notification) const;
  [[nodiscard]] const data_t& channelFor(Channel channel) const noexcept;
  // Write the line about a dropped message, if the level asks for it. `id` is null for a message
  // without one, `what` for a failure without a text. Only a line of unusual length takes memory; it
  // is cut when there is none.
  void reportDropped(const char* id, bool towardsTransport, const char* what) const noexcept;
  void reportExceptionInFlight(const char* id, bool towardsTransport) const noexcept;

  ConstantsUser constantsUser;        // before the members that are made with constants
  data_t measurementSplittingChannel; // for events made from measurements
  data_t devicesChannel;              // for all others, prefix included
  boost::optional<data_t> tenantId;   // written into every event when set
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
