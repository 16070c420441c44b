// Every documented fault of a notification, with the whole line that reports it.
#include <cstring>
#include <string>
#include <vector>

#include "tools/check/chain.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// One entry of a good notification, removed or replaced, and what is logged for it.
struct fault_t {
  const char* key;
  const char* json; // null: the entry is removed; of "source", see below
  const char* text;
};

struct kind_t {
  const char* path;
  const char* good; // a payload that converts; its id is "4711"
  std::vector<fault_t> faults;
};

#define MISSING(key) "Required key '" key "' missing from message payload"
#define NO_TEXT(key) "Value for key '" key "' is not a string."
#define WRONG_KIND(key, wanted, came)                                        \
  "Problem with key '" key "': Incorrect type in get (you asked for " wanted \
  " but it's actually " came ")"
#define EMPTY_VALUE(key) "Problem with key '" key "': Get from empty"
#define BAD_TIME(time) "Error parsing timestamp '" time "' in key 'time'"

constexpr const char* NO_SOURCE_ID = "Required key 'id' missing from source";

// Sends each fault and expects its line; the id is named unless the fault is the id's.
void expectFaults(Trial& trial, const kind_t& kind) {
  Chain chain(trial);
  trial.equal("the good notification: events", 1,
              chain.send(notification(kind.path, std::string_view(kind.good))).size());
  for (const fault_t& fault : kind.faults) {
    data_t payload = value(kind.good);
    auto& fields = payload.get<map_t>();
    fields.erase(fields.find(data_t(fault.key)));
    if (fault.json != nullptr) set(payload, fault.key, value(fault.json));
    const std::string where =
        std::string(fault.key) + " = " + (fault.json == nullptr ? "missing" : fault.json);
    trial.equal(where + ", events", 0,
                chain.send(notification(kind.path, std::move(payload))).size());
    const bool id_at_fault = std::strcmp(fault.key, "id") == 0;
    chain.expectLog(
        where, {dropped((id_at_fault ? ": " : " ('id' = '4711'): ") + std::string(fault.text))});
  }
}

void eventFaults(Trial& trial) {
  expectFaults(
      trial, {EVENT_PATH,
              R"({"id": "4711", "source": {"id": "7"}, "text": "t", "time": "2023-04-05T06:07:08Z",
           "type": "T"})",
              {{"source", nullptr, MISSING("source")},
               {"id", nullptr, MISSING("id")},
               {"source", R"("7")", WRONG_KIND("source", "map", "string")},
               {"source", "null", EMPTY_VALUE("source")},
               {"source", R"({"name": "x"})", NO_SOURCE_ID},
               {"source", R"({"id": 7})", NO_TEXT("source")},
               {"text", nullptr, MISSING("text")},
               {"text", "7", NO_TEXT("text")},
               {"time", nullptr, MISSING("time")},
               {"time", "7", WRONG_KIND("time", "string", "integer")},
               {"time", "null", EMPTY_VALUE("time")},
               {"time", R"("yesterday")", BAD_TIME("yesterday")},
               {"time", R"("2023-04-05T06:07:08")", BAD_TIME("2023-04-05T06:07:08")},
               {"time", R"("%s%n")", BAD_TIME("%s%n")},
               {"type", nullptr, MISSING("type")},
               {"type", "[]", NO_TEXT("type")},
               {"id", "7", NO_TEXT("id")},
               {"id", "null", NO_TEXT("id")}}});
}

void alarmFaults(Trial& trial) {
  expectFaults(trial, {"t/s/alarms/1",
                       R"({"id": "4711", "source": {"id": "7"}, "count": 1, "severity": "MAJOR",
           "status": "ACTIVE", "text": "t", "time": "2023-04-05T06:07:08Z", "type": "T"})",
                       {{"source", nullptr, MISSING("source")},
                        {"id", nullptr, MISSING("id")},
                        {"count", nullptr, MISSING("count")},
                        {"count", "1.0", WRONG_KIND("count", "integer", "double")},
                        {"severity", nullptr, MISSING("severity")},
                        {"severity", "7", WRONG_KIND("severity", "string", "integer")},
                        {"severity", R"("critical")", "Unrecognized alarm severity: critical"},
                        {"severity", R"("MAJORS")", "Unrecognized alarm severity: MAJORS"},
                        {"severity", R"("")", "Unrecognized alarm severity: "},
                        {"source", R"("7")", WRONG_KIND("source", "map", "string")},
                        {"source", "{}", NO_SOURCE_ID},
                        {"source", R"({"id": 7})", NO_TEXT("id")},
                        {"status", nullptr, MISSING("status")},
                        {"status", "true", WRONG_KIND("status", "string", "boolean")},
                        {"status", R"("OPEN")", "Unrecognized alarm status: OPEN"},
                        {"status", R"("Active")", "Unrecognized alarm status: Active"},
                        {"text", nullptr, MISSING("text")},
                        {"text", "{}", NO_TEXT("text")},
                        {"time", nullptr, MISSING("time")},
                        {"time", R"("14.05.2024 11:00")", BAD_TIME("14.05.2024 11:00")},
                        {"type", nullptr, MISSING("type")},
                        {"type", "1.5", NO_TEXT("type")},
                        {"id", "7", NO_TEXT("id")}}});
}

void measurementFaults(Trial& trial) {
  expectFaults(trial, {MEASUREMENT_PATH,
                       R"({"id": "4711", "source": {"id": "7"}, "time": "2023-04-05T06:07:08Z",
                    "type": "T", "f": {"s": {"value": 1}}})",
                       {{"source", nullptr, MISSING("source")},
                        {"id", nullptr, MISSING("id")},
                        {"source", "[]", WRONG_KIND("source", "map", "list")},
                        {"source", "{}", NO_SOURCE_ID},
                        {"source", R"({"id": null})", NO_TEXT("source")},
                        {"time", nullptr, MISSING("time")},
                        {"time", R"("now")", BAD_TIME("now")},
                        {"type", nullptr, MISSING("type")},
                        {"type", "true", NO_TEXT("type")},
                        {"id", "1.5", NO_TEXT("id")}}});
}

void managedObjectFaults(Trial& trial) {
  expectFaults(trial, {"t/s/managedobjects/1",
                       R"({"id": "4711", "name": "n", "type": "T"})",
                       {{"id", nullptr, MISSING("id")},
                        {"name", nullptr, MISSING("name")},
                        {"name", "7", NO_TEXT("source")},
                        {"type", "7", NO_TEXT("type")},
                        {"type", "null", NO_TEXT("type")},
                        {"id", "7", NO_TEXT("id")}}});
}

void operationFaults(Trial& trial) {
  expectFaults(trial,
               {"t/s/operations/1",
                R"({"id": "4711", "deviceId": "9", "source": {"id": "9"}, "status": "PENDING"})",
                {{"source", nullptr, MISSING("source")},
                 {"deviceId", nullptr, MISSING("deviceId")},
                 {"deviceId", "7", NO_TEXT("id")},
                 {"source", "true", WRONG_KIND("source", "map", "boolean")},
                 {"source", "{}", NO_SOURCE_ID},
                 {"source", R"({"id": 7})", NO_TEXT("source")},
                 {"status", nullptr, MISSING("status")},
                 {"status", "7", WRONG_KIND("status", "string", "integer")},
                 {"status", R"("pending")", "Unrecognized operation status: pending"},
                 {"status", R"("SUCCESS")", "Unrecognized operation status: SUCCESS"},
                 {"status", R"("DONE")", "Unrecognized operation status: DONE"}}});
}

#undef MISSING
#undef NO_TEXT
#undef WRONG_KIND
#undef EMPTY_VALUE
#undef BAD_TIME

void expectLine(Chain& chain, const char* where, Message&& message, const std::string& rest) {
  chain.trial.equal(std::string(where) + ", events", 0, chain.send(std::move(message)).size());
  chain.expectLog(where, {dropped(rest)});
}

void theRoad(Trial& trial) {
  Chain chain(trial);
  Message number = plainEvent("1");
  number.getMetadataMap()[data_t("pulsarPath")] = value("7");
  expectLine(chain, "a path that is a number", std::move(number),
             " ('id' = '1'): Incorrect type in get (you asked for string but it's actually "
             "integer)");
  Message nothing = plainEvent("1");
  nothing.getMetadataMap()[data_t("pulsarPath")] = data_t();
  expectLine(chain, "a path without a value", std::move(nothing), " ('id' = '1'): Get from empty");
  expectLine(chain, "a payload that is a text",
             notification(EVENT_PATH, std::string_view(R"("text")")),
             ": Incorrect type in get (you asked for map but it's actually string)");
  expectLine(chain, "a payload that is a list", notification(EVENT_PATH, std::string_view("[]")),
             ": Incorrect type in get (you asked for map but it's actually list)");
}

// The first fault in the order of a conversion's steps is the one that is told.
void firstFault(Trial& trial) {
  Chain chain(trial);
  const char* const no_source = ": Required key 'source' missing from message payload";
  for (const char* const path :
       {EVENT_PATH, MEASUREMENT_PATH, "t/s/alarms/1", "t/s/operations/1"}) {
    expectLine(chain, path, notification(path, std::string_view("{}")), no_source);
  }
  expectLine(chain, "managed object", notification("t/s/managedobjects/1", std::string_view("{}")),
             ": Required key 'id' missing from message payload");
  expectLine(chain, "source before text",
             notification(EVENT_PATH, std::string_view(R"({"id": "1", "source": {}})")),
             " ('id' = '1'): Required key 'id' missing from source");
  expectLine(chain, "severity before source",
             notification("t/s/alarms/1", std::string_view(R"({"id": "1", "source": 7, "count": 1,
                                               "severity": "x"})")),
             " ('id' = '1'): Unrecognized alarm severity: x");
}

void noFormats(Trial& trial) {
  Chain chain(trial);
  expectLine(chain, "percent signs",
             notification("%s/%n/%s%n%d/1", std::string_view(R"({"id": "%s%n%1000000d"})")),
             " ('id' = '%s%n%1000000d'): Unrecognised Pulsar message type: '%s%n%d'");
}

constexpr check_t ERRORS_CHECKS[] = {
    {"errors.road", "paths and payloads of a wrong kind are reported with the documented lines",
     theRoad},
    {"errors.events", "each fault of an event is reported with its documented line", eventFaults},
    {"errors.alarms", "each fault of an alarm is reported with its documented line", alarmFaults},
    {"errors.measurements", "each fault of a measurement is reported with its documented line",
     measurementFaults},
    {"errors.managed-objects",
     "each fault of a managed object is reported with its documented line", managedObjectFaults},
    {"errors.operations", "each fault of an operation is reported with its documented line",
     operationFaults},
    {"errors.first-fault", "of several faults the first in the order of steps is reported",
     firstFault},
    {"errors.no-formats", "texts of messages are never taken for formats", noFormats},
};

} // namespace

suite_t errorsChecks() { return ERRORS_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
