#include "value/hashes.hpp"

#include <bit>
#include <span>
#include <stdexcept>
#include <variant>
#include <vector>

#include "value/map_slot.hpp"
#include "value/murmur_hash.hpp"

namespace com::velanto::connectivity::hashes {

namespace {

// The hash of a container so far. Both kinds hand out their values one after the other, null at the
// end. They take the hash of each, made with seed(), before the next.

class ListFold {
 public:
  explicit ListFold(std::span<const data_t> elements) noexcept : rest_(elements) {}
  const data_t* next() noexcept {
    if (rest_.empty()) return nullptr;
    const data_t& first = rest_.front();
    rest_ = rest_.subspan(1);
    return &first;
  }
  [[nodiscard]] std::uint64_t seed() const noexcept { return hash_; }
  void take(std::uint64_t hash) noexcept { hash_ = hash; }
  [[nodiscard]] std::uint64_t hash() const noexcept { return hash_; }

 private:
  std::span<const data_t> rest_;
  std::uint64_t hash_ = BASE;
};

class MapFold {
 public:
  explicit MapFold(std::span<const map_slot_t> slots) noexcept : rest_(slots) {}
  const data_t* next() noexcept {
    if (value_is_next_) {
      const data_t& value = rest_.front().value;
      value_is_next_ = false;
      rest_ = rest_.subspan(1);
      return &value;
    }
    while (!rest_.empty() && !rest_.front().is_live()) rest_ = rest_.subspan(1);
    if (rest_.empty()) return nullptr;
    value_is_next_ = true;
    return &rest_.front().key;
  }
  [[nodiscard]] std::uint64_t seed() const noexcept { return BASE; }
  void take(std::uint64_t hash) noexcept { hash_ += hash; }
  [[nodiscard]] std::uint64_t hash() const noexcept { return hash_; }

 private:
  std::span<const map_slot_t> rest_;
  bool value_is_next_ = false; // of the first slot
  std::uint64_t hash_ = BASE;
};

using fold_t = std::variant<ListFold, MapFold>;

bool is_container(const data_t& value) noexcept {
  return value.type_tag() == VLT_TAG_LIST || value.type_tag() == VLT_TAG_MAP;
}

fold_t fold_of(const data_t& container) noexcept {
  const auto& content = container.underlying()->value;
  if (container.type_tag() == VLT_TAG_MAP) return MapFold(slots_of(content.map));
  return ListFold(elements_of(content.list));
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
  return result_of(ListFold(elements_of(content.block())));
}

std::uint64_t calculate_hash::operator()(const map_t& content) const { return hash(content); }

std::uint64_t calculate_hash::operator()(const buffer_t& content) const noexcept {
  return murmur_hash(content.data(), content.size(), BASE);
}

std::uint64_t calculate_hash::operator()(const vlt_underlying_custom_t&) const {
  throw std::runtime_error("Cannot use custom values as a key");
}

std::uint64_t hash(const map_t& map) { return result_of(MapFold(slots_of(map.table()))); }

} // namespace com::velanto::connectivity::hashes
