#include "bench/floor/plan_builder.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <tuple>

#include "codec/timestamps.hpp"

namespace com::velanto::connectivity::bench::floor {

namespace {

const vlt_underlying_map_table_entry_t* slotsOf(const vlt_underlying_map_table_t* table) {
  return reinterpret_cast<const vlt_underlying_map_table_entry_t*>(table + 1);
}

} // namespace

PlanBuilder::PlanBuilder(const vlt_underlying_message_t& notification, variant_t variant,
                         Texts& texts)
    : variant_(variant),
      texts_(texts),
      inputs_{notification.payload.value.map, notification.metadata},
      taken_(2) {
  const vlt_underlying_data_t* const id = find(PAYLOAD, "id");
  plan_.has_id = id != nullptr && id->tag == VLT_TAG_STRING;
  if (plan_.has_id) plan_.id_slot = slotOfValue(PAYLOAD, id);
}

// ---- input

const vlt_underlying_map_table_entry_t& PlanBuilder::slotAt(std::uint32_t table,
                                                            std::uint32_t slot) const {
  return slotsOf(inputs_[table])[slot];
}

bool PlanBuilder::isTaken(std::uint32_t table, std::uint32_t slot) const {
  return std::find(taken_[table].begin(), taken_[table].end(), slot) != taken_[table].end();
}

void PlanBuilder::forEach(std::uint32_t table,
                          const std::function<void(std::uint32_t)>& visit) const {
  const auto capacity =
      inputs_[table] == nullptr ? 0 : static_cast<std::uint32_t>(inputs_[table]->capacity);
  for (std::uint32_t slot = 0; slot < capacity; ++slot) {
    if (slotAt(table, slot).key.tag != VLT_TAG_EMPTY && !isTaken(table, slot)) visit(slot);
  }
}

const vlt_underlying_data_t* PlanBuilder::find(std::uint32_t table, const char* key) const {
  const vlt_underlying_data_t* found = nullptr;
  forEach(table, [&](std::uint32_t slot) {
    const auto& entry = slotAt(table, slot);
    if (std::strcmp(entry.key.value.string, key) == 0) found = &entry.value;
  });
  return found;
}

std::uint32_t PlanBuilder::slotOfValue(std::uint32_t table,
                                       const vlt_underlying_data_t* value) const {
  const auto offset =
      reinterpret_cast<const char*>(value) - reinterpret_cast<const char*>(slotsOf(inputs_[table]));
  return static_cast<std::uint32_t>(static_cast<std::size_t>(offset) /
                                    sizeof(vlt_underlying_map_table_entry_t));
}

std::optional<PlanBuilder::taken_t> PlanBuilder::takeIfPresent(std::uint32_t table,
                                                               const char* key) {
  const vlt_underlying_data_t* const value = find(table, key);
  if (value == nullptr) return std::nullopt;
  return takeAt(table, slotOfValue(table, value));
}

PlanBuilder::taken_t PlanBuilder::take(std::uint32_t table, const char* key) {
  const auto value = takeIfPresent(table, key);
  if (!value) throw std::logic_error(std::string("a floor needs notifications with ") + key);
  return *value;
}

PlanBuilder::taken_t PlanBuilder::takeAt(std::uint32_t table, std::uint32_t slot) {
  const auto& entry = slotAt(table, slot);
  spare_keys_[entry.key.value.string].push_back({table, slot, &entry.key});
  plan_.erased.push_back({table, slot});
  taken_[table].push_back(slot);
  return {table, slot, &entry.value};
}

std::uint32_t PlanBuilder::open(const taken_t& map) {
  if (map.value->tag != VLT_TAG_MAP) throw std::logic_error("a floor opens maps only");
  plan_.opened.push_back({map.table, map.slot});
  inputs_.push_back(map.value->value.map);
  taken_.emplace_back();
  return static_cast<std::uint32_t>(inputs_.size() - 1);
}

void PlanBuilder::drop(const taken_t& value) {
  if (value.value->tag == VLT_TAG_STRING) {
    spare_values_[value.value->value.string].push_back(value);
  } else if (value.value->tag > VLT_TAG_STRING) {
    throw std::logic_error("a floor drops strings and numbers only");
  }
}

// ---- output

origin_t PlanBuilder::constant(const vlt_underlying_data_t& value) {
  plan_.constants.push_back(value);
  return {origin_t::way_t::CONSTANT, static_cast<std::uint32_t>(plan_.constants.size() - 1)};
}

origin_t PlanBuilder::constant(double value) {
  vlt_underlying_data_t content{};
  content.value.real = value;
  content.tag = VLT_TAG_DOUBLE;
  return constant(content);
}

// The value of a field that is set again.
void PlanBuilder::dropOrigin(origin_t value) {
  if (value.way() == origin_t::way_t::CONSTANT) return;
  if (value.way() != origin_t::way_t::MOVED) {
    throw std::logic_error("a floor replaces only values of the notification");
  }
  drop({value.index(), value.slot(), &slotAt(value.index(), value.slot()).value});
}

void PlanBuilder::put(OutputModel& output, const char* key, origin_t value) {
  if (entry_t* const entry = output.find(key)) {
    copyInVain(key);
    dropOrigin(entry->value);
    entry->value = value;
    return;
  }
  const origin_t key_copy = copied(key);
  output.add(key, texts_.hash(key_copy.index()), key_copy, value);
}

void PlanBuilder::putEntry(OutputModel& output, std::uint32_t table, std::uint32_t slot) {
  const auto& from = slotAt(table, slot);
  const origin_t origin(origin_t::way_t::MOVED, table, slot);
  if (entry_t* const entry = output.find(from.key.value.string)) {
    spare_keys_[from.key.value.string].push_back({table, slot, &from.key});
    dropOrigin(entry->value);
    entry->value = origin;
    return;
  }
  output.add(from.key.value.string, from.hash, origin, origin);
}

bool PlanBuilder::insertUnder(OutputModel& output, std::uint32_t table, std::uint32_t slot,
                              origin_t value) const {
  const auto& from = slotAt(table, slot);
  if (output.find(from.key.value.string) != nullptr) return false;
  output.add(from.key.value.string, from.hash, {origin_t::way_t::MOVED, table, slot}, value);
  return true;
}

void PlanBuilder::convertDate(const char* key) {
  const auto value = takeIfPresent(PAYLOAD, key);
  if (!value) return;
  if (value->value->tag == VLT_TAG_STRING) {
    if (const auto seconds = plugins::pulsar::tryParseTime(value->value->value.string)) {
      drop(*value);
      return put(fields, key, constant(*seconds));
    }
  }
  put(fields, key, moved(*value));
}

void PlanBuilder::makeTransient(const TableModel& model) {
  // The cost of a growth depends on the entries in the table, and this one has none yet. The few
  // components of a position fit the first table.
  if (!model.growths().empty()) throw std::logic_error("a floor has small transient tables only");
  plan_.transient_tables.push_back(FIRST_CAPACITY);
}

std::optional<PlanBuilder::taken_t> PlanBuilder::reuse(spares_t& spares, std::uint32_t text) {
  if (variant_ == variant_t::PLAIN) return std::nullopt;
  const auto found = spares.find(texts_.text(text));
  if (found == spares.end() || found->second.empty()) return std::nullopt;
  const taken_t spare = found->second.back();
  found->second.pop_back();
  return spare;
}

origin_t PlanBuilder::withReuse(origin_t origin, spares_t& spares) {
  if (origin.way() != origin_t::way_t::COPIED) return origin;
  const auto spare = reuse(spares, origin.index());
  return spare ? moved(*spare) : origin;
}

origin_t PlanBuilder::finish(const OutputModel& output) {
  const TableModel& table = output.table();
  const bool is_sized = variant_ == variant_t::SIZED;
  const std::vector<std::uint32_t> slots = table.finalSlots();
  for (std::size_t i = 0; i < output.entries().size(); ++i) {
    entry_t entry = output.entries()[i];
    entry.key = withReuse(entry.key, spare_keys_);
    entry.value = withReuse(entry.value, spare_values_);
    if (is_sized) entry.slot = slots[i];
    plan_.entries.push_back(entry);
  }
  const std::size_t growths = is_sized ? 0 : table.growths().size();
  plan_.growths.insert(plan_.growths.end(), table.growths().begin(),
                       table.growths().begin() + static_cast<std::ptrdiff_t>(growths));
  plan_.outputs.push_back({is_sized ? table.capacity() : FIRST_CAPACITY,
                           static_cast<std::uint32_t>(output.entries().size()),
                           static_cast<std::uint32_t>(growths)});
  return {origin_t::way_t::TABLE, static_cast<std::uint32_t>(plan_.outputs.size() - 1)};
}

plan_t PlanBuilder::result() {
  finish(metadata);
  finish(fields);
  // A spare of the same string takes the place of the copy. The plan frees it with the others.
  for (const std::uint32_t text : in_vain_) {
    const auto spare = reuse(spare_keys_, text);
    if (!spare) {
      plan_.copied_in_vain.push_back(text);
    } else {
      plan_.freed.push_back({spare->table, spare->slot, true});
    }
  }
  for (auto* const spares : {&spare_keys_, &spare_values_}) {
    for (const auto& [text, places] : *spares) {
      for (const taken_t& place : places) {
        plan_.freed.push_back({place.table, place.slot, spares == &spare_keys_});
      }
    }
  }
  std::sort(plan_.freed.begin(), plan_.freed.end(), [](const freed_t& a, const freed_t& b) {
    return std::tie(a.table, a.slot, a.is_key) < std::tie(b.table, b.slot, b.is_key);
  });
  freeTable(PAYLOAD);
  freeTable(METADATA);
  return std::move(plan_);
}

} // namespace com::velanto::connectivity::bench::floor
