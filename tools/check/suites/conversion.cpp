// The five kinds of notifications and their events, field by field.
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

void expectExamples(Trial& trial, const char* kind) {
  Chain chain(trial);
  int rows = 0;
  for (const example_t& example : workedExamples()) {
    if (std::strcmp(example.kind, kind) != 0) continue;
    ++rows;
    const std::vector<Message> events = chain.send(notificationOf(example));
    if (!trial.equal(std::string(example.shows) + ": events", 1, events.size())) continue;
    same(trial, std::string(example.shows) + ": payload", eventOf(example), events[0].getPayload());
    same(trial, std::string(example.shows) + ": metadata", metadataOf(example).get<map_t>(),
         events[0].getMetadataMap());
  }
  chain.expectLog("examples that convert", {});
  trial.holds(rows > 0, kind, "examples", "none");
}

void alarms(Trial& trial) { expectExamples(trial, "Alarm"); }
void events(Trial& trial) { expectExamples(trial, "Event"); }
void measurements(Trial& trial) { expectExamples(trial, "Measurement"); }
void managedObjects(Trial& trial) { expectExamples(trial, "ManagedObject"); }
void operations(Trial& trial) { expectExamples(trial, "Operation"); }

struct time_row_t {
  const char* time;
  double seconds; // 0: not readable
};

constexpr time_row_t TIMES[] = {
    {"1970-01-01T00:00:05Z", 5.0},
    {"2023-04-05T06:07:08Z", 1680674828.0},
    {"2023-04-05T06:07:08.123Z", 1680674828.123},
    {"2023-04-05T06:07:08+01:00", 1680671228.0},
    {"2023-04-05T06:07:08-0530", 1680694628.0},
    {"2023-04-05T06:07:08z, roughly", 1680674828.0},
    {"2024-05-14T06:31:05.700+02:00", 1715661065.7},
    {"2023-04-05T06:07:08", 0},
    {"2023-04-05T06:07:08+01", 0},
    {"2023-04-05t06:07:08Z", 0},
    {"2023-04-05 06:07:08Z", 0},
    {"2023-04-05", 0},
    {"", 0},
    {"2023-04-05T06:07:08.5Z", 0},
    {"2023-04-05T06:07:08.5+01:00", 1680671227.015},
    {"2023-04-05T06:07:08.123456Z", 0},
    {"2023-04-05T06:07:08.123456+01:00", 1679033228.123},
    {"2023-04-05T06:07:08 +05:30", 1680656648.0},
    {"2023-02-31T00:00:00Z", 1677801600.0},
};

// As an optional time: unreadable ones stay what they are.
void times(Trial& trial) {
  Chain chain(trial);
  for (const time_row_t& row : TIMES) {
    Message message = plainEvent("1");
    set(message.getPayload(), "creationTime", data_t(row.time));
    const std::vector<Message> converted = chain.send(std::move(message));
    if (!trial.equal(std::string(row.time) + ": events", 1, converted.size())) continue;
    const data_t* const came = find(converted[0].getPayload(), "creationTime");
    const data_t expected = row.seconds == 0 ? data_t(row.time) : data_t(row.seconds);
    trial.holds(came != nullptr, row.time, "a creationTime", "none");
    if (came != nullptr) same(trial, row.time, expected, *came);
  }
}

struct path_row_t {
  const char* path;
  const char* kind; // null: unknown
  const char* segment;
};

constexpr path_row_t PATH_ROWS[] = {
    {"t/s/events/1", "Event", ""},
    {"t/s/events", "Event", ""},
    {"//events/1", "Event", ""},
    {"t/s/eventsfoo", "Event", ""},
    {"t/s/events/a/b/c", "Event", ""},
    {"t/s/measurementsX/1", "Measurement", ""},
    {"t/s/inventory/7", nullptr, "inventory"},
    {"t/s/Events/1", nullptr, "Events"},
    {"t/s/event/1", nullptr, "event"},
    {"t/s//events", nullptr, ""},
    {"events", nullptr, ""},
    {"s/events", nullptr, ""},
    {"", nullptr, ""},
    {"t/s/%s%n/1", nullptr, "%s%n"},
};

void paths(Trial& trial) {
  Chain chain(trial);
  for (const path_row_t& row : PATH_ROWS) {
    const std::vector<Message> converted = chain.send(plainEvent("1", row.path));
    const std::string where = std::string("path '") + row.path + "'";
    if (!trial.equal(where + ", events", row.kind == nullptr ? 0 : 1, converted.size())) continue;
    if (row.kind == nullptr) {
      chain.expectLog(where, {dropped(" ('id' = '1'): Unrecognised Pulsar message type: '" +
                                      std::string(row.segment) + "'")});
    } else {
      trial.equal(where + ", vlt.type", std::string("com.tivra.ostrovia.") + row.kind,
                  textAt(converted[0].getMetadataMap(), "vlt.type"));
      chain.expectLog(where, {});
    }
  }
}

// Every kind of value that a notification can hold, those that JSON cannot say among them.
void everyKindOfValue(Trial& trial) {
  Chain chain(trial);
  const auto fill = [](data_t& payload) {
    set(payload, "empty", data_t());
    set(payload, "boolean", value("true"));
    set(payload, "double", value("-0.0"));
    set(payload, "integer", value("-9223372036854775808"));
    set(payload, "decimal", decimal(77));
    set(payload, "list", value(R"([1, [2, {"a": null}]])"));
    set(payload, "map", value(R"({"a": {"b": [true]}})"));
    set(payload, "buffer", buffer("bytes"));
    set(payload, "custom", custom(78));
    set(payload, "borrowed", borrowed("lent"));
    set(payload, "unknown", bare(11));
  };
  Message message = plainEvent("1");
  fill(message.getPayload());
  data_t expected = plainEventPayload("1");
  fill(expected);
  set(expected, "tenantId", data_t("t1"));
  const std::vector<Message> converted = chain.send(std::move(message));
  if (!trial.equal("events", 1, converted.size())) return;
  same(trial, "payload", expected, converted[0].getPayload());
}

void manyFields(Trial& trial) {
  Chain chain(trial);
  Message message = plainEvent("1");
  data_t expected = plainEventPayload("1");
  set(expected, "tenantId", data_t("t1"));
  for (int i = 0; i < 1000; ++i) {
    const std::string key = "field" + std::to_string(i);
    set(message.getPayload(), key.c_str(), value(std::to_string(i)));
    set(expected, key.c_str(), value(std::to_string(i)));
  }
  const std::vector<Message> converted = chain.send(std::move(message));
  if (!trial.equal("events", 1, converted.size())) return;
  same(trial, "payload", expected, converted[0].getPayload());
}

// A message nests as deep as its sender likes; the stack must not feel it.
void deepNesting(Trial& trial) {
  constexpr int DEPTH = 200'000;
  Chain chain(trial, R"({"tenantId": "t1"})", 6);
  data_t deep = value("[]");
  for (int i = 0; i < DEPTH; ++i) {
    data_t around = value("{}");
    set(around, "d", std::move(deep));
    deep = std::move(around);
  }
  Message message = plainEvent("1");
  set(message.getPayload(), "deep", std::move(deep));
  std::vector<Message> batch;
  batch.push_back(std::move(message));
  batch.push_back(plainEvent("2", UNKNOWN_PATH));
  trial.equal("events", 1, chain.send(std::move(batch)).size());
}

constexpr check_t CONVERSION_CHECKS[] = {
    {"conversion.alarms", "worked examples of alarms become the documented events", alarms},
    {"conversion.events", "worked examples of events become the documented events", events},
    {"conversion.measurements", "worked examples of measurements become the documented events",
     measurements},
    {"conversion.managed-objects",
     "worked examples of managed objects become the documented events", managedObjects},
    {"conversion.operations", "worked examples of operations become the documented events",
     operations},
    {"conversion.times", "times are read as documented, the oddities included", times},
    {"conversion.paths", "the segment behind the second slash decides, by its beginning", paths},
    {"conversion.every-kind-of-value", "values of every kind are carried over unchanged",
     everyKindOfValue},
    {"conversion.many-fields", "a thousand fields are carried over and found again", manyFields},
    {"conversion.deep-nesting", "a payload of 200000 levels spares the stack", deepNesting},
};

} // namespace

suite_t conversionChecks() { return CONVERSION_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
