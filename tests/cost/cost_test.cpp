// The cost of converting a message as it gets larger or more hostile, counted in basic blocks. Per
// field, series or position component it stays flat in any order of the input's slots, except where
// the rules of the tables force more.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "codec/timestamps.hpp"
#include "tests/codec/codec_fixture.hpp"
#include "tests/cost/block_count.hpp"
#include "tests/cost/forced_visits.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr std::uint64_t COLLIDING = 5;
bool parts_collide = false;

std::uint64_t hashOf(const char* key, std::uint64_t) {
  const std::string_view name = key;
  return parts_collide && name.starts_with("part") ? COLLIDING
                                                   : std::hash<std::string_view>()(name);
}

// Before the codec's constants get their hashes, while the program is loading.
[[gnu::constructor(101)]] void chooseHash() { standin_set_string_hash(hashOf); }

using shape_t = map_t (*)(int parts);

data_t name(int i) { return text((std::string("part") + std::to_string(i)).c_str()); }

map_t numbers(int count) {
  map_t map;
  for (int i = 0; i < count; ++i) map[name(i)] = real(i);
  return map;
}

map_t eventOfFields(int count) {
  map_t payload = mapOf("id", text("1"), "source", mapOf("id", text("7")), "text", text("t"),
                        "time", text("2023-04-05T06:07:08.000Z"), "type", text("site_Test"));
  for (int i = 0; i < count; ++i) payload[name(i)] = whole(i);
  return payload;
}

map_t measurementOfSeries(int count) {
  map_t fragment;
  for (int i = 0; i < count; ++i) fragment[name(i)] = mapOf("value", real(i));
  return mapOf("id", text("1"), "source", mapOf("id", text("7")), "time",
               text("2023-04-05T06:07:08.000Z"), "type", text("site_Test"), "fragment",
               std::move(fragment));
}

map_t objectOfComponents(int count) {
  return mapOf("id", text("1"), "name", text("n"), "type", text("site_Test"), "o6a_Position",
               numbers(count));
}

struct costed_kind_t {
  const char* path;
  shape_t make;
};
constexpr costed_kind_t EVENT = {"a/b/events/1", eventOfFields};
constexpr costed_kind_t MEASUREMENT = {"a/b/measurements/1", measurementOfSeries};
constexpr costed_kind_t MANAGED_OBJECT = {"a/b/managedobjects/1", objectOfComponents};

void PrintTo(const costed_kind_t& kind, std::ostream* out) { *out << kind.path; }

// Gives a table another capacity; the host places its entries by their hashes.
void rebuild(map_t& map, std::int64_t capacity) {
  map_t taken = std::move(map);
  auto* const table = const_cast<vlt_underlying_map_table_t*>(taken.table());
  new (&taken) map_t();
  map = map_t(vlt_reallocate_map(table, capacity));
}

// The large table of a payload of these shapes.
map_t& largeTableOf(map_t& payload) {
  for (const char* const field : {"fragment", "o6a_Position"}) {
    const auto found = payload.find(text(field));
    if (found != payload.end()) return (*found).second.get<map_t>();
  }
  return payload;
}

// Basic blocks for each slot passed on the way: its state, its hash, the next one. And for each key
// with the same hash, its comparison.
constexpr double BLOCKS_PER_VISIT = 5;
constexpr double BLOCKS_PER_COMPARISON = 10;

class CostTest : public CodecFixture {
 protected:
  CostTest() { codec_->setNextTowardsHost(std::make_unique<CountingLink>(sizes_)); }

  // Basic blocks entered for each part of one message. `capacity`: that of the large table, 0 to
  // leave it as insertions made it.
  double workPerPart(const costed_kind_t& kind, int parts, std::int64_t capacity = 0) {
    map_t payload = kind.make(parts);
    if (capacity != 0) rebuild(largeTableOf(payload), capacity);
    Message message = notification(kind.path, std::move(payload));
    sizes_.clear();
    const std::uint64_t blocks =
        blocksEnteredBy([&] { codec_->sendBatchTowardsHost(&message, &message + 1); });
    EXPECT_EQ(sizes_, std::vector<std::ptrdiff_t>{1});
    EXPECT_EQ(message.getMetadataMap().size(), 2U) << "it is no event";
    return static_cast<double>(blocks) / parts;
  }

  std::vector<std::ptrdiff_t> sizes_;
  std::unique_ptr<OstroviaNotifications2Codec> codec_ = codec();
};

class KindCostTest : public CostTest, public ::testing::WithParamInterface<costed_kind_t> {};

TEST_P(KindCostTest, StaysFlatFromTenTo100000Parts) {
  const double hundred = workPerPart(GetParam(), 100);
  for (const int parts : {10, 1'000, 10'000, 100'000}) {
    const double work = workPerPart(GetParam(), parts);
    RecordProperty("blocks_per_part_of_" + std::to_string(parts), std::to_string(work));
    // Small messages also bear the cost of a message without any part.
    EXPECT_LT(work, parts == 10 ? 20 * hundred : 1.5 * hundred) << parts;
  }
}

// The capacities that a host gives to a table with a known number of entries.
TEST_P(KindCostTest, StaysFlatForAnyCapacityOfAHost) {
  constexpr int PARTS = 100'000;
  const double grown = workPerPart(GetParam(), PARTS);
  for (const std::int64_t capacity : {PARTS + 20, PARTS * 4 / 3, 2 * PARTS, 1 << 17, 1 << 18}) {
    EXPECT_LT(workPerPart(GetParam(), PARTS, capacity), 1.5 * grown) << capacity;
  }
}

// Twice the slots of a table that takes the entries in, three fifths full: taken in the order of
// slots, the second half runs into the first. The places of entries are the host's business and so
// is the way there; nothing comes on top of it.
TEST_P(KindCostTest, StaysLeastInTheWorstOrderOfSlots) {
  constexpr int PARTS = 12'388;
  constexpr std::int64_t CAPACITY = 2 * capacityFor(PARTS * 5 / 6);
  map_t payload = GetParam().make(PARTS);
  rebuild(largeTableOf(payload), CAPACITY);
  const std::uint64_t forced = forcedVisits(slotHashes(largeTableOf(payload)));
  const double grown = workPerPart(GetParam(), PARTS);
  const double worst = workPerPart(GetParam(), PARTS, CAPACITY);
  EXPECT_GT(forced, std::uint64_t{10} * PARTS) << "this is no bad order";
  EXPECT_LT((worst - grown) * PARTS, BLOCKS_PER_VISIT * static_cast<double>(forced));
}

// Keys that all hash alike: each insertion passes all entries before it, in any implementation.
TEST_P(KindCostTest, StaysLeastWhenAllKeysCollide) {
  constexpr int PARTS = 1'000;
  const double apart = workPerPart(GetParam(), PARTS);
  parts_collide = true;
  const double together = workPerPart(GetParam(), PARTS);
  parts_collide = false;
  const std::uint64_t forced = forcedVisits(std::vector(PARTS, COLLIDING));
  EXPECT_GT(forced, std::uint64_t{100} * PARTS);
  EXPECT_GT((together - apart) * PARTS, static_cast<double>(forced)) << "they do not collide";
  EXPECT_LT((together - apart) * PARTS,
            (BLOCKS_PER_VISIT + BLOCKS_PER_COMPARISON) * static_cast<double>(forced));
}

// The same time in an unusual zone takes the literal steps, too.
TEST_F(CostTest, UsualTimesTakeNoLiteralSteps) {
  const auto blocks_of = [](const std::string& time) {
    return blocksEnteredBy([&] { EXPECT_TRUE(plugins::pulsar::tryParseTime(time.c_str())); });
  };
  for (const std::string time :
       {"2023-04-05T06:07:08", "0000-01-01T00:00:00", "9999-12-31T23:59:61"}) {
    for (const auto& [usual, unusual] :
         {std::pair("Z", "z"), std::pair(".123Z", ".123z"), std::pair("+02:30", "+0230"),
          std::pair(".123-02:30", ".123-0230"), std::pair(".999+23:59", ".999+2359")}) {
      EXPECT_LT(blocks_of(time + usual), blocks_of(time + unusual)) << time << usual;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, KindCostTest,
                         ::testing::Values(EVENT, MEASUREMENT, MANAGED_OBJECT));

} // namespace
} // namespace com::velanto::connectivity::test
