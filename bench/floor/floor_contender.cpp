// One plan:
//
// (1) Make the stand-by copy of the id.
// (2) Find the tables.
// (3) Free consumed blocks.
// (4) Build the event's tables.
// (5) Leave deleted slots.
// (6) Free the rest of the notification.
// (7) Free the stand-by copy.
#include "bench/floor/floor_contender.hpp"
#include "ndjson/json_writer.hpp"

namespace com::velanto::connectivity::bench::floor {

namespace {

using way_t = origin_t::way_t;
using table_t = vlt_underlying_map_table_t;
using slot_t = vlt_underlying_map_table_entry_t;

slot_t& slotAt(table_t* table, std::uint32_t slot) noexcept {
  return reinterpret_cast<slot_t*>(table + 1)[slot];
}

vlt_underlying_data_t taken(vlt_underlying_data_t& value) noexcept {
  const vlt_underlying_data_t content = value;
  value.tag = VLT_TAG_EMPTY;
  return content;
}

void freeText(vlt_underlying_data_t& value) noexcept {
  vlt_free_string(const_cast<char*>(taken(value).value.string));
}

} // namespace

FloorContender::FloorContender(const lines_t& lines, std::size_t batch, variant_t variant,
                               tables_t tables)
    : BatchContender(batch),
      prototypes_(readMessages(lines, tables)),
      messages_(prototypes_.size()) {
  texts_.of("id");
  for (const Message& prototype : prototypes_) {
    const auto& message = reinterpret_cast<const vlt_underlying_message_t&>(prototype);
    plans_.push_back(makePlan(message, variant, texts_));
  }
}

void FloorContender::fill(const order_t& order) {
  copyMessages(prototypes_, order, messages_);
  order_ = order;
}

void FloorContender::convert(std::size_t first, std::size_t end) {
  for (std::size_t i = first; i < end; ++i) {
    const plan_t& plan = plans_[order_[i]];
    if (plan.passes) continue;
    carryOut(plan, reinterpret_cast<vlt_underlying_message_t&>(messages_[i]));
  }
}

lines_t FloorContender::render() {
  lines_t lines;
  for (const Message& message : messages_) lines.push_back(toJson(message));
  return lines;
}

void FloorContender::carryOut(const plan_t& plan, vlt_underlying_message_t& message) {
  table_t* stand_by = nullptr;
  if (plan.has_id) {
    stand_by = vlt_allocate_map(FIRST_CAPACITY);
    slot_t& slot = slotAt(stand_by, 0);
    slot.key = vlt_copy_data(&texts_.value(0));
    slot.value = vlt_copy_data(&slotAt(message.payload.value.map, plan.id_slot).value);
    stand_by->live = 1;
  }
  openInputs(plan, message);
  freeTexts(plan);
  buildOutputs(plan);
  eraseTaken(plan);
  for (const std::uint32_t table : plan.freed_tables) vlt_free_map(inputs_[table]);
  if (stand_by != nullptr) vlt_free_map(stand_by);
  message.payload.value.map = outputs_[outputs_.size() - 1];
  message.metadata = outputs_[outputs_.size() - 2];
}

void FloorContender::openInputs(const plan_t& plan, const vlt_underlying_message_t& message) {
  inputs_.clear();
  inputs_.push_back(message.payload.value.map);
  inputs_.push_back(message.metadata);
  for (const opened_t& place : plan.opened) {
    inputs_.push_back(slotAt(inputs_[place.table], place.slot).value.value.map);
  }
}

void FloorContender::freeTexts(const plan_t& plan) {
  for (const freed_t& place : plan.freed) {
    slot_t& slot = slotAt(inputs_[place.table], place.slot);
    freeText(place.is_key ? slot.key : slot.value);
  }
  for (const std::uint32_t text : plan.copied_in_vain) {
    vlt_underlying_data_t copy = vlt_copy_data(&texts_.value(text));
    freeText(copy);
  }
  for (const std::int64_t capacity : plan.transient_tables) {
    vlt_free_map(vlt_allocate_map(capacity));
  }
}

void FloorContender::buildOutputs(const plan_t& plan) {
  outputs_.clear();
  const entry_t* entry = plan.entries.data();
  const growth_t* growth = plan.growths.data();
  for (const output_table_t& output : plan.outputs) {
    table_t* table = vlt_allocate_map(output.capacity);
    const growth_t* const last_growth = growth + output.growths;
    for (std::uint32_t i = 0; i < output.entries; ++i, ++entry) {
      if (growth != last_growth && growth->before == i) {
        table->live = i;
        table = vlt_reallocate_map(table, growth->capacity);
        ++growth;
      }
      place(plan, table, *entry);
    }
    table->live = output.entries;
    outputs_.push_back(table);
  }
}

void FloorContender::place(const plan_t& plan, table_t* table, const entry_t& entry) {
  slot_t& slot = slotAt(table, entry.slot);
  slot.hash = entry.hash;
  slot.key = entry.key.way() == way_t::COPIED
                 ? vlt_copy_data(&texts_.value(entry.key.index()))
                 : taken(slotAt(inputs_[entry.key.index()], entry.key.slot()).key);
  switch (entry.value.way()) {
    case way_t::MOVED:
      slot.value = taken(slotAt(inputs_[entry.value.index()], entry.value.slot()).value);
      break;
    case way_t::COPIED:
      slot.value = vlt_copy_data(&texts_.value(entry.value.index()));
      break;
    case way_t::CONSTANT:
      slot.value = plan.constants[entry.value.index()];
      break;
    case way_t::TABLE:
      slot.value.value.map = outputs_[entry.value.index()];
      slot.value.tag = VLT_TAG_MAP;
      break;
  }
}

void FloorContender::eraseTaken(const plan_t& plan) {
  for (const erased_t& place : plan.erased) {
    table_t* const table = inputs_[place.table];
    slotAt(table, place.slot) = {.hash = 1, .key = {}, .value = {}};
    --table->live;
    ++table->deleted;
  }
}

} // namespace com::velanto::connectivity::bench::floor
