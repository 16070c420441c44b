// Operation: (1) source, deviceId  (2) the source's id  (3) status  (4) builder
//            (5) optional dates  (6) all remaining fields
// The order is behaviour: the report names the first field that is missing or wrong. The payload's
// own "id" is a remaining field, so it replaces the "id" made from the deviceId.
#include "codec/conversions/operation.hpp"

#include "codec/conversions/enum_texts.hpp"
#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

constexpr EnumTexts<OperationStatus, 4> OPERATION_STATUS_TEXTS = {
    {&DATA_T_SUCCESSFUL, &DATA_T_FAILED, &DATA_T_EXECUTING, &DATA_T_PENDING}};

} // namespace

OperationStatus operationStatusFromString(char const* text, Fault& fault) {
  return OPERATION_STATUS_TEXTS.fromString(text_or_empty(text), "operation status", fault);
}

constant_t const& operationStatusToDataTString(OperationStatus status) {
  return OPERATION_STATUS_TEXTS.toDataTString(status);
}

std::unique_ptr<TivraMessageBuilder> convertOperation(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  SpareParts& spares = notification.getSpareParts();
  data_t source = extractField(notification, DATA_T_source);
  data_t device_id = extractField(notification, DATA_T_deviceId); // the "id" stays in the payload
  data_t source_id = extractSourceId(std::move(source), notification);
  data_t status = extractField(notification, DATA_T_status);
  const OperationStatus status_value = operationStatusFromString(
      getFromDataTReportingKey<char const*>(status, "status", fault), fault);
  ensureValueDataTIsString("id", device_id, fault);
  ensureValueDataTIsString("source", source_id, fault);
  if (fault) return nullptr;

  spares.keep(operationStatusToDataTString(status_value), std::move(status));
  auto builder = std::make_unique<OperationMessageBuilder>(
      std::move(device_id), std::move(source_id), status_value, spares);
  carryOverDatesAndRemaining(notification, *builder);
  return builder;
}

OperationMessageBuilder::OperationMessageBuilder(data_t&& id, data_t&& source,
                                                 OperationStatus status, SpareParts& spares)
    : TivraMessageBuilder(std::move(id), OPERATION_TYPE_DATA_T.copy(), spares) {
  addField(DATA_T_source, std::move(source), spares);
  addField(DATA_T_status, spares.take(operationStatusToDataTString(status)), spares);
}

} // namespace com::velanto::connectivity::plugins::pulsar
