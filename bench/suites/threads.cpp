#include "bench/suites/threads.hpp"

#include "bench/corpus.hpp"
#include "bench/floor/floor_contender.hpp"
#include "bench/plugin_contender.hpp"
#include "bench/suites/parallel_contenders.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

void addThreadLanes(std::vector<lane_t>& lanes, const std::string& name,
                    const make_contender_t& make) {
  for (const std::size_t threads : {1u, 2u}) {
    std::vector<std::unique_ptr<Contender>> members;
    for (std::size_t i = 0; i < threads; ++i) members.push_back(make());
    const auto messages = static_cast<double>(members.front()->size());
    const auto contenders = std::make_shared<ParallelContenders>(std::move(members));
    lanes.push_back({name + (threads == 1 ? ", 1 thread" : ", 2 threads"),
                     [contenders, messages](std::size_t round) {
                       return contenders->sample(round) / messages;
                     }});
  }
}

suite_t measureThreads(const options_t& options) {
  suite_t suite{"threads", "ns per message and thread", {}};
  if (options.only_check) return suite; // the other suites have compared these
  const lines_t lines = mixedNotifications(2 * LARGE_BATCH);
  std::vector<lane_t> lanes;
  addThreadLanes(lanes, "plug-in", [&] {
    return std::make_unique<PluginContender>(options.plugin, lines, LARGE_BATCH, tables_t::GROWN);
  });
  addThreadLanes(lanes, "floor", [&] {
    return std::make_unique<floor::FloorContender>(lines, LARGE_BATCH, floor::variant_t::PLAIN,
                                                   tables_t::GROWN);
  });
  suite.groups.push_back({"mix", race(lanes, options.rounds)});
  return suite;
}

} // namespace com::velanto::connectivity::bench
