#include <benchmark/benchmark.h>

#include <bit>
#include <cstdint>
#include <random>

#include "bench/suites/literal_time.hpp"
#include "bench/suites/suites.hpp"
#include "bench/suites/threads.hpp"
#include "codec/timestamps.hpp"

namespace com::velanto::connectivity::bench {

namespace {

// The codec's answer in the form of the other reader's.
std::optional<double> readByCodec(const char* text) noexcept {
  const auto seconds = plugins::pulsar::tryParseTime(text);
  if (!seconds) return std::nullopt;
  return *seconds;
}

template <std::optional<double> (*READ)(const char*) noexcept>
class Reader final : public Contender {
 public:
  explicit Reader(lines_t texts) : texts_(std::move(texts)) {}
  [[nodiscard]] std::size_t size() const noexcept override { return texts_.size(); }
  void fill(const order_t&) override {}
  void run() override {
    for (const std::string& text : texts_) benchmark::DoNotOptimize(READ(text.c_str()));
  }
  [[nodiscard]] lines_t outcome() override {
    lines_t results;
    for (const std::string& text : texts_) {
      const auto seconds = READ(text.c_str());
      results.push_back(text + " reads as " + (seconds ? bitsOf(*seconds) : "nothing"));
    }
    return results;
  }

 private:
  static std::string bitsOf(double value) {
    return std::to_string(std::bit_cast<std::uint64_t>(value));
  }
  lines_t texts_;
};

using CodecReader = Reader<readByCodec>;
using LiteralReader = Reader<readTimeLiterally>;

// The usual forms.
lines_t usualTexts() {
  return {"2023-04-05T06:07:08.123Z",      "2024-05-14T09:19:40.000+02:00",
          "2024-02-29T23:59:59.999Z",      "2024-12-31T00:00:00.045-05:30",
          "2024-05-14T06:14:40.250+02:00", "2024-05-14T07:12:03Z",
          "1999-12-31T23:59:59.500+00:00", "2038-01-19T03:14:08.001Z"};
}

// The usual ones with one character replaced, dropped or doubled: mostly wrong, and often in ways
// that the reader accepts.
lines_t oddTexts() {
  constexpr std::string_view CHARACTERS = "0123456789-+:.TZz xX\t";
  std::mt19937_64 engine(7);
  lines_t texts;
  for (std::size_t i = 0; i < 20'000; ++i) {
    for (std::string text : usualTexts()) {
      const std::size_t at = engine() % text.size();
      switch (engine() % 4) {
        case 0:
          text.erase(at, 1);
          break;
        case 1:
          text.insert(at, 1, text[at]);
          break;
        default:
          text[at] = CHARACTERS[engine() % CHARACTERS.size()];
      }
      texts.push_back(std::move(text));
    }
  }
  return texts;
}

} // namespace

suite_t measureTimestamps(const options_t& options) {
  suite_t suite{"timestamps", "ns per timestamp and thread", {}};
  for (const lines_t& texts : {usualTexts(), oddTexts()}) {
    LiteralReader literal(texts);
    CodecReader codec(texts);
    requireSame("timestamps", literal, "the codec's reader", codec, sameness_t::SLOTS);
  }
  if (options.only_check) return suite;
  lines_t texts;
  for (std::size_t i = 0; i < 500; ++i) {
    for (std::string& text : usualTexts()) texts.push_back(std::move(text));
  }
  std::vector<lane_t> lanes;
  addThreadLanes(lanes, "codec", [&] { return std::make_unique<CodecReader>(texts); });
  addThreadLanes(lanes, "C library", [&] { return std::make_unique<LiteralReader>(texts); });
  suite.groups.push_back({"usual texts", race(lanes, options.rounds)});
  return suite;
}

} // namespace com::velanto::connectivity::bench
