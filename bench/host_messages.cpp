#include "bench/host_messages.hpp"

#include <cmath>
#include <new>

#include "ndjson/json_reader.hpp"

namespace com::velanto::connectivity::bench {

namespace {

vlt_underlying_message_t& underlying(Message& message) noexcept {
  return reinterpret_cast<vlt_underlying_message_t&>(message);
}

// The capacity of `tables_t::WORST` for that many entries: twice a capacity that tables grow
// through, chosen so that the load is nearest to three fifths.
std::int64_t worstCapacity(std::int64_t live) noexcept {
  constexpr double WORST_LOAD = 0.6;
  const auto distance = [live](std::int64_t capacity) {
    return std::abs(static_cast<double>(live) / (2.0 * static_cast<double>(capacity)) - WORST_LOAD);
  };
  std::int64_t best = 8;
  for (std::int64_t at = 8; at <= 2 * live; at = 2 * (3 * at / 4 + 1) + 2) {
    if (2 * at > live && distance(at) < distance(best)) best = at;
  }
  return 2 * best;
}

// Gives every table another capacity, the inner ones too; `turn` counts the tables.
class Rebuilder {
 public:
  explicit Rebuilder(tables_t tables) noexcept : tables_(tables) {}

  void rebuild(vlt_underlying_map_table_t*& table) {
    if (table == nullptr) return;
    const std::int64_t capacity =
        tables_ == tables_t::WORST ? worstCapacity(table->live) : nextCapacity(table->live);
    table = vlt_reallocate_map(table, capacity);
    if (table == nullptr) throw std::bad_alloc();
    auto* const slots = reinterpret_cast<vlt_underlying_map_table_entry_t*>(table + 1);
    for (std::int64_t i = 0; i < capacity; ++i) rebuildWithin(slots[i].value);
  }

 private:
  std::int64_t nextCapacity(std::int64_t live) noexcept {
    const std::int64_t room = 3 * live;
    return live + 1 + (room == 0 ? 0 : (turn_++ * 7) % room);
  }
  void rebuildWithin(vlt_underlying_data_t& value) {
    if (value.tag == VLT_TAG_MAP) rebuild(value.value.map);
    if (value.tag != VLT_TAG_LIST || value.value.list == nullptr) return;
    auto* const elements = reinterpret_cast<vlt_underlying_data_t*>(value.value.list + 1);
    for (std::int64_t i = 0; i < value.value.list->count; ++i) rebuildWithin(elements[i]);
  }

  tables_t tables_;
  std::int64_t turn_ = 0;
};

data_t copyOf(const vlt_underlying_data_t& source) {
  data_t copy = data_t::adopt(vlt_copy_data(&source));
  if (copy.empty() && source.tag != VLT_TAG_EMPTY) throw std::bad_alloc();
  return copy;
}

} // namespace

messages_t readMessages(const lines_t& lines, tables_t tables) {
  JsonReader reader;
  Rebuilder rebuilder(tables);
  messages_t messages;
  messages.reserve(lines.size());
  for (const std::string& line : lines) {
    messages.push_back(reader.parseMessage(line));
    if (tables == tables_t::GROWN) continue;
    vlt_underlying_message_t& raw = underlying(messages.back());
    rebuilder.rebuild(raw.payload.value.map);
    rebuilder.rebuild(raw.metadata);
  }
  return messages;
}

void copyMessages(const messages_t& prototypes, const order_t& order, messages_t& copies) {
  for (std::size_t i = 0; i < order.size(); ++i) {
    const Message& prototype = prototypes[order[i]];
    data_t payload = copyOf(*prototype.getPayload().underlying());
    copies[i] = Message(std::move(payload), prototype.getMetadataMap().copy());
  }
}

void releaseMessages(messages_t& messages, std::size_t first, std::size_t end) noexcept {
  for (std::size_t i = first; i < end; ++i) messages[i] = Message();
}

} // namespace com::velanto::connectivity::bench
