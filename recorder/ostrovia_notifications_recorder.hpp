// The recorder: a plug-in that passes every batch on as it came, and records its messages as lines
// of JSON in files.
#ifndef VLT_RECORDER_OSTROVIA_NOTIFICATIONS_RECORDER_HPP
#define VLT_RECORDER_OSTROVIA_NOTIFICATIONS_RECORDER_HPP

#include "plugin/abstract_codec.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class OstroviaNotificationsRecorder final : public AbstractCodec {
 public:
  using AbstractCodec::AbstractCodec;

  // Pass the very range on. Without a link the batch goes nowhere. Exceptions of the link leave
  // these calls.
  void sendBatchTowardsHost(Message* start, Message* end) override;
  void sendBatchTowardsTransport(Message* start, Message* end) override;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
