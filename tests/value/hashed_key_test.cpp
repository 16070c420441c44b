// A key with a hash from its construction costs no hashing in use.
#include "value/hashed_key.hpp"

#include <gtest/gtest.h>

#include <utility>

#include "tests/support/failing_allocations.hpp"
#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

using HashedKey = HostFixture;

TEST_F(HashedKey, IsAStringWithItsHash) {
  for (const char* content : {"", "a", "source", "a key that is longer than eight bytes"}) {
    SCOPED_TRACE(content);
    const hashed_key_t key(content);
    const data_t same = text(content);
    EXPECT_EQ(key, same);
    EXPECT_EQ(key.hash(), hashes::key_hash(same));
  }
}

TEST_F(HashedKey, TakesOverAValueThatIsThere) {
  data_t made = text("a");
  const char* const content = made.get<const char*>();
  const hashed_key_t key(std::move(made));
  EXPECT_EQ(key.get<const char*>(), content);
  EXPECT_EQ(key.hash(), hashed_key_t("a").hash());
}

TEST_F(HashedKey, NullIsRefused) {
  EXPECT_EQ(errorOf([] { const hashed_key_t key(nullptr); }),
            "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)");
}

TEST_F(HashedKey, IsHashedOnceWhenItIsMade) {
  standin_reset_calls();
  const hashed_key_t key("a");
  EXPECT_EQ(standin_calls(STANDIN_HASH_STRING), 1);
  EXPECT_NE(key.hash(), 0u);
  EXPECT_NE(key.hash(), hashed_key_t("b").hash());
}

TEST_F(HashedKey, CopyHasABlockOfItsOwn) {
  const hashed_key_t key("a");
  standin_reset_calls();
  const data_t copy = key.copy();
  EXPECT_EQ(copy, text("a"));
  EXPECT_NE(content_bits(copy), content_bits(key));
  EXPECT_EQ(standin_calls(STANDIN_HASH_STRING), 0);
}

TEST_F(HashedKey, EntryTakesTheValueUnderACopy) {
  const hashed_key_t key("a");
  data_t value = listOf(text("v"));
  const std::uint64_t block = content_bits(value);
  standin_reset_calls();
  const map_entry_t entry = key.with(std::move(value));
  EXPECT_EQ(standin_calls(STANDIN_HASH_STRING), 0);
  EXPECT_FALSE(entry.key.empty());
  EXPECT_EQ(entry.hash, hashes::key_hash(text("a")));
  EXPECT_EQ(entry.key, text("a"));
  EXPECT_NE(content_bits(entry.key), content_bits(key));
  EXPECT_EQ(content_bits(entry.value), block);
  EXPECT_TRUE(is_zeroed(value));
}

TEST_F(HashedKey, ValueStaysWithoutMemoryForTheKey) {
  const hashed_key_t key("a");
  data_t value = listOf(text("v"));
  map_entry_t entry;
  const auto verify = [&] {
    EXPECT_EQ(standin_failed_allocations() > 0 ? value : entry.value, listOf(text("v")));
  };
  EXPECT_EQ(failEachAllocation([&] { entry = key.with(std::move(value)); }, verify), 1u);
  EXPECT_EQ(entry.key, text("a"));
}

TEST_F(HashedKey, LookUpsUnderItHashNothing) {
  const hashed_key_t present("a");
  const hashed_key_t absent("x");
  map_t map = mapOf("a", whole(1), "b", whole(2));
  const map_t& constant = map;
  standin_reset_calls();
  EXPECT_EQ((*map.find(present)).second, whole(1));
  EXPECT_EQ((*constant.find(present)).second, whole(1));
  EXPECT_EQ(*constant.find_value(present), whole(1));
  EXPECT_NE(map.find_value(present), nullptr);
  EXPECT_TRUE(map.find(absent) == map.end());
  EXPECT_EQ(map.find_value(absent), nullptr);
  EXPECT_TRUE(extracted(map, absent).key.empty());
  EXPECT_EQ(extracted(map, present).value, whole(1));
  EXPECT_EQ(standin_calls(STANDIN_HASH_STRING), 0);
}

TEST_F(HashedKey, LookUpUnderAPlainValueHashesIt) {
  const hashed_key_t key("a");
  const data_t& plain = key;
  const map_t map = mapOf("a", whole(1));
  standin_reset_calls();
  EXPECT_EQ(*map.find_value(plain), whole(1));
  EXPECT_EQ(standin_calls(STANDIN_HASH_STRING), 1);
}

TEST_F(HashedKey, EntryOfItIsStoredWithoutHashing) {
  const hashed_key_t key("a");
  map_t map;
  standin_reset_calls();
  map.insert(key.with(whole(1)));
  map.assign(key.with(whole(2)));
  EXPECT_EQ(standin_calls(STANDIN_HASH_STRING), 0);
  EXPECT_EQ(at(map, "a"), whole(2));
}

} // namespace
} // namespace com::velanto::connectivity::test
