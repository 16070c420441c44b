// One worked notification of each kind and the event it becomes, whole.
#ifndef VLT_TESTS_CODEC_EXAMPLES_HPP
#define VLT_TESTS_CODEC_EXAMPLES_HPP

#include "codec/conversions/alarm.hpp"
#include "codec/conversions/event.hpp"
#include "codec/conversions/managed_object.hpp"
#include "codec/conversions/measurement.hpp"
#include "codec/conversions/operation.hpp"
#include "tests/codec/notifications.hpp"

namespace com::velanto::connectivity::test {

inline constexpr const char* EXAMPLE_TIME = "2023-04-05T06:07:08.000Z";
inline constexpr double EXAMPLE_SECONDS = 1680674828.0;

inline map_t source_example() { return map_of("id", text("7"), "name", text("dev")); }

inline map_t event_example() {
  return map_of("id", text("1"), "source", source_example(), "text", text("t"), "time",
                text(EXAMPLE_TIME), "type", text("o6a_Test"), "o6a_Extra", whole(5));
}
inline map_t event_fields() {
  return map_of("id", text("1"), "source", text("7"), "text", text("t"), "firstOccurrenceTime",
                real(EXAMPLE_SECONDS), "type", text("o6a_Test"), "o6a_Extra", whole(5),
                "measurements", map_of());
}

inline map_t operation_example() {
  return map_of("id", text("11"), "deviceId", text("7"), "source", source_example(), "status",
                text("PENDING"), "creationTime", text(EXAMPLE_TIME), "o6a_Restart", map_of());
}
inline map_t operation_fields() {
  return map_of("id", text("11"), "source", text("7"), "status", text("PENDING"), "creationTime",
                real(EXAMPLE_SECONDS), "o6a_Restart", map_of(), "measurements", map_of());
}

inline map_t alarm_example() {
  return map_of("id", text("1"), "source", source_example(), "count", whole(3), "severity",
                text("MINOR"), "status", text("CLEARED"), "text", text("hot"), "time",
                text(EXAMPLE_TIME), "type", text("o6a_Hot"), "creationTime",
                text("2023-04-05T06:07:08+01:00"), "firstOccurrenceTime",
                text("2023-04-05T06:07:08-0530"), "lastUpdated", text("2023-04-05T06:07:08Z"),
                "o6a_Custom", map_of("deep", list_of(whole(1), text("a"))));
}
inline map_t alarm_fields() {
  return map_of("id", text("1"), "source", text("7"), "count", whole(3), "severity", text("MINOR"),
                "status", text("CLEARED"), "text", text("hot"), "time", real(EXAMPLE_SECONDS),
                "type", text("o6a_Hot"), "creationTime", real(1680671228.0), "firstOccurrenceTime",
                real(1680694628.0), "lastUpdated", real(EXAMPLE_SECONDS), "o6a_Custom",
                map_of("deep", list_of(whole(1), text("a"))), "measurements", map_of());
}

inline map_t measurement_example() {
  return map_of("id", text("1"), "source", source_example(), "time", text(EXAMPLE_TIME), "type",
                text("o6a_Env"), "creationTime", text(EXAMPLE_TIME), "lastUpdated",
                text("2023-04-05T06:07:09.000Z"), "firstOccurrenceTime", text(EXAMPLE_TIME),
                "o6a_Temperature", map_of("T", map_of("value", real(21.5), "units", text("C"))),
                "o6a_Note", text("n"));
}
inline map_t measurement_fields() {
  return map_of("id", text("1"), "source", text("7"), "time", real(EXAMPLE_SECONDS), "type",
                text("o6a_Env"), "creationTime", real(EXAMPLE_SECONDS), "lastUpdated",
                real(EXAMPLE_SECONDS + 1), "firstOccurrenceTime", text(EXAMPLE_TIME), "o6a_Note",
                text("n"), "measurements",
                map_of("T", map_of("value", real(21.5), "units", text("C"), "params", map_of())));
}

inline map_t managed_object_example() {
  return map_of("id", text("7"), "name", text("Pump"), "type", text("o6a_Device"),
                "o6a_SupportedOperations", list_of(text("restart"), text("update")),
                "o6a_SupportedMeasurements", list_of(text("o6a_Temperature")), "o6a_Position",
                map_of("lat", real(51.2), "lng", real(7.1), "alt", text("100"), "origin",
                       map_of("gps", truth(true))),
                "childDevices", map_of("references", list_of(map_of("id", text("8")))),
                "childAssets", text("a"), "childAdditions", whole(1), "deviceParents", list_of(),
                "assetParents", map_of(), "additionParents", truth(false), "creationTime",
                text(EXAMPLE_TIME), "lastUpdated", text("later"), "o6a_Custom", real(0.5));
}
inline map_t managed_object_fields() {
  return map_of("id", text("7"), "source", text("Pump"), "supportedOperations",
                list_of(text("restart"), text("update")), "supportedMeasurements",
                list_of(text("o6a_Temperature")), "position",
                map_of("lat", real(51.2), "lng", real(7.1), "alt", text("100")), "origin",
                map_of("gps", truth(true)), "childDeviceIds",
                map_of("references", list_of(map_of("id", text("8")))), "childAssetIds", text("a"),
                "childAdditionIds", whole(1), "deviceParentIds", list_of(), "assetParentIds",
                map_of(), "additionParentIds", truth(false), "creationTime", real(EXAMPLE_SECONDS),
                "lastUpdated", text("later"), "o6a_Custom", real(0.5), "measurements", map_of());
}

struct example_t {
  const char* kind; // the type segment
  const char* type;
  Conversion* convert;
  map_t (*payload)();
  map_t (*fields)();
};

inline constexpr example_t EXAMPLES[] = {
    {"alarms", "com.tivra.ostrovia.Alarm", plugins::pulsar::convertAlarm, alarm_example,
     alarm_fields},
    {"events", "com.tivra.ostrovia.Event", plugins::pulsar::convertEvent, event_example,
     event_fields},
    {"measurements", "com.tivra.ostrovia.Measurement", plugins::pulsar::convertMeasurement,
     measurement_example, measurement_fields},
    {"managedobjects", "com.tivra.ostrovia.ManagedObject", plugins::pulsar::convertManagedObject,
     managed_object_example, managed_object_fields},
    {"operations", "com.tivra.ostrovia.Operation", plugins::pulsar::convertOperation,
     operation_example, operation_fields},
};

} // namespace com::velanto::connectivity::test

#endif
