// The conformance files, one check a file: plays each line from create to destroy.
#include <functional>
#include <string_view>

#include "tools/check/check_fixture.hpp"
#include "tools/check/conformance/player.hpp"
#include "tools/check/suites/suites.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

std::function<void(Trial&)> playing(const char* file) {
  return [file](Trial& trial) {
    const PluginLibrary library = load(trial);
    for (const line_t& line : readLines(file)) play(trial, library, line, Demand::REQUIRED);
  };
}

void advisedResults(Trial& trial) {
  const PluginLibrary library = load(trial);
  std::string_view file;
  for (const embedded_t& embedded : embeddedLines()) {
    if (embedded.file == file) continue;
    file = embedded.file;
    for (const line_t& line : readLines(file)) {
      if (readCase(line.json).advised) play(trial, library, line, Demand::ADVISED);
    }
  }
}

const check_t CONFORMANCE_CHECKS[] = {
    {"conformance.alarms", "alarms become their events, faulty ones are reported and dropped",
     "Events and the log", playing("alarms"), Use::LOAD_CODEC},
    {"conformance.batches", "kept messages keep their order, dropped ones are reported in theirs",
     "Batches", playing("batches"), Use::LOAD_CODEC},
    {"conformance.configuration", "settings are used or refused as docs/operating.md says",
     "Events and the log", playing("configuration"), Use::LOAD_CODEC},
    {"conformance.events",
     "notifications of events become host events, faulty ones are reported and dropped",
     "Events and the log", playing("events"), Use::LOAD_CODEC},
    {"conformance.fields", "fields that no conversion knows are carried over, under any name",
     "Events and the log", playing("fields"), Use::LOAD_CODEC},
    {"conformance.keys",
     "keys of every kind are carried over, and owned string keys alone are looked up",
     "Values and messages", playing("keys"), Use::LOAD_CODEC},
    {"conformance.managed-objects",
     "managed objects become their events, faulty ones are reported and dropped",
     "Events and the log", playing("managed_objects"), Use::LOAD_CODEC},
    {"conformance.measurements",
     "measurements become their events, faulty ones are reported and dropped", "Events and the log",
     playing("measurements"), Use::LOAD_CODEC},
    {"conformance.numerics",
     "a series value or position component may be a string that begins with a number",
     "Events and the log", playing("numerics"), Use::LOAD_CODEC},
    {"conformance.operations",
     "operations become their events, faulty ones are reported and dropped", "Events and the log",
     playing("operations"), Use::LOAD_CODEC},
    {"conformance.paths", "the path decides whether a message is converted, passed or reported",
     "Events and the log", playing("paths"), Use::LOAD_CODEC},
    {"conformance.timestamps", "times are read as docs/fields.md says, the oddities included",
     "Events and the log", playing("timestamps"), Use::LOAD_CODEC},
    {"conformance.trace", "at level 6 each notification is shown before it is touched, in one line",
     "Events and the log", playing("trace"), Use::LOAD_CODEC},
    {"conformance.transport", "towards the transport every message passes, byte for byte",
     "Batches", playing("transport"), Use::LOAD_CODEC},
    {"conformance.values",
     "values of every kind are carried over unchanged, null strings and tables included",
     "Events and the log", playing("values"), Use::LOAD_CODEC},
    {"conformance.advised", "results are this project's own where the interface leaves them open",
     ADVISED_ONLY, advisedResults, Use::LOAD_CODEC},
};

} // namespace

suite_t conformanceChecks() { return CONFORMANCE_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
