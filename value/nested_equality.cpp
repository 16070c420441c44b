#include "value/nested_equality.hpp"

#include <cstddef>
#include <span>
#include <variant>
#include <vector>

#include "value/map_slot.hpp"

namespace com::velanto::connectivity {

namespace {

// The next step of a comparison: it has its outcome, or needs that of two values first.
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

class ListComparison {
 public:
  ListComparison(std::span<const data_t> left, std::span<const data_t> right) noexcept
      : left_(left), right_(right) {}

  step_t resume(bool equal) noexcept {
    if (!equal || left_.size() != right_.size()) return outcome(false);
    if (next_ == left_.size()) return outcome(true);
    const std::size_t i = next_++;
    return compare(left_[i], right_[i]);
  }

 private:
  std::span<const data_t> left_;
  std::span<const data_t> right_;
  std::size_t next_ = 0;
};

// Looks each entry of the left map up in the right one, as map_t::find_slot does.
class MapComparison {
 public:
  // Either may be null.
  MapComparison(const vlt_underlying_map_table_t* left,
                const vlt_underlying_map_table_t* right) noexcept
      : same_size_((left == nullptr ? 0 : left->live) == (right == nullptr ? 0 : right->live)),
        left_(slots_of(left)),
        right_(slots_of(right)) {}

  step_t resume(bool equal) noexcept {
    if (!same_size_) return outcome(false);
    if (candidate_ == nullptr) return begin_entry();
    if (!at_value_) return equal ? compare_values() : next_candidate();
    if (!equal) return outcome(false);
    left_ = left_.subspan(1);
    return begin_entry();
  }

 private:
  step_t begin_entry() noexcept {
    while (!left_.empty() && !left_.front().is_live()) left_ = left_.subspan(1);
    if (left_.empty()) return outcome(true);
    at_value_ = false;
    probed_ = 0;
    return next_candidate();
  }

  // The next slot with a key that may be the entry's.
  step_t next_candidate() noexcept {
    const map_slot_t& entry = left_.front();
    while (probed_ < right_.size()) {
      candidate_ = &right_[(entry.hash % right_.size() + probed_++) % right_.size()];
      if (candidate_->is_free()) break;
      if (candidate_->hash == entry.hash && candidate_->is_live()) {
        return compare(candidate_->key, entry.key);
      }
    }
    return outcome(false);
  }

  step_t compare_values() noexcept {
    at_value_ = true;
    return compare(left_.front().value, candidate_->value);
  }

  bool same_size_;
  bool at_value_ = false;
  std::span<const map_slot_t> left_; // from the entry to look up
  std::span<const map_slot_t> right_;
  std::size_t probed_ = 0;
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
  return outcome_of(ListComparison(elements_of(left.block()), elements_of(right.block())));
}

bool are_equal(const map_t& left, const map_t& right) {
  return outcome_of(MapComparison(left.table(), right.table()));
}

} // namespace com::velanto::connectivity
