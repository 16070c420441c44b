#include "codec/tivra_message_builder.hpp"

#include <stdexcept>

#include "codec/constants.hpp"
#include "codec/field_checks.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

TivraMessageBuilder::TivraMessageBuilder(data_t&& id, data_t&& type, SpareParts&& spares)
    : message_(data_t(), spares.takeMap()), fields(spares.takeMap()) {
  ensureValueDataTIsString("id", id);
  addField(DATA_T_id, std::move(id), spares);
  message_.getMetadataMap().add(DATA_T_vltDOTtype.hash(), DATA_T_vltDOTtype.copy(),
                                std::move(type));
}

void TivraMessageBuilder::insertIntoMetadata(data_t&& key, data_t&& value) {
  if (!key.is_string()) throw std::runtime_error("Cannot use non-string keys into metadata");
  const std::uint64_t hash = hashes::key_hash(key);
  message_.getMetadataMap().assign({hash, std::move(key), std::move(value)});
}

Message TivraMessageBuilder::getResult(std::unique_ptr<TivraMessageBuilder>&& builder) {
  // A plain insert: a field of this name that the notification brought stays.
  builder->fields.insert(DATA_T_measurements.with(data_t(std::move(builder->measurements))));
  builder->message_.getPayload() = data_t(std::move(builder->fields));
  return std::move(builder->message_);
}

} // namespace com::velanto::connectivity::plugins::pulsar
