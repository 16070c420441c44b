#include <algorithm>

#include "bench/corpus.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

namespace {

// Messages of one shape, over their size.
struct shape_t {
  const char* part; // the unit that repeats
  lines_t (*make)(std::size_t count);
};

constexpr shape_t SHAPES[] = {{"fields", eventWithFields},
                              {"series", measurementWithSeries},
                              {"position components", managedObjectWithPosition}};

group_t measure(const options_t& options, const shape_t& shape, std::size_t count,
                tables_t tables) {
  constexpr std::size_t PARTS_PER_RUN = 20'000; // enough for the clock, if messages are small
  const lines_t message = shape.make(count);
  lines_t lines;
  const std::size_t copies = std::clamp<std::size_t>(PARTS_PER_RUN / count, 1, LARGE_BATCH);
  for (std::size_t i = 0; i < copies; ++i) lines.push_back(message.front());
  std::string name = std::to_string(count) + ' ' + shape.part;
  if (tables == tables_t::WORST) name += ", worst tables";
  Heat heat(options, std::move(name), std::move(lines), tables);
  heat.withPlugin().withFloor("floor", floor::variant_t::PLAIN);
  const std::size_t rounds = options.rounds / (tables == tables_t::WORST ? 15 : 3);
  return heat.run(std::max<std::size_t>(rounds, 1), static_cast<double>(count));
}

} // namespace

suite_t measureScaling(const options_t& options) {
  suite_t suite{"scaling", "ns per part", {}};
  for (const shape_t& shape : SHAPES) {
    for (const std::size_t count : {10u, 100u, 1'000u, 10'000u, 100'000u}) {
      suite.groups.push_back(measure(options, shape, count, tables_t::GROWN));
    }
    for (const std::size_t count : {1'000u, 10'000u, 100'000u}) {
      suite.groups.push_back(measure(options, shape, count, tables_t::WORST));
    }
  }
  return suite;
}

} // namespace com::velanto::connectivity::bench
