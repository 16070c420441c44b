// The hash of every kind of value. The numbers come from an independent implementation of the
// rules, with FNV-1a, started from the seed, as the host's string hash.
#include "value/hashes.hpp"

#include <gtest/gtest.h>

#include <bit>

#include "tests/support/host_fixture.hpp"
#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

std::uint64_t fnv(const char* text, std::uint64_t seed) {
  std::uint64_t hash = seed;
  for (; *text != '\0'; ++text) {
    hash = (hash ^ static_cast<unsigned char>(*text)) * 0x100000001b3;
  }
  return hash;
}

class Hashes : public HostFixture {
 public:
  ~Hashes() override { standin_set_string_hash(nullptr); }

 protected:
  Hashes() { standin_set_string_hash(fnv); }

  static std::uint64_t hash_of(const data_t& value, std::uint64_t seed = 0x243FCAF1) {
    return hashes::calculate_hash(seed).of(value);
  }
};

TEST_F(Hashes, KeySeedIsFixed) {
  EXPECT_EQ(hashes::BASE, 0x243FCAF1u);
  EXPECT_EQ(hashes::key_hash(whole(1)), 0x47f9af630b2e90d9);
  EXPECT_EQ(hashes::key_hash(text("id")), 0xca80dca9f40c0ac4);
}

TEST_F(Hashes, EmptyAndUnknownAreTheSeed) {
  for (const data_t& value : {data_t(), tagged(11, 99), tagged(4294967295)}) {
    EXPECT_EQ(hash_of(value), 0x243fcaf1u);
    EXPECT_EQ(hash_of(value, 7), 7u);
  }
}

TEST_F(Hashes, BooleansAreTheSeedOrItsComplement) {
  EXPECT_EQ(hash_of(truth(true)), 0x243fcaf1u);
  EXPECT_EQ(hash_of(truth(true), 7), 7u);
  EXPECT_EQ(hash_of(truth(false)), 0xffffffffdbc0350e);
  EXPECT_EQ(hash_of(truth(false), 7), 0xfffffffffffffff8);
}

TEST_F(Hashes, IntegersArePinned) {
  EXPECT_EQ(hash_of(whole(0)), 0xd3a7101d1b4ebc20);
  EXPECT_EQ(hash_of(whole(1)), 0x47f9af630b2e90d9);
  EXPECT_EQ(hash_of(whole(-5)), 0x3e4cdd08a1116448);
  EXPECT_EQ(hash_of(whole(INT64_MIN)), 0x06cc54986edb0700);
  EXPECT_EQ(hash_of(whole(INT64_MAX)), 0x1202fa480d67ea60);
  EXPECT_EQ(hash_of(whole(0), 7), 0x336c492febaa7f0d);
  EXPECT_EQ(hash_of(whole(-5), 7), 0x82d0517026ec1276);
}

TEST_F(Hashes, DoublesArePinnedAndZeroHasNoSign) {
  EXPECT_EQ(hash_of(real(0.0)), 0xd3a7101d1b4ebc20);
  EXPECT_EQ(hash_of(real(-0.0)), 0xd3a7101d1b4ebc20);
  EXPECT_EQ(hash_of(real(0.5)), 0x2271085d13aeb16b);
  EXPECT_EQ(hash_of(real(1.0)), 0x5f834417eda1633b);
  EXPECT_EQ(hash_of(real(-1e300)), 0xda440b228c5ef6ac);
  EXPECT_EQ(hash_of(tagged(2, 0x7ff8000000000000)), 0xa2c060fefc64cf53); // a NaN
  EXPECT_EQ(hash_of(real(-0.0), 7), 0x336c492febaa7f0d);
  EXPECT_EQ(hash_of(real(0.5), 7), 0xaae6d2b4255309b8);
}

TEST_F(Hashes, DecimalsArePinned) {
  EXPECT_EQ(hash_of(decimal(0x0123456789abcdef)), 0x143cf575ec52b25b);
  EXPECT_EQ(hash_of(decimal(0x0123456789abcdef), 7), 0xd65410ed9675a192);
  EXPECT_EQ(hash_of(decimal(0x8000000000000000)), 0x06cc54986edb0700); // no zero with a sign here
}

TEST_F(Hashes, StringsHashAsTheHostSays) {
  EXPECT_EQ(hash_of(text("id")), 0xca80dca9f40c0ac4);
  EXPECT_EQ(hash_of(text("source")), 0x13d3ec208a45884c);
  EXPECT_EQ(hash_of(text("Gr\xc3\xbc\xc3\x9f"
                         "e")),
            0xea7d2a930f0842ac);
  EXPECT_EQ(hash_of(text("id"), 7), 0x01757800013cff4a);
  EXPECT_EQ(hash_of(borrowed("id")), 0xca80dca9f40c0ac4);
  EXPECT_EQ(hash_of(borrowed("id"), 7), 0x01757800013cff4a);
}

TEST_F(Hashes, NullHashesAsTheEmptyString) {
  EXPECT_EQ(hash_of(text("")), 0x243fcaf1u); // FNV-1a of no bytes
  EXPECT_EQ(hash_of(nullText()), hash_of(text("")));
  EXPECT_EQ(hash_of(tagged(10)), hash_of(text("")));
  standin_set_string_hash(
      [](const char* text, std::uint64_t seed) { return seed + (*text == '\0' ? 41 : 0); });
  EXPECT_EQ(hash_of(nullText(), 1), 42u);
  EXPECT_EQ(hash_of(tagged(10), 1), 42u);
}

TEST_F(Hashes, ListsFoldTheirElementsInOrder) {
  EXPECT_EQ(hash_of(listOf(whole(1))), 0x47f9af630b2e90d9);
  EXPECT_EQ(hash_of(listOf(whole(1), whole(2))), 0xc6016c126b1a0fbf);
  EXPECT_EQ(hash_of(listOf(whole(2), whole(1))), 0xe8a1565fd4b2645e);
  EXPECT_EQ(hash_of(listOf(truth(false), whole(1))), 0x9b72b3c236d67a18);
  EXPECT_EQ(hash_of(listOf(text("id"), real(0.5))), 0xe6bcb997598e52b2);
  EXPECT_EQ(hash_of(listOf(data_t())), 0x243fcaf1u);
}

TEST_F(Hashes, ListsWithoutElementsAreTheFixedSeed) {
  EXPECT_EQ(hash_of(listOf()), 0x243fcaf1u);
  EXPECT_EQ(hash_of(tagged(6)), 0x243fcaf1u);
}

TEST_F(Hashes, ContainersInAListForgetEarlierElements) {
  EXPECT_EQ(hash_of(listOf(whole(1), listOf(whole(2)))), 0xe424f1e45621ddf2);
  EXPECT_EQ(hash_of(listOf(listOf(whole(2)))), 0xe424f1e45621ddf2);
  EXPECT_EQ(hash_of(listOf(whole(1), map_t())), 0x243fcaf1u);
  EXPECT_EQ(hash_of(listOf(whole(1), bytes("abc"))), 0x0e903061f4c485b4);
}

TEST_F(Hashes, ContainersIgnoreTheSeed) {
  const data_t values[] = {
      listOf(whole(1)), mapOf("id", whole(1)), bytes("abc"), tagged(6), tagged(7), tagged(8)};
  for (const data_t& value : values) {
    SCOPED_TRACE(value.type_tag());
    EXPECT_EQ(hash_of(value, 7), hash_of(value));
  }
}

TEST_F(Hashes, MapsSumTheirEntries) {
  EXPECT_EQ(hashes::hash(mapOf("id", whole(1))), 0x127a8c0d237a668e);
  EXPECT_EQ(hashes::hash(mapOf(whole(1), truth(true), whole(2), truth(false))), 0x2c1ea147859039bb);
  EXPECT_EQ(hashes::hash(mapOf(truth(true), map_t())), 0x6cbf60d3u);
  EXPECT_EQ(hashes::hash(mapOf(whole(1), data_t())), 0x47f9af6353ae26bb);
  EXPECT_EQ(hash_of(data_t(mapOf("id", whole(1)))), 0x127a8c0d237a668e);
}

TEST_F(Hashes, MapsWithoutEntriesAreTheFixedSeed) {
  map_t erased = mapOf("id", whole(1));
  erased.erase(erased.begin());
  EXPECT_EQ(hashes::hash(map_t()), 0x243fcaf1u);
  EXPECT_EQ(hashes::hash(table_of(0)), 0x243fcaf1u);
  EXPECT_EQ(hashes::hash(table_of(8)), 0x243fcaf1u);
  EXPECT_EQ(hashes::hash(erased), 0x243fcaf1u);
}

TEST_F(Hashes, MapsHashEquallyInAnyOrderAndCapacity) {
  const map_t forwards = mapOf("a", whole(1), "b", whole(2), "c", whole(3));
  const map_t backwards = mapOf("c", whole(3), "b", whole(2), "a", whole(1));
  map_t large = table_of(100);
  fill(large, "b", whole(2), "c", whole(3), "a", whole(1));
  EXPECT_EQ(hashes::hash(forwards), hashes::hash(backwards));
  EXPECT_EQ(hashes::hash(forwards), hashes::hash(large));
}

TEST_F(Hashes, BuffersArePinned) {
  EXPECT_EQ(hash_of(bytes("")), 0xe36925ae8296b197);
  EXPECT_EQ(hash_of(tagged(8)), 0xe36925ae8296b197);
  EXPECT_EQ(hash_of(bytes("\x01")), 0xa32478f4d91fd6bf);
  EXPECT_EQ(hash_of(bytes("\x01\x02\x03\x04\x05\x06\x07\x08")), 0x7a4adc483445ada5);
  EXPECT_EQ(hash_of(bytes("\x01\x02\x03\x04\x05\x06\x07\x08\x09")), 0xbef5ffa86abac23b);
  EXPECT_EQ(hash_of(bytes("\xff\xff\xff\xff\xff")), 0xe1e71af48038fca6);
}

TEST_F(Hashes, CustomValuesAreRefusedEverywhere) {
  const data_t values[] = {custom(1), tagged(9), listOf(whole(1), custom(1)), mapOf("k", custom(1)),
                           listOf(mapOf("k", listOf(custom(1))))};
  for (const data_t& value : values) {
    EXPECT_THROW(hash_of(value), std::runtime_error);
    EXPECT_EQ(errorOf([&] { hash_of(value); }), "Cannot use custom values as a key");
  }
  EXPECT_EQ(errorOf([] { static_cast<void>(hashes::hash(mapOf("k", custom(1)))); }),
            "Cannot use custom values as a key");
}

} // namespace
} // namespace com::velanto::connectivity::test
