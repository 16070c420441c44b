#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "bench/corpus.hpp"
#include "bench/plugin_contender.hpp"
#include "bench/suites/suites.hpp"

namespace com::velanto::connectivity::bench {

namespace {

constexpr const char* CONVERTED = "converted";

// Discards standard error while it lives. Each field of the wrong kind writes a line there, and the
// time of a terminal does not belong to the measurement.
class SilentStderr {
 public:
  SilentStderr() : before_(dup(STDERR_FILENO)) {
    std::fflush(stderr);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
  }
  SilentStderr(const SilentStderr&) = delete;
  SilentStderr& operator=(const SilentStderr&) = delete;
  ~SilentStderr() {
    dup2(before_, STDERR_FILENO);
    close(before_);
  }

 private:
  int before_;
};

group_t measure(const options_t& options, const char* name, lines_t dropped,
                const lines_t& converted) {
  const SilentStderr silent;
  Heat heat(options, name, std::move(dropped));
  heat.withPlugin().withOther(
      CONVERTED,
      std::make_shared<PluginContender>(options.plugin, converted, LARGE_BATCH, tables_t::GROWN));
  return heat.withPeers().run(options.rounds);
}

} // namespace

suite_t measureDropped(const options_t& options) {
  suite_t suite{"dropped", "ns per message", {}};
  for (const kind_t kind : ALL_KINDS) {
    suite.groups.push_back(measure(options, nameOf(kind), droppedNotifications(kind, LARGE_BATCH),
                                   notifications(kind, LARGE_BATCH)));
  }
  suite.groups.push_back(measure(options, "wrong type", wronglyTypedNotifications(LARGE_BATCH),
                                 mixedNotifications(LARGE_BATCH)));
  return suite;
}

} // namespace com::velanto::connectivity::bench
