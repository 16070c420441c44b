// Managed objects: the devices, assets and groups of the platform's inventory.
#ifndef VLT_CODEC_CONVERSIONS_MANAGED_OBJECT_HPP
#define VLT_CODEC_CONVERSIONS_MANAGED_OBJECT_HPP

#include <boost/optional.hpp>
#include <memory>

#include "codec/pulsar_message_disassembler.hpp"
#include "codec/tivra_message_builder.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The host event of type "com.tivra.ostrovia.ManagedObject". `id` and `name` must be strings. The
// host's rules expect the name as the field "source", and no field "type".
class ManagedObjectBuilder final : public TivraMessageBuilder {
 public:
  ManagedObjectBuilder(data_t&& id, data_t&& name, SpareParts& spares);

  // Stores the list as field `key` when all its elements are strings, otherwise hands it back.
  [[nodiscard]] boost::optional<list_t> tryAddSupported(list_t&& values, constant_t const& key);

  // Makes the field "position" of the numeric entries, if there are any, and returns the others.
  [[nodiscard]] map_t tryAddPositionComponents(map_t&& position);
};

// Consumes the notification. Null for a faulty one, which notes its first fault in the steps' order;
// malformed optional fragments are never faults.
[[nodiscard]] std::unique_ptr<TivraMessageBuilder> convertManagedObject(
    PulsarMessageDisassembler& notification);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
