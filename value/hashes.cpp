#include "value/hashes.hpp"

#include <bit>
#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

#include "value/map_slot.hpp"
#include "value/murmur_hash.hpp"

namespace com::velanto::connectivity::hashes {

namespace {

// The hash of a container so far. Both kinds hand out the values in it one after the other, null at
// the end, and take the hash of each, made with seed(), before the next.

class ListFold {
 public:
  ListFold(const data_t* first, std::size_t count) noexcept : at_(first), end_(first + count) {}
  const data_t* next() noexcept { return at_ == end_ ? nullptr : at_++; }
  [[nodiscard]] std::uint64_t seed() const noexcept { return hash_; }
  void take(std::uint64_t hash) noexcept { hash_ = hash; }
  [[nodiscard]] std::uint64_t hash() const noexcept { return hash_; }

 private:
  const data_t* at_;
  const data_t* end_;
  std::uint64_t hash_ = BASE;
};

class MapFold {
 public:
  explicit MapFold(const vlt_underlying_map_table_t* table) noexcept
      : slot_(table == nullptr ? nullptr : reinterpret_cast<const map_slot_t*>(table + 1)),
        end_(slot_ + (table == nullptr ? 0 : table->capacity)) {}
  const data_t* next() noexcept {
    if (std::exchange(key_was_next_, false)) return &(slot_++)->value;
    while (slot_ != end_ && !slot_->is_live()) ++slot_;
    if (slot_ == end_) return nullptr;
    key_was_next_ = true;
    return &slot_->key;
  }
  [[nodiscard]] std::uint64_t seed() const noexcept { return BASE; }
  void take(std::uint64_t hash) noexcept { hash_ += hash; }
  [[nodiscard]] std::uint64_t hash() const noexcept { return hash_; }

 private:
  const map_slot_t* slot_;
  const map_slot_t* end_;
  bool key_was_next_ = false;
  std::uint64_t hash_ = BASE;
};

using fold_t = std::variant<ListFold, MapFold>;

bool is_container(const data_t& value) noexcept {
  return value.type_tag() == VLT_TAG_LIST || value.type_tag() == VLT_TAG_MAP;
}

fold_t fold_of(const data_t& container) noexcept {
  const auto& content = container.underlying()->value;
  if (container.type_tag() == VLT_TAG_MAP) return MapFold(content.map);
  if (content.list == nullptr) return ListFold(nullptr, 0);
  return ListFold(reinterpret_cast<const data_t*>(content.list + 1),
                  static_cast<std::size_t>(content.list->count));
}

// Without recursion: a container in a container has the outer one wait on the heap.
std::uint64_t result_of(fold_t current) {
  std::vector<fold_t> waiting;
  for (;;) {
    const data_t* const next = std::visit([](auto& fold) { return fold.next(); }, current);
    if (next == nullptr) {
      const std::uint64_t hash = std::visit([](auto& fold) { return fold.hash(); }, current);
      if (waiting.empty()) return hash;
      current = waiting.back();
      waiting.pop_back();
      std::visit([hash](auto& fold) { fold.take(hash); }, current);
    } else if (is_container(*next)) {
      waiting.push_back(current);
      current = fold_of(*next);
    } else {
      std::visit([next](auto& fold) { fold.take(calculate_hash(fold.seed()).of(*next)); }, current);
    }
  }
}

} // namespace

std::uint64_t calculate_hash::of(const data_t& value) const {
  return value.apply_visitor(*this, [this] { return seed_; });
}

std::uint64_t calculate_hash::operator()(const bool& content) const noexcept {
  return is_true(content) ? seed_ : ~seed_;
}

std::uint64_t calculate_hash::operator()(const double& content) const noexcept {
  const double unsigned_zero = content == 0.0 ? 0.0 : content;
  return murmur_hash(std::bit_cast<std::uint64_t>(unsigned_zero), seed_);
}

std::uint64_t calculate_hash::operator()(const std::int64_t& content) const noexcept {
  return murmur_hash(std::bit_cast<std::uint64_t>(content), seed_);
}

std::uint64_t calculate_hash::operator()(const vlt_underlying_decimal_t& content) const noexcept {
  return murmur_hash(content.bits, seed_);
}

std::uint64_t calculate_hash::operator()(const char* const& content) const noexcept {
  return vlt_hash_string(text_or_empty(content), seed_);
}

std::uint64_t calculate_hash::operator()(const list_t& content) const {
  return result_of(ListFold(content.size() == 0 ? nullptr : &content[0], content.size()));
}

std::uint64_t calculate_hash::operator()(const map_t& content) const { return hash(content); }

std::uint64_t calculate_hash::operator()(const buffer_t& content) const noexcept {
  return murmur_hash(content.data(), content.size(), BASE);
}

std::uint64_t calculate_hash::operator()(const vlt_underlying_custom_t&) const {
  throw std::runtime_error("Cannot use custom values as a key");
}

std::uint64_t hash(const map_t& map) { return result_of(MapFold(map.table())); }

} // namespace com::velanto::connectivity::hashes
