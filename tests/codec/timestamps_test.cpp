// Compares 200 000 nearly valid timestamps bit for bit with the second reader (time_reference.hpp).
// The lines of tools/check/conformance/ have single timestamps.
#include "codec/timestamps.hpp"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <random>
#include <string>

#include "tests/codec/time_reference.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

constexpr std::array SEEDS = {
    "2023-04-05T06:07:08Z",          "2023-04-05T06:07:08.123Z",  "1969-12-31T23:59:59.250+01:00",
    "2004-01-10T14:07:04.001-05:30", "0000-02-29T00:00:00+0530",  "9999-12-31T23:59:60.999-0000",
    "2023- 4- 5T 6: 7: 8 1:2",       "2023-04-05T06:07:08.5+1:0",
};
// The bytes that matter to the rules, and a few that do not.
constexpr std::string_view LETTERS = "0123456789000123 +-+-:.:.,TZztx\t\n\xc3\xa9/";

class Mutator {
 public:
  std::string next() {
    std::string text = SEEDS[below(SEEDS.size())];
    for (std::size_t changes = below(4); changes > 0; --changes) change(text);
    return text;
  }

 private:
  void change(std::string& text) {
    const std::size_t at = below(text.size() + 1);
    switch (below(6)) {
      case 0:
        text.insert(at, 1, letter());
        break;
      case 1:
        text.erase(at, 1);
        break;
      case 2:
        text.resize(at);
        break;
      default: // the most frequent change keeps lengths and positions
        if (at < text.size()) text[at] = letter();
    }
  }
  char letter() { return LETTERS[below(LETTERS.size())]; }
  // Not a distribution: its numbers differ between standard libraries.
  std::size_t below(std::size_t limit) { return random_() % limit; }

  std::mt19937_64 random_{20230405};
};

TEST(TryParseTimeMutations, EqualThePlainReading) {
  constexpr int TEXTS = 200'000;
  Mutator mutator;
  int accepted = 0;
  for (int i = 0; i < TEXTS; ++i) {
    const std::string text = mutator.next();
    const auto actual = tryParseTime(text.c_str());
    const auto expected = test::referenceTime(text.c_str());
    ASSERT_EQ(actual.has_value(), expected.has_value()) << text;
    ASSERT_EQ(test::bitsOf(actual), test::bitsOf(expected)) << text;
    if (actual) ++accepted;
  }
  // Both outcomes are frequent enough to be compared.
  EXPECT_GT(accepted, TEXTS / 5);
  EXPECT_LT(accepted, TEXTS - TEXTS / 5);
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
