// Copies of strings, and the string hash: its quality, its independence of everything but bytes and
// seed, and its replacement.
#include "host/storage.h"

#include <array>
#include <bit>
#include <set>

#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

class Strings : public Blocks {
 protected:
  void TearDown() override {
    standin_set_string_hash(nullptr);
    Blocks::TearDown();
  }
};

TEST_F(Strings, CopyIsEqualAndElsewhere) {
  const char* source = "text";
  char* copy = vlt_copy_string(source);
  EXPECT_STREQ(copy, "text");
  EXPECT_NE(copy, source);
  vlt_free_string(copy);
}

TEST_F(Strings, EmptyAndNullCopyToEmpty) {
  for (const char* source : {"", static_cast<const char*>(nullptr)}) {
    char* copy = vlt_copy_string(source);
    EXPECT_STREQ(copy, "");
    vlt_free_string(copy);
  }
}

TEST_F(Strings, HashDependsOnBytesAndSeedOnly) {
  const std::string text = "temperatureReading";
  for (std::size_t offset = 0; offset < 8; ++offset) {
    const std::string moved = std::string(offset, 'x') + text;
    EXPECT_EQ(vlt_hash_string(moved.c_str() + offset, 5), vlt_hash_string(text.c_str(), 5));
  }
  EXPECT_NE(vlt_hash_string("time", 1), vlt_hash_string("time", 2));
}

TEST_F(Strings, NullHashesAsTheEmptyString) {
  EXPECT_EQ(vlt_hash_string(nullptr, 5), vlt_hash_string("", 5));
}

// Computed apart from the library, from the description of its hash. A change moves the entries of
// every table, and with them rendered values.
TEST_F(Strings, HashValuesArePinned) {
  EXPECT_EQ(vlt_hash_string("", 0), 0x0000000000000000);
  EXPECT_EQ(vlt_hash_string("id", 0x243fcaf1), 0x53b4b1c534dfa765);
  EXPECT_EQ(vlt_hash_string("severity", 0x243fcaf1), 0x459c829820ab8c56);
  EXPECT_EQ(vlt_hash_string("firstOccurrenceTime", 7), 0xb3bb97d7d1f0b38f);
}

TEST_F(Strings, LengthsOfOneRepeatedByteAllDiffer) {
  std::set<uint64_t> hashes;
  for (std::size_t length = 0; length < 100; ++length) {
    hashes.insert(vlt_hash_string(std::string(length, 'a').c_str(), 1));
  }
  EXPECT_EQ(hashes.size(), 100U);
}

// A good hash turns about half of the 64 bits for any bit of the string or of the seed.
TEST_F(Strings, EveryInputBitTurnsHalfOfTheHash) {
  const std::string text = "a text of more than two words";
  const uint64_t whole = vlt_hash_string(text.c_str(), 1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    int turned = 0;
    for (int bit = 0; bit < 7; ++bit) {
      std::string other = text;
      other[i] = static_cast<char>(other[i] ^ (1 << bit));
      turned += std::popcount(vlt_hash_string(other.c_str(), 1) ^ whole);
    }
    EXPECT_NEAR(turned, 7 * 32, 7 * 8) << "byte " << i;
  }
  for (int bit = 0; bit < 64; ++bit) {
    const uint64_t other = vlt_hash_string(text.c_str(), 1 ^ (uint64_t{1} << bit));
    EXPECT_NEAR(std::popcount(other ^ whole), 32, 16) << "seed bit " << bit;
  }
}

TEST_F(Strings, NumberedKeysSpreadEvenlyOverSlots) {
  std::array<int, 16> slots{};
  std::set<uint64_t> hashes;
  for (int i = 0; i < 16'000; ++i) {
    const uint64_t hash = vlt_hash_string(("key" + std::to_string(i)).c_str(), 0x243fcaf1);
    ++slots[hash % slots.size()];
    hashes.insert(hash);
  }
  EXPECT_EQ(hashes.size(), 16'000U);
  for (const int count : slots) EXPECT_NEAR(count, 1000, 150);
}

uint64_t alwaysOne(const char*, uint64_t) { return 1; }
uint64_t lengthAndSeed(const char* text, uint64_t seed) { return std::strlen(text) + seed; }

TEST_F(Strings, HashCanBeReplacedAndRestored) {
  const uint64_t own = vlt_hash_string("time", 5);
  standin_set_string_hash(alwaysOne);
  EXPECT_EQ(vlt_hash_string("time", 5), 1U);
  standin_set_string_hash(lengthAndSeed);
  EXPECT_EQ(vlt_hash_string("time", 5), 9U);
  EXPECT_EQ(vlt_hash_string(nullptr, 5), 5U);
  standin_set_string_hash(nullptr);
  EXPECT_EQ(vlt_hash_string("time", 5), own);
}

} // namespace
} // namespace standin::test
