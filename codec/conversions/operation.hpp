// Operations: commands sent to a device, such as a restart, with how far they have got.
#ifndef VLT_CODEC_CONVERSIONS_OPERATION_HPP
#define VLT_CODEC_CONVERSIONS_OPERATION_HPP

#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

enum class OperationStatus { SUCCESSFUL, FAILED, EXECUTING, PENDING };

// `text` is not null; the comparison is case-sensitive. Throws std::runtime_error "Unrecognized
// operation status: TEXT".
[[nodiscard]] OperationStatus operationStatusFromString(char const* text);
// The constant text of the status. Throws std::runtime_error "Unrecognized enum value.".
[[nodiscard]] data_t const& operationStatusToDataTString(OperationStatus status);

// The host event of type "com.tivra.ostrovia.Operation". `id` and `source` must be strings.
class OperationMessageBuilder final : public TivraMessageBuilder {
 public:
  OperationMessageBuilder(data_t&& id, data_t&& source, OperationStatus status,
                          SpareParts&& spares = SpareParts());
};

// Consumes the notification. Throws std::runtime_error naming the first field that is missing or
// wrong, in the order of the steps.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertOperation(
    PulsarMessageDisassembler& notification);
// The same, but notes the error in the notification and returns null.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> tryConvertOperation(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
