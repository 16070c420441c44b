// Assembles one host event message:
//
//   payload    id, the fields of the kind, the remaining fields of the notification, "measurements"
//   metadata   vlt.type, and vlt.channel, which the codec adds
//
// Each kind derives a builder that does all its work in its constructor and adds no members; it
// lives in a std::unique_ptr from the conversion to getResult.
#ifndef VLT_CODEC_TIVRA_MESSAGE_BUILDER_HPP
#define VLT_CODEC_TIVRA_MESSAGE_BUILDER_HPP

#include <memory>

#include "codec/spare_parts.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class TivraMessageBuilder {
 public:
  TivraMessageBuilder(const TivraMessageBuilder&) = delete;
  TivraMessageBuilder& operator=(const TivraMessageBuilder&) = delete;
  virtual ~TivraMessageBuilder() = default;

  // Sets a metadata entry, over any under that key. Throws std::bad_alloc.
  void insertIntoMetadata(const constant_t& key, data_t&& value) {
    message_.getMetadataMap().assign(key.with(std::move(value)));
  }

  // Adds the field "measurements", unless the notification brought one of that name, and returns
  // the message. Empties the builder.
  [[nodiscard]] static Message getResult(std::unique_ptr<TivraMessageBuilder>&& builder);

 protected:
  // `id` must be a string; `type` names the host event. Takes keys of fields from `spares`.
  TivraMessageBuilder(data_t&& id, data_t&& type, SpareParts& spares);

  // Adds a field; there must be none of that name.
  void addField(const constant_t& key, data_t&& value, SpareParts& spares) {
    fields.add(key.hash(), spares.take(key), std::move(value));
  }

 public:
  // Series name to measurement value; stays empty for every kind but measurements.
  map_t measurements;

 private:
  Message message_; // its payload stays empty until getResult

 public:
  // The event's payload by field name. Writing a field again replaces it.
  map_t fields;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
