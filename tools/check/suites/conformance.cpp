// The conformance files, one check a file: plays each line from create to destroy.
#include <string>

#include "tools/check/chain.hpp"
#include "tools/check/conformance/player.hpp"
#include "tools/check/suites/suites.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr char ALARMS_FILE[] = "alarms";
constexpr char BATCHES_FILE[] = "batches";
constexpr char CONFIGURATION_FILE[] = "configuration";
constexpr char EVENTS_FILE[] = "events";
constexpr char FIELDS_FILE[] = "fields";
constexpr char KEYS_FILE[] = "keys";
constexpr char MANAGED_OBJECTS_FILE[] = "managed_objects";
constexpr char MEASUREMENTS_FILE[] = "measurements";
constexpr char NUMERICS_FILE[] = "numerics";
constexpr char OPERATIONS_FILE[] = "operations";
constexpr char PATHS_FILE[] = "paths";
constexpr char TIMESTAMPS_FILE[] = "timestamps";
constexpr char TRACE_FILE[] = "trace";
constexpr char TRANSPORT_FILE[] = "transport";
constexpr char VALUES_FILE[] = "values";

template <const char* NAME>
void playAll(Trial& trial) {
  const PluginLibrary library = load(trial);
  for (const line_t& line : readLines(NAME)) play(trial, library, line, Demand::REQUIRED);
}

constexpr check_t CONFORMANCE_CHECKS[] = {
    {"conformance.alarms", "alarms become their events, faulty ones are reported and dropped",
     playAll<ALARMS_FILE>},
    {"conformance.batches", "kept messages keep their order, dropped ones are reported in theirs",
     playAll<BATCHES_FILE>},
    {"conformance.configuration", "settings are used or refused as docs/operating.md says",
     playAll<CONFIGURATION_FILE>},
    {"conformance.events",
     "notifications of events become host events, faulty ones are reported and dropped",
     playAll<EVENTS_FILE>},
    {"conformance.fields", "fields that no conversion knows are carried over, under any name",
     playAll<FIELDS_FILE>},
    {"conformance.keys",
     "keys of every kind are carried over, and owned string keys alone are looked up",
     playAll<KEYS_FILE>},
    {"conformance.managed-objects",
     "managed objects become their events, faulty ones are reported and dropped",
     playAll<MANAGED_OBJECTS_FILE>},
    {"conformance.measurements",
     "measurements become their events, faulty ones are reported and dropped",
     playAll<MEASUREMENTS_FILE>},
    {"conformance.numerics",
     "a series value or position component may be a string that begins with a number",
     playAll<NUMERICS_FILE>},
    {"conformance.operations",
     "operations become their events, faulty ones are reported and dropped",
     playAll<OPERATIONS_FILE>},
    {"conformance.paths", "the path decides whether a message is converted, passed or reported",
     playAll<PATHS_FILE>},
    {"conformance.timestamps", "times are read as docs/fields.md says, the oddities included",
     playAll<TIMESTAMPS_FILE>},
    {"conformance.trace", "at level 6 each notification is shown before it is touched, in one line",
     playAll<TRACE_FILE>},
    {"conformance.transport", "towards the transport every message passes, byte for byte",
     playAll<TRANSPORT_FILE>},
    {"conformance.values",
     "values of every kind are carried over unchanged, null strings and tables included",
     playAll<VALUES_FILE>},
};

} // namespace

suite_t conformanceChecks() { return CONFORMANCE_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
