// Maps against their model: more than a million random operations, under string hashes that spread
// well, collide heavily, or give the numbers that mark free and deleted slots.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/value/map_operations.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr std::size_t PROGRAM_LENGTH = 50'000; // bytes

std::vector<std::uint8_t> random_program(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::vector<std::uint8_t> program(PROGRAM_LENGTH);
  std::generate(program.begin(), program.end(),
                [&] { return static_cast<std::uint8_t>(random()); });
  program[0] = static_cast<std::uint8_t>(seed); // seeds take the numbers of keys in turn
  return program;
}

// Restores the host's own string hash when all maps are gone.
class MapModel : public HostFixture {
 public:
  ~MapModel() override { standin_set_string_hash(nullptr); }

 protected:
  // Runs random programs from `first_seed` on, up to this number of compared operations.
  static void run(std::uint64_t first_seed, std::size_t operations,
                  standin_string_hash_t string_hash) {
    standin_set_string_hash(string_hash);
    std::size_t done = 0;
    for (std::uint64_t seed = first_seed; done < operations; ++seed) {
      const std::vector<std::uint8_t> program = random_program(seed);
      model::MapOperations maps(program);
      ASSERT_EQ(maps.run(), "") << "seed " << seed;
      done += maps.done();
    }
  }
};

TEST_F(MapModel, AgreesUnderTheHostsHash) { run(1000, 600'000, nullptr); }

TEST_F(MapModel, AgreesUnderFourHashes) {
  run(2000, 200'000, [](const char* text, std::uint64_t seed) {
    std::uint64_t sum = seed;
    for (; *text != '\0'; ++text) sum = sum * 31 + static_cast<unsigned char>(*text);
    return sum % 4;
  });
}

TEST_F(MapModel, AgreesUnderTheHighestHashes) {
  run(3000, 200'000, [](const char* text, std::uint64_t) {
    return UINT64_MAX - static_cast<unsigned char>(text[*text == '\0' ? 0 : 1]) % 7;
  });
}

TEST_F(MapModel, AgreesUnderTheHashOfFreeSlots) {
  run(4000, 100'000, [](const char*, std::uint64_t) { return std::uint64_t{0}; });
}

TEST_F(MapModel, AgreesUnderTheHashOfDeletedSlots) {
  run(5000, 100'000, [](const char*, std::uint64_t) { return std::uint64_t{1}; });
}

} // namespace
} // namespace com::velanto::connectivity::test
