// Operations: commands sent to a device, such as a restart, with how far they have got.
#ifndef VLT_CODEC_CONVERSIONS_OPERATION_HPP
#define VLT_CODEC_CONVERSIONS_OPERATION_HPP

#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

enum class OperationStatus { SUCCESSFUL, FAILED, EXECUTING, PENDING };

// Case-sensitive. Any other string is a fault, "Unrecognized operation status: TEXT".
[[nodiscard]] OperationStatus operationStatusFromString(char const* text, Fault& fault);
// The constant word of the status. Throws std::runtime_error "Unrecognized enum value.".
[[nodiscard]] constant_t const& operationStatusToDataTString(OperationStatus status);

// The host event of type "com.tivra.ostrovia.Operation". `id` and `source` must be strings.
class OperationMessageBuilder final : public TivraMessageBuilder {
 public:
  OperationMessageBuilder(data_t&& id, data_t&& source, OperationStatus status, SpareParts& spares);
};

// Consumes the notification. Null for a faulty one, which notes its first fault in the steps' order.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertOperation(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
