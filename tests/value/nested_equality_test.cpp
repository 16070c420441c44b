// Comparing and hashing values in values: the same outcome as by recursion, without its stack.
#include "value/nested_equality.hpp"

#include <gtest/gtest.h>

#include <new>
#include <random>

#include "tests/support/allocations.hpp"
#include "tests/support/small_stack.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

// ---- the same by recursion, as one would write it down

bool equal_by_recursion(const data_t& left, const data_t& right);

bool lists_equal(const list_t& left, const list_t& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (!equal_by_recursion(left[i], right[i])) return false;
  }
  return true;
}

bool has_entry(const map_t& map, const data_t& key, const data_t& value) {
  for (const auto& [other_key, other_value] : map) {
    if (equal_by_recursion(other_key, key)) return equal_by_recursion(other_value, value);
  }
  return false;
}

bool maps_equal(const map_t& left, const map_t& right) {
  if (left.size() != right.size()) return false;
  for (const auto& [key, value] : left) {
    if (!has_entry(right, key, value)) return false;
  }
  return true;
}

bool equal_by_recursion(const data_t& left, const data_t& right) {
  if (left.type_tag() != right.type_tag()) return false;
  if (left.type_tag() == VLT_TAG_LIST) return lists_equal(left.get<list_t>(), right.get<list_t>());
  if (left.type_tag() == VLT_TAG_MAP) return maps_equal(left.get<map_t>(), right.get<map_t>());
  return left == right;
}

std::uint64_t hash_by_recursion(const data_t& value, std::uint64_t seed) {
  std::uint64_t hash = hashes::BASE;
  if (value.type_tag() == VLT_TAG_LIST) {
    for (const data_t& element : value.get<list_t>()) hash = hash_by_recursion(element, hash);
    return hash;
  }
  if (value.type_tag() == VLT_TAG_MAP) {
    for (const auto& [key, content] : value.get<map_t>()) {
      hash += hash_by_recursion(key, hashes::BASE) + hash_by_recursion(content, hashes::BASE);
    }
    return hash;
  }
  return hashes::calculate_hash(seed).of(value);
}

// ---- values of few different parts, so that equal ones and equal hashes are common

class AnyValue {
 public:
  data_t make(int depth) {
    switch (below(depth == 0 ? 3 : 6)) {
      case 0:
        return whole(below(2));
      case 1:
        return text(below(2) == 0 ? "a" : "b");
      case 2:
        return {};
      case 3:
        return map(depth);
      default:
        return list(depth);
    }
  }

 private:
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  data_t list(int depth) {
    const int count = below(3);
    list_t made(standin_make_list(count, count));
    for (data_t& element : made) element = make(depth - 1);
    return made;
  }
  data_t map(int depth) {
    map_t made;
    for (int i = below(4); i > 0; --i) {
      data_t key = make(depth - 1);
      if (!key.empty()) made[std::move(key)] = make(depth - 1);
    }
    if (!made.empty() && below(4) == 0) made.erase(made.begin());
    return made;
  }

  std::mt19937 random_{4711};
};

class NestedEquality : public HostFixture {};

TEST_F(NestedEquality, AgreesWithRecursion) {
  AnyValue any;
  int equal = 0;
  for (int i = 0; i < 20'000; ++i) {
    const data_t left = any.make(4);
    const data_t right = any.make(4);
    const bool expected = equal_by_recursion(left, right);
    ASSERT_EQ(left == right, expected) << to_string(left) << " and " << to_string(right);
    ASSERT_TRUE(left == data_t(left)) << to_string(left);
    ASSERT_EQ(hashes::key_hash(left), hash_by_recursion(left, hashes::BASE)) << to_string(left);
    if (expected && left.type_tag() >= VLT_TAG_LIST) ++equal;
  }
  EXPECT_GT(equal, 100) << "containers";
}

TEST_F(NestedEquality, LooksPastKeysOfTheSameHash) {
  const auto longer = [] { return listOf(whole(1), listOf(whole(2))); };
  const auto shorter = [] { return listOf(listOf(whole(2))); };
  ASSERT_EQ(hashes::key_hash(longer()), hashes::key_hash(shorter()));
  const map_t map = mapOf(longer(), text("l"), shorter(), text("s"));
  EXPECT_TRUE(are_equal(map, mapOf(shorter(), text("s"), longer(), text("l"))));
  EXPECT_FALSE(are_equal(map, mapOf(shorter(), text("l"), longer(), text("s"))));
}

TEST_F(NestedEquality, TablesAreOfAnyCapacityAndHistory) {
  map_t large = table_of(100);
  fill(large, "b", listOf(listOf()), "a", whole(1));
  map_t worn = mapOf("x", whole(0), "a", whole(1), "b", listOf(listOf()));
  worn.erase(worn.find(text("x")));
  EXPECT_TRUE(are_equal(large, worn));
  EXPECT_TRUE(are_equal(worn, large));
  EXPECT_TRUE(are_equal(table_of(0), map_t()));
  EXPECT_TRUE(are_equal(map_t(), table_of(8)));
  EXPECT_FALSE(are_equal(mapOf("a", whole(1)), table_of(0)));
}

TEST_F(NestedEquality, UncountedEntryIsLookedUpInNoTable) {
  const map_t uncounted = mapOf("a", whole(1));
  head_of(uncounted).live = 0;
  EXPECT_FALSE(are_equal(uncounted, map_t()));
  EXPECT_FALSE(are_equal(uncounted, table_of(0)));
}

// ---- a million deep

constexpr int KEY_DEPTH = 1'000'000;

data_t list_around(data_t&& inner) { return listOf(std::move(inner)); }
data_t map_around(data_t&& inner) {
  map_t map = table_of(1);
  put(map, 0, 5, whole(1), std::move(inner));
  return map;
}
data_t map_under(data_t&& inner) {
  map_t map = table_of(1);
  put(map, 0, 5, std::move(inner), whole(1));
  return map;
}
template <class Around>
data_t nested(Around around, std::int64_t innermost) {
  data_t value = whole(innermost);
  for (int i = 0; i < KEY_DEPTH; ++i) value = around(std::move(value));
  return value;
}

template <class Around>
void expect_compared(Around around) {
  const data_t value = nested(around, 7);
  const data_t same = nested(around, 7);
  const data_t other = nested(around, 8);
  runOnSmallStack([&] {
    EXPECT_TRUE(value == same);
    EXPECT_FALSE(value == other);
    EXPECT_EQ(hashes::key_hash(value), hashes::key_hash(same));
    EXPECT_NE(hashes::key_hash(value), hashes::key_hash(other));
  });
}

TEST_F(NestedEquality, DeepListsTakeNoStack) { expect_compared(list_around); }
TEST_F(NestedEquality, DeepValuesOfMapsTakeNoStack) { expect_compared(map_around); }
TEST_F(NestedEquality, DeepKeysOfMapsTakeNoStack) { expect_compared(map_under); }

TEST_F(NestedEquality, DeepKeyIsInsertedAndFoundAgain) {
  data_t key = nested(list_around, 7);
  const data_t same = nested(list_around, 7);
  runOnSmallStack([&] {
    map_t map;
    map[std::move(key)] = text("deep");
    EXPECT_EQ(at(map, same), text("deep"));
    EXPECT_FALSE(map.insert(data_t(same), data_t()).second);
    map.erase(map.find(same));
    EXPECT_TRUE(map.empty());
  });
}

// ---- memory for waiting values

TEST_F(NestedEquality, FlatContainersNeedNoMemory) {
  const data_t list = listOf(whole(1), text("a"));
  const data_t map = mapOf("a", whole(1), "b", text("b"));
  const data_t list_copy(list);
  const data_t map_copy(map);
  const NoMemory none;
  EXPECT_TRUE(list == list_copy);
  EXPECT_TRUE(map == map_copy);
  EXPECT_EQ(hashes::key_hash(list), hashes::key_hash(list_copy));
}

TEST_F(NestedEquality, WithoutMemoryThereIsNoOutcome) {
  const data_t value = listOf(listOf(whole(1)));
  const data_t same(value);
  const auto in_vain = [](const auto& use) {
    const NoMemory none;
    try {
      use();
    } catch (const std::bad_alloc&) {
      return true;
    }
    return false;
  };
  map_t map = mapOf(data_t(value), text("v"));
  EXPECT_TRUE(in_vain([&] { static_cast<void>(value == same); }));
  EXPECT_TRUE(in_vain([&] { static_cast<void>(hashes::key_hash(value)); }));
  EXPECT_TRUE(in_vain([&] { static_cast<void>(map.find(value)); }));
  EXPECT_TRUE(in_vain([&] { map[data_t(value)] = whole(1); }));
  EXPECT_EQ(at(map, value), text("v"));
}

} // namespace
} // namespace com::velanto::connectivity::test
