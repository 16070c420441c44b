// Routes a notification to the conversion of its resource kind.
#ifndef VLT_CODEC_DISPATCH_HPP
#define VLT_CODEC_DISPATCH_HPP

#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

enum class Channel { DEVICES, MEASUREMENTS };

struct converted_t {
  std::unique_ptr<TivraMessageBuilder> builder; // null when the notification is faulty
  Channel channel;                              // of the event
};

// Consumes the notification; returns its event and the channel for it. A path of no known kind is a
// fault, "Unrecognised Pulsar message type: 'SEGMENT'". Throws the exceptions of
// getStartCharOfMessageType, and std::bad_alloc.
[[nodiscard]] converted_t convertPulsarToTivraMessage(PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
