// Events: something that happened at a device, such as a door that opened.
#ifndef VLT_CODEC_CONVERSIONS_EVENT_HPP
#define VLT_CODEC_CONVERSIONS_EVENT_HPP

#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The host event of type "com.tivra.ostrovia.Event". `id`, `source`, `text` and `type` must be
// strings; `time` is in seconds since the epoch.
class EventMessageBuilder final : public TivraMessageBuilder {
 public:
  EventMessageBuilder(data_t&& id, data_t&& source, data_t&& text, double time, data_t&& type,
                      SpareParts& spares);
};

// Consumes the notification. Null for a faulty one, which notes its first fault in the steps' order.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertEvent(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
