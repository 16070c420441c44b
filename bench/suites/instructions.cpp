#include <valgrind/callgrind.h>

#include "bench/corpus.hpp"
#include "bench/floor/floor_contender.hpp"
#include "bench/plugin_contender.hpp"
#include "bench/runner.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

namespace {

// Collecting is off from the start (--collect-atstart=no), so a dump holds the run alone.
void dumpRun(const std::string& corpus, const std::string& name, Contender& contender) {
  const order_t order = ownOrder(contender.size());
  contender.fill(order); // once before: symbols are bound and buffers have their sizes
  contender.run();
  contender.fill(order);
  settleHeap();
  CALLGRIND_TOGGLE_COLLECT;
  contender.run();
  settleHeap();
  CALLGRIND_TOGGLE_COLLECT;
  const std::string label = corpus + ';' + name + ';' + std::to_string(contender.size());
  CALLGRIND_DUMP_STATS_AT(label.c_str());
}

void dumpAll(const options_t& options, const std::string& corpus, const lines_t& lines) {
  const auto plugin = [&](const std::string& name, const std::string& library) {
    PluginContender contender(library, lines, LARGE_BATCH, tables_t::GROWN);
    dumpRun(corpus, name, contender);
  };
  const auto floor = [&](const std::string& name, floor::variant_t variant) {
    floor::FloorContender contender(lines, LARGE_BATCH, variant, tables_t::GROWN);
    dumpRun(corpus, name, contender);
  };
  plugin("plug-in", options.plugin);
  if (options.against) plugin(options.against_name, *options.against);
  floor("floor", floor::variant_t::PLAIN);
  floor("floor-reuse", floor::variant_t::REUSE);
  floor("floor-sized", floor::variant_t::SIZED);
}

} // namespace

bool countInstructions(const options_t& options) {
  if (RUNNING_ON_VALGRIND == 0) return false;
  dumpAll(options, "mix", mixedNotifications(LARGE_BATCH));
  for (const kind_t kind : ALL_KINDS) {
    dumpAll(options, nameOf(kind), notifications(kind, LARGE_BATCH));
  }
  return true;
}

} // namespace com::velanto::connectivity::bench
