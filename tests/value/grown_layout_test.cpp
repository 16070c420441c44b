// The layout that is found without a table is the one of a table that grew while the same entries
// were inserted one after the other.
#include "value/grown_layout.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

using hashes_t = std::vector<std::uint64_t>;

constexpr std::size_t MOST = GrownLayout::MOST;
constexpr std::uint64_t HOME_IN_ALL_SIZES = 16UL * 7 * 23 * 9; // a multiple of 8, 16, 28, 46 and 72
constexpr std::uint64_t ABSENT = 987'654'321;

hashes_t random_hashes(std::size_t count) {
  std::mt19937_64 random(count);
  hashes_t hashes;
  while (hashes.size() < count) hashes.push_back(random());
  return hashes;
}
// All want the same slot, the last but one of the smallest size, so that they wrap there.
hashes_t crowded_hashes(std::size_t count) {
  hashes_t hashes;
  while (hashes.size() < count) hashes.push_back(hashes.size() * HOME_IN_ALL_SIZES + 6);
  return hashes;
}

// The entries of these hashes, each with its number as key and value, one slot after the other.
map_t entries_of(const hashes_t& hashes) {
  map_t map = table_of(static_cast<std::int64_t>(MOST));
  std::int64_t number = 0;
  for (const std::uint64_t hash : hashes)
    put(map, number, hash, whole(number), whole(number)), ++number;
  return map;
}
// What inserting the first `count` of them leads to.
map_t inserted(const map_t& entries, std::size_t count) {
  map_t map = map_t::with_first_table();
  for (std::size_t i = 0; i < count; ++i) {
    const map_slot_t& entry = slot_at(entries, static_cast<std::int64_t>(i));
    map.add({entry.hash, entry.key, entry.value});
  }
  return map;
}

// The layout of a table in which the entries of `lying` are already, with the entries from there on
// to follow. The layout forgets none of their owners.
GrownLayout layout_of(const map_t& lying, const map_t& entries) {
  GrownLayout layout(lying.capacity());
  for (std::int64_t i = 0; i < lying.capacity(); ++i) {
    if (slot_at(lying, i).is_live()) layout.lie(slot_at(lying, i), i);
  }
  for (std::size_t i = lying.size(); i < entries.size(); ++i) {
    layout.follow(slot_at(entries, static_cast<std::int64_t>(i)));
  }
  return layout;
}
bool inserts_all(const hashes_t& hashes, std::uint64_t next, std::size_t lying = 0) {
  const map_t entries = entries_of(hashes);
  return layout_of(inserted(entries, lying), entries).insert_all(next);
}

// `lying` of the entries lie in a table, the others follow.
void expect_plain_insertion(const hashes_t& hashes, std::size_t lying) {
  const map_t entries = entries_of(hashes);
  const map_t expected = inserted(entries, hashes.size());
  const map_t first = inserted(entries, lying);
  GrownLayout layout = layout_of(first, entries);
  ASSERT_TRUE(layout.insert_all(hashes.empty() ? ABSENT : hashes[0]));
  ASSERT_EQ(layout.capacity(), expected.capacity());
  const map_t filled = table_of(layout.capacity());
  layout.fill(&slot_at(filled, 0));
  head_of(filled).live = static_cast<std::int64_t>(hashes.size());
  expect_same_slots(filled, expected);
  // The entries are still owned where they came from.
  std::memset(static_cast<void*>(&slot_at(filled, 0)), 0,
              static_cast<std::size_t>(filled.capacity()) * sizeof(map_slot_t));
}

// A table of so many entries is full: the next one makes it grow.
bool is_full(std::size_t count) { return count == 7 || count == 13 || count == 22 || count == 35; }

class GrownLayoutOfEntries : public HostFixture {};

TEST_F(GrownLayoutOfEntries, KnowsTheSizesThatAFreshTableGrowsThrough) {
  map_t map = map_t::with_first_table();
  for (std::uint64_t hash = 0; hash < MOST; ++hash) {
    EXPECT_TRUE(GrownLayout::knows(map.capacity())) << map.capacity();
    map.add(hash, whole(1), whole(1));
  }
  EXPECT_EQ(map.capacity(), 72);
  map.add(MOST, whole(1), whole(1));
  EXPECT_EQ(map.capacity(), 112);
  std::vector<std::int64_t> known;
  for (std::int64_t capacity = -72; capacity < 500; ++capacity) {
    if (GrownLayout::knows(capacity)) known.push_back(capacity);
  }
  EXPECT_EQ(known, (std::vector<std::int64_t>{8, 16, 28, 46, 72}));
}

TEST_F(GrownLayoutOfEntries, PutsEachWherePlainInsertionPutsIt) {
  for (std::size_t count = 0; count < MOST; ++count) {
    if (is_full(count)) continue; // the next would have to be new, and the table grow once more
    for (std::size_t lying = 0; lying <= count; ++lying) {
      SCOPED_TRACE(std::to_string(count) + " entries, " + std::to_string(lying) + " lying");
      expect_plain_insertion(random_hashes(count), lying);
      expect_plain_insertion(crowded_hashes(count), lying);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_F(GrownLayoutOfEntries, GrowsForTheNextOneWhenItIsNew) {
  for (std::size_t count = 0; count < MOST; ++count) {
    SCOPED_TRACE(count);
    const map_t entries = entries_of(random_hashes(count));
    map_t expected = inserted(entries, count);
    GrownLayout layout = layout_of(map_t::with_first_table(), entries);
    ASSERT_TRUE(layout.insert_all(ABSENT));
    const std::int64_t without_next = expected.capacity();
    expected.add(ABSENT, whole(-1), whole(-1));
    EXPECT_EQ(layout.capacity(), expected.capacity());
    EXPECT_EQ(layout.capacity() != without_next, is_full(count));
  }
}

TEST_F(GrownLayoutOfEntries, LiesAsTheNextOneFindsIt) {
  for (const std::size_t count : {7U, 13U, 22U, 35U}) {
    SCOPED_TRACE(count);
    const map_t entries = entries_of(crowded_hashes(count));
    map_t expected = inserted(entries, count);
    expected.add(ABSENT, whole(-1), whole(-1));
    GrownLayout layout = layout_of(map_t::with_first_table(), entries);
    ASSERT_TRUE(layout.insert_all(ABSENT));
    map_t filled = table_of(layout.capacity());
    layout.fill(&slot_at(filled, 0));
    head_of(filled).live = static_cast<std::int64_t>(count);
    map_t completed = filled.copy();
    std::memset(static_cast<void*>(&slot_at(filled, 0)), 0,
                static_cast<std::size_t>(filled.capacity()) * sizeof(map_slot_t));
    completed.add(ABSENT, whole(-1), whole(-1));
    expect_same_slots(completed, expected);
  }
}

TEST_F(GrownLayoutOfEntries, NextOneOfAHashThatIsThereIsTriedWithItsKey) {
  for (std::size_t count = 1; count < MOST; ++count) {
    SCOPED_TRACE(count);
    const hashes_t hashes = crowded_hashes(count);
    for (const std::uint64_t next : hashes) {
      ASSERT_EQ(inserts_all(hashes, next), !is_full(count)) << next;
    }
  }
}

TEST_F(GrownLayoutOfEntries, EntryThatMeetsItsHashIsTriedWithItsKey) {
  for (const std::size_t count : {2U, 7U, 8U, 14U, 30U, 54U}) {
    for (std::size_t first = 0; first < count; ++first) {
      for (std::size_t second = first + 1; second < count; ++second) {
        hashes_t hashes = random_hashes(count);
        hashes[second] = hashes[first];
        ASSERT_FALSE(inserts_all(hashes, ABSENT)) << first << " and " << second << " of " << count;
      }
    }
  }
}

TEST_F(GrownLayoutOfEntries, EntryThatMeetsTheHashOfALyingOneIsTriedWithItsKey) {
  for (const std::size_t lying : {1U, 6U, 7U, 20U}) {
    for (std::size_t met = 0; met < lying; ++met) {
      hashes_t hashes = crowded_hashes(lying + 3);
      hashes.push_back(hashes[met]);
      EXPECT_FALSE(inserts_all(hashes, ABSENT, lying)) << met << " of " << lying;
    }
  }
}

TEST_F(GrownLayoutOfEntries, LyingEntriesMayBeOfOneHash) {
  for (const std::size_t lying : {2U, 7U}) {
    hashes_t hashes = random_hashes(20);
    hashes[1] = hashes[0];
    EXPECT_TRUE(inserts_all(hashes, ABSENT, lying)) << lying;
    expect_plain_insertion(hashes, lying);
  }
}

TEST_F(GrownLayoutOfEntries, LargestSizeMustHaveRoomForTheNext) {
  const hashes_t fitting = random_hashes(MOST - 1);
  EXPECT_TRUE(inserts_all(fitting, ABSENT));
  EXPECT_TRUE(inserts_all(fitting, fitting[0]));
  const hashes_t most = random_hashes(MOST);
  EXPECT_FALSE(inserts_all(most, ABSENT));
  EXPECT_FALSE(inserts_all(most, most[0]));
  for (const std::size_t lying : {0U, 7U, 8U, 35U, 36U, 55U})
    EXPECT_FALSE(inserts_all(most, ABSENT, lying));
}

// A host may hand over a table without a free slot; insertion would make other sizes of it.
TEST_F(GrownLayoutOfEntries, TableThatIsMoreThanFullIsNotUnderstood) {
  for (const std::int64_t capacity : {8, 16, 28, 46}) {
    for (std::int64_t lying = 3 * capacity / 4 + 2; lying <= capacity; ++lying) {
      const map_t crowded = table_of(capacity);
      for (std::int64_t i = 0; i < lying; ++i) {
        put(crowded, i, static_cast<std::uint64_t>(i), whole(i), whole(i));
      }
      const map_t entries = entries_of(random_hashes(static_cast<std::size_t>(lying) + 1));
      EXPECT_FALSE(layout_of(crowded, entries).insert_all(ABSENT)) << lying << " of " << capacity;
    }
  }
}

} // namespace
} // namespace com::velanto::connectivity::test
