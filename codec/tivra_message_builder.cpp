#include "codec/tivra_message_builder.hpp"

#include <stdexcept>

#include "codec/constants.hpp"
#include "codec/field_checks.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

TivraMessageBuilder::TivraMessageBuilder(data_t&& id, data_t&& type) {
  ensureValueDataTIsString("id", id);
  fields[data_t(DATA_T_id)] = std::move(id);
  insertIntoMetadata(data_t(DATA_T_vltDOTtype), std::move(type));
}

void TivraMessageBuilder::insertIntoMetadata(data_t&& key, data_t&& value) {
  if (!key.is_string()) throw std::runtime_error("Cannot use non-string keys into metadata");
  message_.getMetadataMap()[std::move(key)] = std::move(value);
}

Message TivraMessageBuilder::getResult(std::unique_ptr<TivraMessageBuilder>&& builder) {
  // A plain insert: a field of this name that the notification brought stays.
  builder->fields.insert(data_t(DATA_T_measurements), data_t(std::move(builder->measurements)));
  builder->message_.getPayload() = data_t(std::move(builder->fields));
  return std::move(builder->message_);
}

} // namespace com::velanto::connectivity::plugins::pulsar
