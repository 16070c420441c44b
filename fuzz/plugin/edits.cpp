#include "fuzz/plugin/edits.hpp"

#include <array>
#include <cstddef>

#include "fuzz/plugin/samples.hpp"

namespace com::velanto::connectivity::fuzz {

namespace {

struct place_t {
  model::value_t* value = nullptr;
  model::table_t* table = nullptr; // that holds the value, at `slot`; null: none
  std::size_t slot = 0;
};

// ---- the way to a place

std::size_t anyEntry(const model::table_t& table, ValueMaker& input) {
  std::size_t skipped = input.below(static_cast<std::size_t>(table.live));
  std::size_t slot = 0;
  while (!model::is_live(table.slots[slot]) || skipped-- > 0) ++slot;
  return slot;
}

place_t anyEntryIn(model::table_t& table, ValueMaker& input) {
  const std::size_t slot = anyEntry(table, input);
  return {&table.slots[slot].value, &table, slot};
}

place_t anyPlace(message_t& message, unsigned choice, ValueMaker& input) {
  constexpr unsigned METADATA_FROM = 224;
  place_t place{&message.payload};
  if (choice >= METADATA_FROM && message.metadata.live > 0) {
    place = anyEntryIn(message.metadata, input);
  }
  while (true) {
    model::value_t& value = *place.value;
    const bool has_entries = value.table.live > 0;
    if (!has_entries && value.elements.empty()) return place;
    if (input.byte() % 4 == 0) return place;
    if (has_entries) {
      place = anyEntryIn(value.table, input);
    } else {
      place = {&value.elements[input.below(value.elements.size())]};
    }
  }
}

// The map to work on: the value if it is one, otherwise the map that holds it.
model::table_t* tableAt(const place_t& place) {
  return place.value->tag == VLT_TAG_MAP && !place.value->null ? &place.value->table : place.table;
}

// ---- the changes

void replace(message_t&, const place_t& place, ValueMaker& input) { *place.value = input.value(); }

void erase(message_t&, const place_t& place, ValueMaker&) {
  if (place.table != nullptr) model::erase(*place.table, place.slot);
}

void add(message_t&, const place_t& place, ValueMaker& input) {
  model::table_t* const table = tableAt(place);
  if (table == nullptr) return;
  const model::value_t key = input.key();
  put(*table, key, input.value());
}

// Enough to make a table large; the same keys over and over, or ones that all collide.
void addMany(message_t&, const place_t& place, ValueMaker& input) {
  model::table_t* const table = tableAt(place);
  if (table == nullptr) return;
  model::value_t key = input.key();
  const model::value_t value = input.value(2);
  for (unsigned left = input.byte(); left > 0; --left) {
    if (isText(key) && !key.null) key.text += static_cast<char>('a' + left % 26);
    if (key.tag == VLT_TAG_INTEGER) key.bits += left;
    put(*table, key, value);
  }
}

// The hash stays: it depends on the string, not on its owner.
void borrowKey(message_t&, const place_t& place, ValueMaker&) {
  if (place.table == nullptr) return;
  model::value_t& key = place.table->slots[place.slot].key;
  if (key.tag == VLT_TAG_STRING) key.tag = VLT_TAG_BORROWED_STRING;
}

void rename(message_t&, const place_t& place, ValueMaker& input) {
  if (place.table == nullptr) return;
  model::value_t value = std::move(*place.value);
  model::erase(*place.table, place.slot);
  put(*place.table, input.key(), std::move(value));
}

void resize(message_t&, const place_t& place, ValueMaker& input) {
  if (model::table_t* const table = tableAt(place)) input.chooseCapacity(*table);
}

void nest(message_t&, const place_t& place, ValueMaker& input) {
  for (unsigned left = input.byte(); left > 0; --left) {
    model::value_t outer;
    if (left % 2 == 0) {
      outer.tag = VLT_TAG_LIST;
      outer.elements.push_back(std::move(*place.value));
    } else {
      outer.tag = VLT_TAG_MAP;
      put(outer.table, text("value"), std::move(*place.value));
    }
    *place.value = std::move(outer);
  }
}

void makeNull(message_t&, const place_t& place, ValueMaker&) {
  const std::uint32_t tag = place.value->tag;
  *place.value = model::value_t();
  place.value->tag = tag;
  place.value->null = tag >= VLT_TAG_STRING && tag <= VLT_TAG_BORROWED_STRING && tag != VLT_TAG_MAP;
}

void borrow(message_t&, const place_t& place, ValueMaker&) {
  if (isText(*place.value)) {
    place.value->tag =
        place.value->tag == VLT_TAG_STRING ? VLT_TAG_BORROWED_STRING : VLT_TAG_STRING;
  }
}

void changeText(message_t&, const place_t& place, ValueMaker& input) {
  std::string& text = place.value->text;
  if (!isText(*place.value) || place.value->null) return;
  const std::size_t at = input.below(text.size() + 1);
  const auto character = static_cast<char>(input.byte());
  if (character == '\0') {
    text.resize(at);
  } else if (at < text.size()) {
    text[at] = character;
  } else {
    text += character;
  }
}

// Longer than strings that an implementation keeps in place.
void lengthen(message_t&, const place_t& place, ValueMaker& input) {
  if (isText(*place.value) && !place.value->null) place.value->text.append(input.byte(), '+');
}

void routeElsewhere(message_t& message, const place_t&, ValueMaker& input) {
  static const std::array<std::string, 7> KINDS = {
      "alarms", "events", "measurements", "managedobjects", "operations", "measurement", ""};
  put(message.metadata, text("pulsarPath"), text("t/s/" + KINDS[input.below(KINDS.size())]));
}

// A value from anywhere in a sample: a field where it does not belong.
void transplant(message_t&, const place_t& place, ValueMaker& input) {
  message_t donor = samples().messages[input.below(samples().messages.size())];
  *place.value = std::move(*anyPlace(donor, input.byte(), input).value);
}

void replacePayload(message_t& message, const place_t&, ValueMaker& input) {
  message.payload = input.value();
}

void dropMetadata(message_t& message, const place_t&, ValueMaker&) { message.metadata = {}; }

using edit_t = void (*)(message_t&, const place_t&, ValueMaker&);
// First the changes that spoil a field, then the changes of the message's shape.
constexpr std::array<edit_t, 16> EDITS = {
    makeNull, replace, erase,  borrowKey, borrow, changeText,     lengthen,     transplant,
    add,      addMany, rename, resize,    nest,   routeElsewhere, dropMetadata, replacePayload};
constexpr std::size_t SPOILING = 8;

} // namespace

void edit(message_t& message, ValueMaker& input) {
  constexpr unsigned ANYWHERE_FROM = 128;
  const unsigned choice = input.byte();
  if (choice < ANYWHERE_FROM && message.payload.table.live > 0) {
    const place_t field = anyEntryIn(message.payload.table, input);
    EDITS[choice % SPOILING](message, field, input);
  } else {
    const place_t place = anyPlace(message, choice, input);
    EDITS[input.below(EDITS.size())](message, place, input);
  }
}

} // namespace com::velanto::connectivity::fuzz
