#include "tools/check/blocks.hpp"

#include <unordered_set>

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr std::array<const char*, STANDIN_BLOCK_KINDS> KIND_NAMES = {"maps", "strings", "lists",
                                                                     "buffers", "customs"};

// Walks the blocks of messages. The messages of checks that ask are shallow: recursion will do.
class Inventory {
 public:
  void add(const Message& message) {
    add(*message.getPayload().underlying());
    addTable(message.getMetadataMap().table());
  }

  block_counts_t counts{};
  int shared = 0; // blocks with several owners

 private:
  void add(const vlt_underlying_data_t& value) {
    switch (value.tag) {
      case VLT_TAG_STRING:
        note(STANDIN_BLOCK_STRING, value.value.string);
        break;
      case VLT_TAG_BUFFER:
        note(STANDIN_BLOCK_BUFFER, value.value.buffer);
        break;
      case VLT_TAG_CUSTOM:
        note(STANDIN_BLOCK_CUSTOM, value.value.custom.object);
        break;
      case VLT_TAG_LIST:
        addList(value.value.list);
        break;
      case VLT_TAG_MAP:
        addTable(value.value.map);
        break;
      default:
        break;
    }
  }

  void addList(const vlt_underlying_vector_t* list) {
    if (!note(STANDIN_BLOCK_LIST, list)) return;
    const auto* const elements = reinterpret_cast<const vlt_underlying_data_t*>(list + 1);
    for (std::int64_t i = 0; i < list->count; ++i) add(elements[i]);
  }

  void addTable(const vlt_underlying_map_table_t* table) {
    if (!note(STANDIN_BLOCK_MAP, table)) return;
    const auto* const slots = reinterpret_cast<const vlt_underlying_map_table_entry_t*>(table + 1);
    for (std::int64_t i = 0; i < table->capacity; ++i) {
      add(slots[i].key);
      add(slots[i].value);
    }
  }

  // False: there is no block, or it has an owner already.
  bool note(standin_block_t kind, const void* block) {
    if (block == nullptr) return false;
    if (!seen_.insert(block).second) {
      ++shared;
      return false;
    }
    ++counts.of[kind];
    return true;
  }

  std::unordered_set<const void*> seen_;
};

} // namespace

block_counts_t liveBlocksByKind() noexcept {
  block_counts_t counts{};
  for (std::size_t kind = 0; kind < counts.of.size(); ++kind) {
    counts.of[kind] = standin_live_blocks(static_cast<standin_block_t>(kind));
  }
  return counts;
}

std::string shown(const block_counts_t& counts) {
  std::string text;
  for (std::size_t kind = 0; kind < counts.of.size(); ++kind) {
    text += std::string(kind == 0 ? "" : ", ") + KIND_NAMES[kind] + " " +
            std::to_string(counts.of[kind]);
  }
  return text;
}

void expectOwnership(Trial& trial, const std::string& where, const block_counts_t& before,
                     std::span<const Message> messages) {
  Inventory inventory;
  for (const Message& message : messages) inventory.add(message);
  trial.equal(where + ", blocks that several values own", 0, inventory.shared);
  block_counts_t expected = before;
  for (std::size_t kind = 0; kind < expected.of.size(); ++kind) {
    expected.of[kind] += inventory.counts.of[kind];
  }
  trial.equal(where + ", live blocks", expected, liveBlocksByKind());
}

} // namespace com::velanto::connectivity::tools::check
