#include <algorithm>

#include "bench/corpus.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

suite_t measureScaling(const options_t& options) {
  constexpr std::size_t FIELDS_PER_RUN = 20'000; // enough for the clock, if messages are small
  suite_t suite{"scaling", "ns per field", {}};
  const auto add = [&](const std::string& name, const lines_t& message, std::size_t fields) {
    lines_t lines;
    const std::size_t copies = std::clamp<std::size_t>(FIELDS_PER_RUN / fields, 1, LARGE_BATCH);
    for (std::size_t i = 0; i < copies; ++i) lines.push_back(message.front());
    Heat heat(options, name, std::move(lines));
    heat.withPlugin().withFloor("floor", floor::variant_t::plain);
    const std::size_t rounds = std::max<std::size_t>(options.rounds / 3, 1);
    suite.groups.push_back(heat.run(rounds, static_cast<double>(fields)));
  };
  for (const std::size_t count : {10u, 100u, 1'000u, 10'000u, 100'000u}) {
    add(std::to_string(count) + " fields", eventWithFields(count), count);
  }
  for (const std::size_t count : {10u, 100u, 1'000u, 10'000u, 100'000u}) {
    add(std::to_string(count) + " series", measurementWithSeries(count), count);
  }
  return suite;
}

} // namespace com::velanto::connectivity::bench
