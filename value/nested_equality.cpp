#include "value/nested_equality.hpp"

#include <cstddef>
#include <variant>
#include <vector>

#include "value/map_slot.hpp"

namespace com::velanto::connectivity {

namespace {

// What a comparison does next: it has its outcome, or needs that of two values first.
struct step_t {
  bool is_outcome;
  bool equal;
  const data_t* left;
  const data_t* right;
};

constexpr step_t outcome(bool equal) noexcept { return {true, equal, nullptr, nullptr}; }
step_t compare(const data_t& left, const data_t& right) noexcept {
  return {false, false, &left, &right};
}

// Both comparisons go on with whether the values that they asked for are equal; true to begin with.

struct elements_t {
  const data_t* first;
  std::size_t count;
};

elements_t elements_of(const list_t& list) noexcept {
  return {list.size() == 0 ? nullptr : &list[0], list.size()};
}
// `block` may be null.
elements_t elements_of(const vlt_underlying_vector_t* block) noexcept {
  if (block == nullptr) return {nullptr, 0};
  return {reinterpret_cast<const data_t*>(block + 1), static_cast<std::size_t>(block->count)};
}

class ListComparison {
 public:
  ListComparison(elements_t left, elements_t right) noexcept
      : same_size_(left.count == right.count),
        left_(left.first),
        left_end_(left.first + left.count),
        right_(right.first) {}

  step_t resume(bool equal) noexcept {
    if (!equal || !same_size_) return outcome(false);
    if (left_ == left_end_) return outcome(true);
    return compare(*left_++, *right_++);
  }

 private:
  bool same_size_;
  const data_t* left_;
  const data_t* left_end_;
  const data_t* right_;
};

// Looks each entry of the left map up in the right one, as map_t::find_slot does.
class MapComparison {
 public:
  // Either may be null.
  MapComparison(const vlt_underlying_map_table_t* left,
                const vlt_underlying_map_table_t* right) noexcept
      : same_size_((left == nullptr ? 0 : left->live) == (right == nullptr ? 0 : right->live)),
        entry_(slots_of(left)),
        end_(entry_ + (left == nullptr ? 0 : left->capacity)),
        slots_(slots_of(right)),
        capacity_(static_cast<std::uint64_t>(right == nullptr ? 0 : right->capacity)) {}

  step_t resume(bool equal) noexcept {
    if (!same_size_) return outcome(false);
    if (candidate_ == nullptr) return begin_entry();
    if (!at_value_) return equal ? compare_values() : next_candidate();
    if (!equal) return outcome(false);
    ++entry_;
    return begin_entry();
  }

 private:
  static const map_slot_t* slots_of(const vlt_underlying_map_table_t* table) noexcept {
    return table == nullptr ? nullptr : reinterpret_cast<const map_slot_t*>(table + 1);
  }

  step_t begin_entry() noexcept {
    while (entry_ != end_ && !entry_->is_live()) ++entry_;
    if (entry_ == end_) return outcome(true);
    at_value_ = false;
    probed_ = 0;
    return next_candidate();
  }

  // The next slot whose key may be the entry's.
  step_t next_candidate() noexcept {
    while (probed_ < capacity_) {
      candidate_ = &slots_[(entry_->hash % capacity_ + probed_++) % capacity_];
      if (candidate_->is_free()) break;
      if (candidate_->hash == entry_->hash && candidate_->is_live()) {
        return compare(candidate_->key, entry_->key);
      }
    }
    return outcome(false);
  }

  step_t compare_values() noexcept {
    at_value_ = true;
    return compare(entry_->value, candidate_->value);
  }

  bool same_size_;
  bool at_value_ = false;
  const map_slot_t* entry_; // of the left map
  const map_slot_t* end_;
  const map_slot_t* slots_; // of the right map
  std::uint64_t capacity_;
  std::uint64_t probed_ = 0;
  const map_slot_t* candidate_ = nullptr; // null before the first entry
};

using comparison_t = std::variant<ListComparison, MapComparison>;

bool are_containers_of_one_kind(const data_t& left, const data_t& right) noexcept {
  return left.type_tag() == right.type_tag() &&
         (left.type_tag() == VLT_TAG_LIST || left.type_tag() == VLT_TAG_MAP);
}

comparison_t comparison_of(const data_t& left, const data_t& right) noexcept {
  const auto& left_content = left.underlying()->value;
  const auto& right_content = right.underlying()->value;
  if (left.type_tag() == VLT_TAG_LIST) {
    return ListComparison(elements_of(left_content.list), elements_of(right_content.list));
  }
  return MapComparison(left_content.map, right_content.map);
}

bool outcome_of(comparison_t current) {
  std::vector<comparison_t> waiting;
  bool equal = true;
  for (;;) {
    const step_t step =
        std::visit([equal](auto& comparison) { return comparison.resume(equal); }, current);
    if (step.is_outcome) {
      equal = step.equal;
      if (waiting.empty()) return equal;
      current = waiting.back();
      waiting.pop_back();
    } else if (are_containers_of_one_kind(*step.left, *step.right)) {
      waiting.push_back(current);
      current = comparison_of(*step.left, *step.right);
      equal = true;
    } else {
      equal = *step.left == *step.right;
    }
  }
}

} // namespace

bool are_equal(const list_t& left, const list_t& right) {
  return outcome_of(ListComparison(elements_of(left), elements_of(right)));
}

bool are_equal(const map_t& left, const map_t& right) {
  return outcome_of(MapComparison(left.table(), right.table()));
}

} // namespace com::velanto::connectivity
