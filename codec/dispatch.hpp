// Routes a notification to the conversion of its resource kind.
#ifndef VLT_CODEC_DISPATCH_HPP
#define VLT_CODEC_DISPATCH_HPP

#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// Whether a type segment, or any text that begins at one, begins with the word of a kind. Only the
// word's own length counts: alarmsX is accepted as alarms.
[[nodiscard]] bool isOfKind(const char* typeSegment, const char* kind) noexcept;

// The event made from the notification, which is consumed: its metadata, and with them the path,
// are gone. Throws what the conversion throws, and std::runtime_error "Unrecognised Pulsar message
// type: 'SEGMENT'".
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertPulsarToTivraMessage(
    PulsarMessageDisassembler& notification);
// The same for one whose type segment has been looked up already, but notes the error of the
// conversion, or that there is none, in the notification and returns null.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> tryConvertPulsarToTivraMessage(
    PulsarMessageDisassembler& notification, const char* typeSegment);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
