#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

TivraMessageBuilder::TivraMessageBuilder(data_t&& id, data_t&& type, SpareParts& spares)
    : message_(data_t(), spares.takeMap()), fields(spares.takeMap()) {
  addField(DATA_T_id, std::move(id), spares);
  message_.getMetadataMap().add(DATA_T_vltDOTtype.hash(), DATA_T_vltDOTtype.copy(),
                                std::move(type));
}

Message TivraMessageBuilder::getResult(std::unique_ptr<TivraMessageBuilder>&& builder) {
  // A plain insert: a field of this name that the notification brought stays.
  builder->fields.insert(DATA_T_measurements.with(data_t(std::move(builder->measurements))));
  builder->message_.getPayload() = data_t(std::move(builder->fields));
  return std::move(builder->message_);
}

} // namespace com::velanto::connectivity::plugins::pulsar
