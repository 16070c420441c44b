// Iteration over a map, and every fault that an iterator reports: a change of the map, or another
// map. String keys hash to the number at their start.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/value/skipped_checks.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr const char* MAP_MODIFIED = "Iterator invalidated by modifying map";
constexpr const char* DIFFERENT = "Invalid comparison of iterators into different maps";
constexpr const char* NOTHING = "nothing thrown";

template <class Iterator>
std::string error_of_dereference(const Iterator& it) {
  return errorOf([&] { static_cast<void>(*it); });
}
template <class Iterator>
std::string error_of_arrow(const Iterator& it) {
  return errorOf([&] { static_cast<void>((*it).first); });
}
template <class Iterator>
std::string error_of_advance(Iterator it) {
  return errorOf([&] { ++it; });
}
// All uses of an iterator that check the map first.
template <class Iterator>
void expect_invalid(const Iterator& it) {
  EXPECT_EQ(error_of_dereference(it), MAP_MODIFIED);
  EXPECT_EQ(error_of_arrow(it), MAP_MODIFIED);
  EXPECT_EQ(error_of_advance(it), MAP_MODIFIED);
  Iterator copy = it;
  EXPECT_EQ(errorOf([&] { ++copy; }), MAP_MODIFIED);
}

using MapIterator = PlacedKeys;

TEST_F(MapIterator, VisitsLiveSlotsInIndexOrder) {
  map_t map = with_keys("6", "0", "2", "5", "7");
  map.erase(map.find(text("5")));
  std::vector<std::string> keys;
  for (const auto& [key, value] : map) keys.emplace_back(key.get<const char*>());
  EXPECT_EQ(keys, (std::vector<std::string>{"0", "2", "6", "7"}));
  const map_t& constant = map;
  std::size_t visited = 0;
  for (auto it = constant.begin(); it != constant.end(); ++it) ++visited;
  EXPECT_EQ(visited, 4u);
}

TEST_F(MapIterator, MapsWithoutEntriesBeginAtTheEnd) {
  map_t none;
  map_t unused = table_of(8);
  map_t without_slots = table_of(0);
  map_t erased = with_keys("3");
  erased.erase(erased.begin());
  EXPECT_TRUE(none.begin() == none.end());
  EXPECT_TRUE(unused.begin() == unused.end());
  EXPECT_TRUE(without_slots.begin() == without_slots.end());
  EXPECT_TRUE(erased.begin() == erased.end());
}

TEST_F(MapIterator, RefersIntoTheSlot) {
  map_t map = with_keys("3");
  const map_t::pair entry = *map.begin();
  EXPECT_EQ(&entry.first, &slot_at(map, 3).key);
  EXPECT_EQ(&entry.second, &slot_at(map, 3).value);
  (*map.begin()).second = whole(1);
  EXPECT_EQ(at(map, "3"), whole(1));
  EXPECT_EQ(&(*static_cast<const map_t&>(map).begin()).second, &slot_at(map, 3).value);
}

TEST_F(MapIterator, EqualWhenAtTheSameSlot) {
  map_t map = with_keys("3", "5");
  EXPECT_TRUE(map.begin() == map.find(text("3")));
  EXPECT_TRUE(map.begin() != map.find(text("5")));
  EXPECT_TRUE(map.find(text("4")) == map.end());
}

// ---- "Iterator invalidated by modifying map"

TEST_F(MapIterator, InsertionInvalidates) {
  map_t map = with_keys("3");
  const auto it = map.begin();
  const auto constant = static_cast<const map_t&>(map).begin();
  map[text("5")] = whole(1);
  expect_invalid(it);
  expect_invalid(constant);
  EXPECT_THROW(static_cast<void>(*it), std::runtime_error);
}

TEST_F(MapIterator, ErasureInvalidates) {
  map_t map = with_keys("3", "5");
  const auto it = map.begin();
  map.erase(map.find(text("5")));
  expect_invalid(it);
}

TEST_F(MapIterator, EraseDoesNotTakeAnInvalidIterator) {
  map_t map = with_keys("3", "5");
  const auto it = map.begin();
  map.erase(map.find(text("5")));
  EXPECT_EQ(errorOf([&] { map.erase(it); }), MAP_MODIFIED);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 1}));
  EXPECT_EQ(at(map, "3"), text("3"));
}

TEST_F(MapIterator, AnotherSlotArrayOfTheSameShapeInvalidates) {
  map_t map = with_keys("3");
  map_t other = with_keys("3");
  const auto it = map.begin();
  const map_t keeps_the_old_array_alive(std::move(map));
  map = std::move(other);
  expect_invalid(it);
}

TEST_F(MapIterator, AnotherCapacityAloneInvalidates) {
  map_t map = table_of(16);
  head_of(map).capacity = 8;
  map.insert(text("3"), whole(1));
  const auto it = map.begin();
  head_of(map).capacity = 16;
  expect_invalid(it);
  head_of(map).capacity = 8;
  EXPECT_EQ(error_of_dereference(it), NOTHING);
}

TEST_F(MapIterator, AnotherLiveCountAloneInvalidates) {
  map_t map = with_keys("3");
  const auto it = map.begin();
  ++head_of(map).live;
  expect_invalid(it);
  --head_of(map).live;
  EXPECT_EQ(error_of_dereference(it), NOTHING);
}

TEST_F(MapIterator, LosingTheTableInvalidates) {
  map_t map = with_keys("3");
  const auto it = map.begin();
  const map_t taken(std::move(map));
  expect_invalid(it);
}

TEST_F(MapIterator, EraseNoticesThatTheTableIsLost) {
  map_t map = with_keys("3");
  const map_t::iterator first = map.begin();
  const map_t taken(std::move(map));
  EXPECT_EQ(errorOf([&] { map.erase(first); }), MAP_MODIFIED);
  EXPECT_EQ(taken.size(), 1U);
}

TEST_F(MapIterator, GettingATableInvalidates) {
  map_t map;
  const auto it = map.begin();
  map = table_of(8); // no live entry either
  expect_invalid(it);
}

TEST_F(MapIterator, MapWithoutTableKeepsItsIteratorsValid) {
  map_t map;
  EXPECT_EQ(error_of_advance(map.begin()), NOTHING);
}

TEST_F(MapIterator, IteratorOfNoMapIsNeverValid) {
  expect_invalid(map_t::iterator());
  expect_invalid(map_t::const_iterator());
  EXPECT_TRUE(map_t::iterator() == map_t::iterator());
  map_t map = with_keys("3");
  EXPECT_EQ(errorOf([&] { static_cast<void>(map_t::iterator() == map.begin()); }), DIFFERENT);
  EXPECT_EQ(errorOf([&] { map.erase(map_t::iterator()); }), DIFFERENT);
}

TEST_F(MapIterator, ChangingAValueInvalidatesNothing) {
  map_t map = with_keys("3", "5");
  const auto it = map.begin();
  map[text("5")] = whole(1);
  EXPECT_FALSE(map.insert(text("3"), whole(2)).second);
  EXPECT_EQ((*it).first, text("3"));
}

TEST_F(MapIterator, ComparisonIgnoresModifications) {
  map_t map = with_keys("3");
  const auto it = map.begin();
  map[text("5")] = whole(1);
  EXPECT_TRUE(it == map.begin());
  EXPECT_TRUE(it != map.end());
}

// ---- "Invalid comparison of iterators into different maps"

TEST_F(MapIterator, IteratorsOfDifferentMapsAreNotCompared) {
  map_t left = with_keys("3");
  map_t right = with_keys("3");
  EXPECT_EQ(errorOf([&] { static_cast<void>(left.begin() == right.begin()); }), DIFFERENT);
  EXPECT_EQ(errorOf([&] { static_cast<void>(left.end() != right.end()); }), DIFFERENT);
  EXPECT_THROW(static_cast<void>(left.end() == right.end()), std::runtime_error);
  const map_t& constant_left = left;
  const map_t& constant_right = right;
  EXPECT_EQ(errorOf([&] { static_cast<void>(constant_left.end() == constant_right.end()); }),
            DIFFERENT);
}

TEST_F(MapIterator, EraseDoesNotTakeAnotherMapsIterator) {
  map_t map = with_keys("3");
  map_t other = with_keys("3");
  EXPECT_EQ(errorOf([&] { map.erase(other.begin()); }), DIFFERENT);
  EXPECT_EQ(errorOf([&] { map.erase(other.end()); }), DIFFERENT);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
  EXPECT_EQ(counts_of(other), (counts_t{1, 8, 0}));
}

// ---- the switch

TEST_F(MapIterator, SkippedChecksLetAModifiedMapBeUsed) {
  map_t map = with_keys("3", "5");
  auto it = map.begin();
  map[text("4")] = whole(4);
  const SkippedChecks skipped("");
  EXPECT_EQ((*it).first, text("3"));
  EXPECT_EQ((*++it).first, text("4"));
  map.erase(it);
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 1}));
}

TEST_F(MapIterator, SkippedChecksCompareTheSlotsOfDifferentMaps) {
  map_t left = with_keys("3");
  map_t right = with_keys("3", "5");
  const SkippedChecks skipped;
  EXPECT_TRUE(left.begin() == right.begin());
  EXPECT_FALSE(left.begin() == right.find(text("5")));
}

TEST_F(MapIterator, SkippedChecksEraseAtAnotherMapsIterator) {
  map_t map = with_keys("3", "5");
  map_t other = with_keys("3");
  const SkippedChecks skipped;
  map.erase(other.end());
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
  map.erase(other.begin());
  EXPECT_EQ(slot_at(other, 3).hash, 1u);
  EXPECT_TRUE(slot_at(other, 3).key.empty());
}

TEST_F(MapIterator, SkippedChecksEraseNothingWithoutATable) {
  map_t map = with_keys("3");
  const map_t::iterator first = map.begin();
  const map_t taken(std::move(map));
  const SkippedChecks skipped;
  map.erase(first);
  EXPECT_EQ(counts_of(taken), (counts_t{1, 8, 0}));
}

TEST_F(MapIterator, SwitchCountsAtTheMomentOfAFault) {
  map_t map = with_keys("3");
  map_t other = with_keys("3");
  auto it = map.begin();
  map[text("4")] = whole(4);
  {
    const SkippedChecks skipped;
    EXPECT_EQ(error_of_dereference(it), NOTHING);
    EXPECT_EQ(errorOf([&] { static_cast<void>(it == other.begin()); }), NOTHING);
  }
  expect_invalid(it);
  EXPECT_EQ(errorOf([&] { static_cast<void>(it == other.begin()); }), DIFFERENT);
  const SkippedChecks skipped;
  EXPECT_EQ(error_of_advance(it), NOTHING);
}

} // namespace
} // namespace com::velanto::connectivity::test
