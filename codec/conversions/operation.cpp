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

std::unique_ptr<TivraMessageBuilder> convertOperation(PulsarMessageDisassembler& notification) {
  map_t& payload = notification.getPayloadMap();
  data_t source = extractFromMapOrThrow(payload, DATA_T_source, IN_MESSAGE_PAYLOAD);
  data_t deviceId = extractFromMapOrThrow(payload, DATA_T_deviceId, IN_MESSAGE_PAYLOAD);
  data_t sourceId = extractSourceId(source);
  const data_t status = extractFromMapOrThrow(payload, DATA_T_status, IN_MESSAGE_PAYLOAD);
  const OperationStatus statusValue = operationStatusFromString(
      text_or_empty(getFromDataTReportingKey<char const*>(status, "status")));

  auto builder = std::make_unique<OperationMessageBuilder>(std::move(deviceId), std::move(sourceId),
                                                           statusValue);
  convertDateTimePayloadElement(DATA_T_creationTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_firstOccurrenceTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, *builder);
  copyOverRemainingPayloadElements(notification, *builder);
  return builder;
}

OperationMessageBuilder::OperationMessageBuilder(data_t&& id, data_t&& source,
                                                 OperationStatus status)
    : TivraMessageBuilder(std::move(id), data_t(OPERATION_TYPE_DATA_T)) {
  ensureValueDataTIsString("source", source);
  fields[data_t(DATA_T_source)] = std::move(source);
  fields[data_t(DATA_T_status)] = operationStatusToDataTString(status);
}

namespace {

constexpr EnumTexts<OperationStatus, 4> STATUS_TEXTS = {
    {&DATA_T_SUCCESSFUL, &DATA_T_FAILED, &DATA_T_EXECUTING, &DATA_T_PENDING}};

} // namespace

OperationStatus operationStatusFromString(char const* text) {
  return STATUS_TEXTS.fromString(text, "operation status");
}

data_t const& operationStatusToDataTString(OperationStatus status) {
  return STATUS_TEXTS.toDataTString(status);
}

} // namespace com::velanto::connectivity::plugins::pulsar
