#include "bench/corpus.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

suite_t measureKinds(const options_t& options, std::size_t batch) {
  suite_t suite{"kinds, batches of " + std::to_string(batch), "ns per message", {}};
  const auto add = [&](const char* name, lines_t lines) {
    Heat heat(options, name, std::move(lines));
    heat.inBatchesOf(batch).withPlugin().withFloors().withPeers();
    suite.groups.push_back(heat.run(options.rounds));
  };
  add("mix", mixedNotifications(LARGE_BATCH));
  for (const kind_t kind : ALL_KINDS) add(nameOf(kind), notifications(kind, LARGE_BATCH));
  add("passing", passingMessages(LARGE_BATCH));
  return suite;
}

suite_t measureCapacities(const options_t& options) {
  suite_t suite{"capacities", "ns per message", {}};
  const auto add = [&](const char* name, lines_t lines) {
    Heat heat(options, name, std::move(lines), tables_t::OTHERS);
    suite.groups.push_back(heat.withPlugin().withFloors().run(options.rounds));
  };
  add("mix", mixedNotifications(LARGE_BATCH));
  for (const kind_t kind : ALL_KINDS) add(nameOf(kind), notifications(kind, LARGE_BATCH));
  return suite;
}

} // namespace com::velanto::connectivity::bench
