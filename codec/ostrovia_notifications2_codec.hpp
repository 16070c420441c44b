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

#include "codec/constant.hpp"
#include "codec/fault.hpp"
#include "plugin/abstract_simple_codec.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class OstroviaNotifications2Codec final : public AbstractSimpleCodec {
 public:
  // Throws std::runtime_error when "tenantId" is missing, empty of any value or not a string, and
  // std::bad_alloc, also when there was no memory for the constants while the library was loaded.
  explicit OstroviaNotifications2Codec(
      const PluginConstructorParameters::CodecConstructorParameters& params);

  // Returns true for an event, and for a message without a path, which is left as it is. Reports a
  // notification that is faulty and returns false. What is not noted as a fault (fields with a
  // custom value in their key, a path that is no string, memory that runs out) is thrown, and not
  // reported yet. `message` holds nothing then but the notification's "id", if that was a string and
  // there is memory for it; but it is untouched when its payload is no map, when the trace fails and
  // when there is no memory to begin with.
  bool transformMessageTowardsHost(Message& message) override;
  // Returns true and changes nothing.
  bool transformMessageTowardsTransport(Message& message) override;
  // Reports the exception in flight at level 3. Returns false: the message is dropped, also when
  // there is no memory for the report.
  bool handleException(Message& message, bool towardsTransport) override;

 private:
  // Whether the notification in `message` could be converted; otherwise it is left as after
  // transformMessageTowardsHost. `path` is the value of its pulsarPath.
  [[nodiscard]] bool replaceByEvent(Message& message, const data_t& path, Fault& fault) const;
  // What has been looked up in a notification so far. It stays where it is while the message is
  // moved, since tables are handed on and not copied.
  struct found_t {
    const data_t& path;
    const map_entry_t* id; // null unless it is a string
  };
  // The event, or nothing for a faulty notification. `channelKey` is a copy of the key under which
  // the channel goes into its metadata.
  [[nodiscard]] Message processPulsarMessage(Message&& notification, const found_t& found,
                                             data_t&& channelKey, Fault& fault) const;
  // Writes the line about a dropped message, if the level asks for it and there is memory for it.
  // `what` is null for a failure without a text.
  void reportDropped(const Message& message, bool towardsTransport,
                     const char* what) const noexcept;

  ConstantsUser constants_;           // first: made before the others, destroyed after them
  data_t measurementSplittingChannel; // for events made from measurements
  data_t devicesChannel;              // for all others, prefix included
  boost::optional<data_t> tenantId;   // written into every event when set
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
