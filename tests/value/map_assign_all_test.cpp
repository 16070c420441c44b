// Assigning all entries of another map at once leaves the table, slot for slot, that assigning them
// one after the other leaves. Text keys hash to the number that they start with.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <utility>

#include "tests/support/failing_allocations.hpp"
#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"
#include "value/hashed_key.hpp"

namespace com::velanto::connectivity::test {
namespace {

struct assignment_t {
  map_t target;
  map_t source;
  data_t next;
};

void assign_one_by_one(map_t& target, map_t&& source) {
  static_cast<void>(
      std::move(source).drain([&](map_entry_t&& entry) { target.assign(std::move(entry)); }));
}

// `make` gives the same assignment each time: copies of borrowed strings would be other keys.
template <class Make>
void expect_as_one_by_one(const Make& make) {
  assignment_t one_by_one = make();
  assign_one_by_one(one_by_one.target, std::move(one_by_one.source));
  one_by_one.target.insert(std::move(one_by_one.next), text("next"));

  assignment_t at_once = make();
  at_once.target.assign_all(std::move(at_once.source), at_once.next);
  EXPECT_EQ(at_once.source.table(), nullptr);
  at_once.target.insert(std::move(at_once.next), text("next"));
  expect_same_slots(at_once.target, one_by_one.target);
}

// The key of this number; any of them hashes to it.
std::string name_of(std::int64_t number) { return std::to_string(number) + " key"; }

void put_number(map_t& map, std::int64_t number, const char* value) {
  map.insert(data_t(name_of(number).c_str()), text(value));
}
// Texts with the numbers from `first` to `last`, into a fresh map or a table of some capacity.
map_t numbers(std::int64_t first, std::int64_t last, map_t&& into = map_t()) {
  map_t map = std::move(into);
  const char* const value = first == 0 ? "target" : "source";
  for (std::int64_t number = first; number <= last; ++number) put_number(map, number, value);
  return map;
}

// ---- random twins

// One assignment, the same for the same seed.
class RandomAssignment {
 public:
  explicit RandomAssignment(std::uint64_t seed)
      : random_(seed),
        range_(RANGES[below(4)]),
        has_shared_(below(4) == 0),
        has_integers_(below(6) == 0),
        has_borrowed_(below(6) == 0) {}

  assignment_t make() {
    assignment_t made;
    const std::uint64_t in_target = below(5) == 0 ? below(71) : below(20);
    if (below(8) != 0) made.target = map_t::with_first_table();
    for (std::uint64_t i = 0; i < in_target; ++i) made.target.insert(key(), text("target"));
    if (below(8) == 0) made.target.extract(key_of_one(made.target), [](map_entry_t&&) {});
    const std::uint64_t in_source = below(71);
    if (below(2) == 0) made.source = table_of(capacity_for(in_source));
    for (std::uint64_t i = 0; i < in_source; ++i) {
      made.source.insert(has_shared_ && below(10) == 0 ? key_of_one(made.target) : key(), value());
      if (below(8) == 0) made.source.extract(key_of_one(made.source), [](map_entry_t&&) {});
    }
    const std::uint64_t which = below(4);
    made.next = which == 0 ? key_of_one(made.target) : which == 1 ? key_of_one(made.source) : key();
    return made;
  }

 private:
  // Of hashes: from those that meet often to those that never do.
  static constexpr std::uint64_t RANGES[] = {60, 10'000, 1'000'000, UINT64_MAX / 2};

  std::uint64_t below(std::uint64_t end) { return random_() % end; }

  // Of the sizes that tables grow through, or any.
  std::int64_t capacity_for(std::uint64_t entries) {
    constexpr std::int64_t USUAL[] = {8, 16, 28, 46, 72};
    if (below(4) != 0) return USUAL[below(5)];
    return static_cast<std::int64_t>(entries + below(entries + 9));
  }

  data_t key() {
    const std::uint64_t number = below(range_);
    if (has_integers_ && below(10) == 0) return whole(static_cast<std::int64_t>(number));
    const std::string name = std::to_string(number) + (below(8) == 0 ? " other" : " key");
    if (has_borrowed_ && below(5) == 0) return borrowed(kept(name));
    return data_t(name.c_str());
  }
  // One that the map has, if it has any.
  data_t key_of_one(const map_t& map) {
    if (map.empty()) return key();
    for (std::uint64_t skipped = below(map.size()); const auto& [key, value] : map) {
      if (skipped-- > 0) continue;
      if (key.type_tag() == VLT_TAG_BORROWED_STRING) return borrowed(key.get<const char*>());
      return key;
    }
    return {};
  }
  data_t value() {
    return below(4) == 0 ? list_of(text("v")) : whole(static_cast<std::int64_t>(random_() >> 1));
  }

  static const char* kept(const std::string& name) {
    static std::set<std::string> names;
    return names.insert(name).first->c_str();
  }

  std::mt19937_64 random_;
  std::uint64_t range_;
  bool has_shared_;
  bool has_integers_;
  bool has_borrowed_;
};

class MapAssignAll : public PlacedKeys {};

TEST_F(MapAssignAll, AnyMapsBecomeTheTableOfSingleAssignments) {
  for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    expect_as_one_by_one([&] { return RandomAssignment(seed).make(); });
    if (HasFatalFailure()) return;
  }
}

// Otherwise the test above would compare single assignments with themselves.
TEST_F(MapAssignAll, ManyOfThoseAreMadeAtOnce) {
  int made = 0;
  int reused = 0;
  for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
    assignment_t assignment = RandomAssignment(seed).make();
    const void* const source = assignment.source.table();
    const std::int64_t before = assignment.target.capacity();
    standin_reset_calls();
    assignment.target.assign_all(std::move(assignment.source), assignment.next);
    const bool at_once = before != 0 && assignment.target.capacity() != before &&
                         standin_calls(STANDIN_REALLOCATE_MAP) == 0;
    made += at_once ? 1 : 0;
    reused += at_once && assignment.target.table() == source ? 1 : 0;
  }
  EXPECT_GT(made, 500);
  EXPECT_GT(reused, 50);
}

TEST_F(MapAssignAll, AnySizesBecomeTheTableOfSingleAssignments) {
  for (std::int64_t in_target = 0; in_target <= 60; in_target += in_target < 16 ? 1 : 5) {
    for (std::int64_t in_source = 0; in_source <= 60; ++in_source) {
      SCOPED_TRACE(std::to_string(in_source) + " into " + std::to_string(in_target));
      for (const bool is_new : {true, false}) {
        expect_as_one_by_one([&] {
          return assignment_t{numbers(0, in_target - 1), numbers(100, 99 + in_source),
                              data_t(name_of(is_new ? 5000 : 100).c_str())};
        });
      }
      if (HasFatalFailure()) return;
    }
  }
}

// ---- which table it is

TEST_F(MapAssignAll, TableIsMadeOnceInItsLastSize) {
  map_t target = numbers(0, 2);
  map_t source = numbers(100, 119, table_of(60));
  const hashed_key_t next("5000 key");
  standin_reset_calls();
  target.assign_all(std::move(source), next);
  EXPECT_EQ(standin_calls(STANDIN_ALLOCATE_MAP), 1);
  EXPECT_EQ(standin_calls(STANDIN_FREE_MAP), 2);
  EXPECT_EQ(standin_calls_total(), 3);
  EXPECT_EQ(counts_of(target), (counts_t{23, 46, 0}));
}

TEST_F(MapAssignAll, SourcesTableOfThatSizeIsUsedWithoutItsTombstones) {
  map_t target = numbers(0, 2);
  map_t source = numbers(100, 124, table_of(46));
  for (const char* key : {"100 key", "104 key", "110 key", "111 key", "124 key"}) {
    EXPECT_TRUE(source.extract(text(key)));
  }
  ASSERT_EQ(counts_of(source), (counts_t{20, 46, 5}));
  const void* const table = source.table();
  const hashed_key_t next("5000 key");
  standin_reset_calls();
  target.assign_all(std::move(source), next);
  EXPECT_EQ(standin_calls(STANDIN_FREE_MAP), 1) << "the target's";
  EXPECT_EQ(standin_calls_total(), 1);
  EXPECT_EQ(target.table(), table);
  EXPECT_EQ(counts_of(target), (counts_t{23, 46, 0}));
  for (std::int64_t i = 0; i < 46; ++i) EXPECT_FALSE(slot_at(target, i).is_deleted()) << i;
}

TEST_F(MapAssignAll, KeysAndValuesAreMoved) {
  map_t target = numbers(0, 2);
  map_t source = numbers(100, 119);
  source[text("7 key")] = list_of(text("v"));
  const std::uint64_t value_block = content_bits(at(source, "7 key"));
  const std::uint64_t key_block = content_bits(slot_at(source, slot_of(source, "7 key")).key);
  target.assign_all(std::move(source), text("5000 key"));
  EXPECT_EQ(content_bits(at(target, "7 key")), value_block);
  EXPECT_EQ(content_bits(slot_at(target, slot_of(target, "7 key")).key), key_block);
}

TEST_F(MapAssignAll, NextEntryFindsRoom) {
  map_t target = numbers(0, 0);
  target.assign_all(numbers(100, 120), text("5000 key"));
  EXPECT_EQ(counts_of(target), (counts_t{22, 46, 0})) << "another one grows a table of 28";
  map_t there_already = numbers(0, 0);
  there_already.assign_all(numbers(100, 120), text("100 key"));
  EXPECT_EQ(counts_of(there_already), (counts_t{22, 28, 0})) << "a present key grows nothing";
}

// ---- keys that need a closer look

TEST_F(MapAssignAll, PresentKeyGetsTheNewValueAndStays) {
  const auto make = [] { return assignment_t{numbers(0, 9), numbers(5, 24), text("5000 key")}; };
  expect_as_one_by_one(make);
  assignment_t made = make();
  const std::uint64_t key_block =
      content_bits(slot_at(made.target, slot_of(made.target, "5 key")).key);
  made.target.assign_all(std::move(made.source), made.next);
  EXPECT_EQ(made.target.size(), 25U);
  EXPECT_EQ(at(made.target, "4 key"), text("target"));
  EXPECT_EQ(at(made.target, "5 key"), text("source"));
  EXPECT_EQ(content_bits(slot_at(made.target, slot_of(made.target, "5 key")).key), key_block);
}

TEST_F(MapAssignAll, EqualHashesAreToldApartByTheKey) {
  for (const char* other : {"3 other", "110 other"}) {
    SCOPED_TRACE(other);
    expect_as_one_by_one([&] {
      assignment_t made{numbers(0, 5), numbers(100, 119), text("5000 key")};
      made.source.insert(text(other), text("other"));
      return made;
    });
  }
}

TEST_F(MapAssignAll, KeysThatAreNoTextsAreAssigned) {
  for (const kind_t& kind : KINDS) {
    if (kind.tag == VLT_TAG_EMPTY || kind.tag == VLT_TAG_CUSTOM) continue;
    if (kind.tag > VLT_TAG_BORROWED_STRING) continue; // equals nothing, itself neither
    SCOPED_TRACE(kind.name);
    expect_as_one_by_one([&] {
      assignment_t made{numbers(0, 5), numbers(100, 119), text("5000 key")};
      made.source.insert(kind.make(), text("source"));
      return made;
    });
    expect_as_one_by_one([&] {
      assignment_t made{numbers(0, 5), numbers(100, 119), text("5000 key")};
      made.target.insert(kind.make(), text("target"));
      return made;
    });
  }
}

TEST_F(MapAssignAll, CustomKeyIsRefusedAndTheRestFreed) {
  map_t target = numbers(0, 5);
  map_t source = numbers(100, 119, table_of(60));
  put(source, 59, 9000, list_of(custom(1)), text("v"));
  EXPECT_EQ(error_of([&] { target.assign_all(std::move(source), text("5000 key")); }), CUSTOM_KEY);
  EXPECT_EQ(source.table(), nullptr);
}

TEST_F(MapAssignAll, BorrowedKeyIsAnotherKeyAndStaysBorrowed) {
  const auto make = [] {
    assignment_t made{numbers(0, 5), numbers(100, 119), text("5000 key")};
    made.source.insert(borrowed("3 key"), text("lent"));
    made.source.insert(borrowed("300 key"), text("lent"));
    return made;
  };
  expect_as_one_by_one(make);
  assignment_t made = make();
  made.target.assign_all(std::move(made.source), made.next);
  EXPECT_EQ(at(made.target, "3 key"), text("target"));
  EXPECT_EQ(at(made.target, borrowed("3 key")), text("lent"));
  EXPECT_EQ(at(made.target, borrowed("300 key")), text("lent"));
}

// ---- nothing to assign, or nothing to assign to

TEST_F(MapAssignAll, EmptySourceChangesNothing) {
  for (const std::int64_t capacity : {0, 8, 46}) {
    map_t target = numbers(0, 20);
    const map_t before = target.copy();
    map_t source = capacity == 0 ? map_t() : table_of(capacity);
    target.assign_all(std::move(source), text("5000 key"));
    EXPECT_EQ(source.table(), nullptr);
    expect_same_slots(target, before);
  }
}

TEST_F(MapAssignAll, TargetWithoutATableGetsOne) {
  for (const std::int64_t last : {100, 106, 119}) {
    expect_as_one_by_one([&] {
      return assignment_t{map_t(), numbers(100, last), text("5000 key")};
    });
  }
}

// ---- memory that runs out

class MapAssignAllMemory : public PlacedKeys {
 protected:
  // Returns how many allocations assigning so many texts and, perhaps, an integer takes. After
  // each that fails nothing is left but what the target has.
  static std::uint64_t failing(std::int64_t in_source, bool with_integer, bool keeps_target) {
    const std::int64_t without = standin_live_blocks_total();
    const hashed_key_t next("5000 key");
    map_t target = numbers(0, 4);
    const map_t before = target.copy();
    map_t source;
    const auto refill = [&] {
      source = numbers(100, 99 + in_source, table_of(100));
      if (with_integer) source.insert(whole(1), whole(1));
    };
    refill();
    const auto verify = [&] {
      EXPECT_EQ(source.table(), nullptr);
      if (standin_failed_allocations() == 0) return;
      if (keeps_target) expect_same_slots(target, before);
      target = before.copy();
      EXPECT_EQ(standin_live_blocks_total(), without + 1 + 11 + 11);
      refill();
    };
    const std::uint64_t failed =
        fail_each_allocation([&] { target.assign_all(std::move(source), next); }, verify);
    EXPECT_EQ(target.size(), static_cast<std::size_t>(5 + in_source + (with_integer ? 1 : 0)));
    return failed;
  }
};

TEST_F(MapAssignAllMemory, AtOnceLeavesTheTargetAsItWas) {
  EXPECT_EQ(failing(20, false, true), 1U);
  EXPECT_EQ(failing(45, false, true), 1U);
}

TEST_F(MapAssignAllMemory, OneByOneLeaksNothing) {
  EXPECT_EQ(failing(20, true, false), 3U) << "tables of 16, 28 and 46";
  EXPECT_EQ(failing(60, false, false), 5U) << "tables of 16, 28, 46, 72 and 112";
}

} // namespace
} // namespace com::velanto::connectivity::test
