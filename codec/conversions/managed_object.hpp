// Managed objects: the devices, assets and groups of the platform's inventory.
#ifndef VLT_CODEC_CONVERSIONS_MANAGED_OBJECT_HPP
#define VLT_CODEC_CONVERSIONS_MANAGED_OBJECT_HPP

#include <boost/optional.hpp>
#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The host event of type "com.tivra.ostrovia.ManagedObject". `id`, `name` and `type` must be
// strings. The name becomes the field "source", and a bad one is reported under that word; the type
// is checked and then dropped. Both are what the host's rules expect.
class ManagedObjectBuilder final : public TivraMessageBuilder {
 public:
  ManagedObjectBuilder(data_t&& id, data_t&& name, data_t&& type,
                       SpareParts&& spares = SpareParts());

  // Stores the list as field `key` when all its elements are strings, otherwise hands it back.
  [[nodiscard]] boost::optional<list_t> tryAddSupported(list_t&& values, key_ref key);

  // Makes the field "position" of the numeric entries, if there are any, and returns the others.
  [[nodiscard]] map_t tryAddPositionComponents(map_t&& position);
};

// Consumes the notification. Throws std::runtime_error naming the first field that is missing or
// wrong, in the order of the steps; malformed optional fragments are never errors.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertManagedObject(
    PulsarMessageDisassembler& notification);
// The same, but notes the error in the notification and returns null.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> tryConvertManagedObject(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
