// Operation: (1) source, deviceId  (2) the source's id  (3) status  (4) builder
//            (5) optional dates  (6) all that is left
// The order is behaviour: the first field that is missing or wrong is the one reported, and since
// the payload's own "id" is among what is left, it replaces the "id" that the deviceId was stored
// under.
#include "codec/conversions/operation.hpp"

#include "codec/constants.hpp"
#include "codec/conversions/enum_texts.hpp"
#include "codec/payload_fields.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

constexpr EnumTexts<OperationStatus, 4, constant_t> OPERATION_STATUS_TEXTS = {
    {&DATA_T_SUCCESSFUL, &DATA_T_FAILED, &DATA_T_EXECUTING, &DATA_T_PENDING}};

} // namespace

std::unique_ptr<TivraMessageBuilder> convertOperation(PulsarMessageDisassembler& notification) {
  return notification.getFault().orThrow(tryConvertOperation(notification));
}

std::unique_ptr<TivraMessageBuilder> tryConvertOperation(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  data_t source = takeField(notification, DATA_T_source);
  data_t deviceId = takeField(notification, DATA_T_deviceId);
  data_t sourceId = reduceToId(std::move(source), notification);
  data_t status = takeField(notification, DATA_T_status);
  const OperationStatus statusValue = OPERATION_STATUS_TEXTS.fromString(
      text_or_empty(getFromDataTNotingFault<char const*>(status, "status", fault)),
      "operation status", fault);
  noteUnlessStrings({{"id", deviceId}, {"source", sourceId}}, fault);
  if (fault) return nullptr;

  notification.getSpareParts().keep(OPERATION_STATUS_TEXTS.toDataTString(statusValue),
                                    std::move(status));

  auto builder = std::make_unique<OperationMessageBuilder>(
      std::move(deviceId), std::move(sourceId), statusValue, notification.getSpareParts());
  carryOverDatesAndRemaining(notification, *builder);
  return builder;
}

OperationMessageBuilder::OperationMessageBuilder(data_t&& id, data_t&& source,
                                                 OperationStatus status, SpareParts&& spares)
    : TivraMessageBuilder(std::move(id), OPERATION_TYPE_DATA_T.copy(), spares.lend()) {
  ensureValueDataTIsString("source", source);
  addField(DATA_T_source, std::move(source), spares);
  addField(DATA_T_status, spares.take(OPERATION_STATUS_TEXTS.toDataTString(status)), spares);
}

OperationStatus operationStatusFromString(char const* text) {
  return OPERATION_STATUS_TEXTS.fromString(text, "operation status");
}

data_t const& operationStatusToDataTString(OperationStatus status) {
  return OPERATION_STATUS_TEXTS.toDataTString(status);
}

} // namespace com::velanto::connectivity::plugins::pulsar
