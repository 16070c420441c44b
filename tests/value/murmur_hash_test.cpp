// The mixing function, against numbers that an independent implementation gave.
#include "value/murmur_hash.hpp"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace com::velanto::connectivity::test {
namespace {

using hashes::murmur_hash;

TEST(MurmurHash, WordsArePinned) {
  const struct {
    std::uint64_t word;
    std::uint64_t seed;
    std::uint64_t hash;
  } rows[] = {
      {0, 0x243fcaf1, 0xd3a7101d1b4ebc20},
      {1, 0x243fcaf1, 0x47f9af630b2e90d9},
      {0xfffffffffffffffb, 0x243fcaf1, 0x3e4cdd08a1116448},
      {0x8000000000000000, 0x243fcaf1, 0x06cc54986edb0700},
      {0x0123456789abcdef, 0x243fcaf1, 0x143cf575ec52b25b},
      {0, 7, 0x336c492febaa7f0d},
      {1, 7, 0x8f44699b38e45dbb},
  };
  for (const auto& row : rows) EXPECT_EQ(murmur_hash(row.word, row.seed), row.hash) << row.word;
}

// Bytes 1, 2, 3 … of these lengths: no block, blocks only, and every kind of tail.
TEST(MurmurHash, BytesArePinned) {
  const struct {
    std::size_t length;
    std::uint64_t hash; // under seed 0x243fcaf1
    std::uint64_t hash_of_seed_7;
    std::uint64_t hash_of_seed_0;
  } rows[] = {
      {0, 0xe36925ae8296b197, 0x6e80950782bdbe12, 0x0000000000000000},
      {1, 0xa32478f4d91fd6bf, 0xf31944f66dd8e3c9, 0xb09b25bfc7c41d07},
      {3, 0x8af28ce2c2f899a1, 0x437eafd3cf47727a, 0xf187641bcbc5b011},
      {7, 0x9a7a6e8d3eb948cc, 0x9baec9352a87bbc7, 0x9b3324552555b9f4},
      {8, 0x7a4adc483445ada5, 0x81ccd30353e75c61, 0x88b2a580354486b7},
      {9, 0xbef5ffa86abac23b, 0x04028a7ed81412b5, 0x7809ad84418c420a},
      {15, 0x50d96eb2a4dd55b8, 0x527fa9919c78c777, 0x6c03db5b0458eff9},
      {16, 0x2a59c7a12e4d52f4, 0x0ec56d66d164822c, 0x90285e3bad6bcddb},
      {17, 0x470303d030803d74, 0x95d204ac3d11aa8a, 0x6a2a44b80b0557bc},
      {24, 0x16682407f56effa6, 0xa7feecb3244080da, 0xbc09b1408561ee40},
      {31, 0x27231ae2aa955f46, 0xda99160f3ae2a7b5, 0xe0891df5e1f535d0},
  };
  std::vector<unsigned char> bytes;
  for (unsigned char byte = 1; byte <= 31; ++byte) bytes.push_back(byte);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.length);
    EXPECT_EQ(murmur_hash(bytes.data(), row.length, 0x243fcaf1), row.hash);
    EXPECT_EQ(murmur_hash(bytes.data(), row.length, 7), row.hash_of_seed_7);
    EXPECT_EQ(murmur_hash(bytes.data(), row.length, 0), row.hash_of_seed_0);
  }
}

TEST(MurmurHash, HighBytesAreNotSigned) {
  const std::array<unsigned char, 5> bytes = {0xff, 0xff, 0xff, 0xff, 0xff};
  EXPECT_EQ(murmur_hash(bytes.data(), bytes.size(), 0x243fcaf1), 0xe1e71af48038fca6);
}

TEST(MurmurHash, NullWithoutBytesIsTheEmptySequence) {
  EXPECT_EQ(murmur_hash(nullptr, 0, 0x243fcaf1), 0xe36925ae8296b197);
}

TEST(MurmurHash, WordHashesAsItsLittleEndianBytes) {
  const std::array<unsigned char, 8> bytes = {0xef, 0xcd, 0xab, 0x89, 0x67, 0x45, 0x23, 0x01};
  EXPECT_EQ(murmur_hash(bytes.data(), bytes.size(), 7), murmur_hash(0x0123456789abcdef, 7));
}

} // namespace
} // namespace com::velanto::connectivity::test
