// Managed object: (1) id, name, type  (2) builder  (3) supported operations and measurements
//                 (4) position  (5) references  (6) optional dates  (7) all remaining fields
// The order is behaviour: the report names the first field that is missing or wrong, and of two
// fields that end up under one name the later step's stays.
#include "codec/conversions/managed_object.hpp"

#include "codec/payload_fields.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

namespace {

// Stores the payload's value under `from` as field `to`: the builder a list of strings, this function
// any other value.
void addSupported(constant_t const& from, constant_t const& to,
                  PulsarMessageDisassembler& notification, ManagedObjectBuilder& builder) {
  boost::optional<data_t> value = extractFromMapIfPresent(notification.getPayloadMap(), from);
  if (value && value->type_tag() == VLT_TAG_LIST) {
    value = builder.tryAddSupported(std::move(value->get<list_t>()), to);
  }
  if (value) builder.fields.assign(to.with(std::move(*value)));
}

// Numeric components become "position", the others fields of their own. A value that is not a map
// vanishes.
void addPosition(PulsarMessageDisassembler& notification, ManagedObjectBuilder& builder) {
  boost::optional<data_t> position =
      extractFromMapIfPresent(notification.getPayloadMap(), DATA_T_o6a_Position);
  if (!position || position->type_tag() != VLT_TAG_MAP) return;
  map_t others = builder.tryAddPositionComponents(std::move(position->get<map_t>()));
  std::move(others).drain(
      [&builder](map_entry_t&& entry) { builder.fields.assign(std::move(entry)); });
}

} // namespace

std::unique_ptr<TivraMessageBuilder> convertManagedObject(PulsarMessageDisassembler& notification) {
  Fault& fault = notification.getFault();
  data_t& id = notification.holdId(extractField(notification, DATA_T_id));
  data_t name = extractField(notification, DATA_T_name);
  const auto type = extractFromMapIfPresent(notification.getPayloadMap(), DATA_T_type);
  ensureValueDataTIsString("id", id, fault);
  ensureValueDataTIsString("source", name, fault); // the name of its field in the event
  if (type) ensureValueDataTIsString("type", *type, fault);
  if (fault) return nullptr;

  auto builder = std::make_unique<ManagedObjectBuilder>(std::move(id), std::move(name),
                                                        notification.getSpareParts());

  addSupported(DATA_T_o6a_SupportedOperations, DATA_T_supportedOperations, notification, *builder);
  addSupported(DATA_T_o6a_SupportedMeasurements, DATA_T_supportedMeasurements, notification,
               *builder);
  addPosition(notification, *builder);

  const auto remap = [&](constant_t const& from, constant_t const& to) {
    remapPayloadElement(from, to, notification, *builder);
  };
  remap(DATA_T_childDevices, DATA_T_childDeviceIds);
  remap(DATA_T_childAssets, DATA_T_childAssetIds);
  remap(DATA_T_childAdditions, DATA_T_childAdditionIds);
  remap(DATA_T_deviceParents, DATA_T_deviceParentIds);
  remap(DATA_T_assetParents, DATA_T_assetParentIds);
  remap(DATA_T_additionParents, DATA_T_additionParentIds);

  convertDateTimePayloadElement(DATA_T_creationTime, notification, *builder);
  convertDateTimePayloadElement(DATA_T_lastUpdated, notification, *builder);
  copyOverRemainingPayloadElements(notification, *builder);
  return builder;
}

ManagedObjectBuilder::ManagedObjectBuilder(data_t&& id, data_t&& name, SpareParts& spares)
    : TivraMessageBuilder(std::move(id), MANAGEDOBJECT_TYPE_DATA_T.copy(), spares) {
  addField(DATA_T_source, std::move(name), spares);
}

boost::optional<list_t> ManagedObjectBuilder::tryAddSupported(list_t&& values,
                                                              constant_t const& key) {
  for (const data_t& value : values) {
    if (!value.is_string()) return std::move(values);
  }
  fields.assign(key.with(std::move(values)));
  return boost::none;
}

map_t ManagedObjectBuilder::tryAddPositionComponents(map_t&& position) {
  map_t components;
  map_t others;
  std::move(position).drain([&](map_entry_t&& entry) {
    (dataTConvertableToFloat(entry.value) ? components : others).insert(std::move(entry));
  });
  if (!components.empty()) fields.assign(DATA_T_position.with(std::move(components)));
  return others;
}

} // namespace com::velanto::connectivity::plugins::pulsar
