// One notification of each kind, and the complete event made from it.
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

inline map_t sourceExample() { return mapOf("id", text("7"), "name", text("dev")); }

inline map_t eventExample() {
  return mapOf("id", text("1"), "source", sourceExample(), "text", text("t"), "time",
               text(EXAMPLE_TIME), "type", text("o6a_Test"), "o6a_Extra", whole(5));
}
inline map_t eventFields() {
  return mapOf("id", text("1"), "source", text("7"), "text", text("t"), "firstOccurrenceTime",
               real(EXAMPLE_SECONDS), "type", text("o6a_Test"), "o6a_Extra", whole(5),
               "measurements", mapOf());
}

inline map_t operationExample() {
  return mapOf("id", text("11"), "deviceId", text("7"), "source", sourceExample(), "status",
               text("PENDING"), "creationTime", text(EXAMPLE_TIME), "o6a_Restart", mapOf());
}
inline map_t operationFields() {
  return mapOf("id", text("11"), "source", text("7"), "status", text("PENDING"), "creationTime",
               real(EXAMPLE_SECONDS), "o6a_Restart", mapOf(), "measurements", mapOf());
}

inline map_t alarmExample() {
  return mapOf("id", text("1"), "source", sourceExample(), "count", whole(3), "severity",
               text("MINOR"), "status", text("CLEARED"), "text", text("hot"), "time",
               text(EXAMPLE_TIME), "type", text("o6a_Hot"), "creationTime",
               text("2023-04-05T06:07:08+01:00"), "firstOccurrenceTime",
               text("2023-04-05T06:07:08-0530"), "lastUpdated", text("2023-04-05T06:07:08Z"),
               "o6a_Custom", mapOf("deep", listOf(whole(1), text("a"))));
}
inline map_t alarmFields() {
  return mapOf("id", text("1"), "source", text("7"), "count", whole(3), "severity", text("MINOR"),
               "status", text("CLEARED"), "text", text("hot"), "time", real(EXAMPLE_SECONDS),
               "type", text("o6a_Hot"), "creationTime", real(1680671228.0), "firstOccurrenceTime",
               real(1680694628.0), "lastUpdated", real(EXAMPLE_SECONDS), "o6a_Custom",
               mapOf("deep", listOf(whole(1), text("a"))), "measurements", mapOf());
}

inline map_t measurementExample() {
  return mapOf("id", text("1"), "source", sourceExample(), "time", text(EXAMPLE_TIME), "type",
               text("o6a_Env"), "creationTime", text(EXAMPLE_TIME), "lastUpdated",
               text("2023-04-05T06:07:09.000Z"), "firstOccurrenceTime", text(EXAMPLE_TIME),
               "o6a_Temperature", mapOf("T", mapOf("value", real(21.5), "units", text("C"))),
               "o6a_Note", text("n"));
}
inline map_t measurementFields() {
  return mapOf("id", text("1"), "source", text("7"), "time", real(EXAMPLE_SECONDS), "type",
               text("o6a_Env"), "creationTime", real(EXAMPLE_SECONDS), "lastUpdated",
               real(EXAMPLE_SECONDS + 1), "firstOccurrenceTime", text(EXAMPLE_TIME), "o6a_Note",
               text("n"), "measurements",
               mapOf("T", mapOf("value", real(21.5), "units", text("C"), "params", mapOf())));
}

inline map_t managedObjectExample() {
  return mapOf("id", text("7"), "name", text("Pump"), "type", text("o6a_Device"),
               "o6a_SupportedOperations", listOf(text("restart"), text("update")),
               "o6a_SupportedMeasurements", listOf(text("o6a_Temperature")), "o6a_Position",
               mapOf("lat", real(51.2), "lng", real(7.1), "alt", text("100"), "origin",
                     mapOf("gps", truth(true))),
               "childDevices", mapOf("references", listOf(mapOf("id", text("8")))), "childAssets",
               text("a"), "childAdditions", whole(1), "deviceParents", listOf(), "assetParents",
               mapOf(), "additionParents", truth(false), "creationTime", text(EXAMPLE_TIME),
               "lastUpdated", text("later"), "o6a_Custom", real(0.5));
}
inline map_t managedObjectFields() {
  return mapOf("id", text("7"), "source", text("Pump"), "supportedOperations",
               listOf(text("restart"), text("update")), "supportedMeasurements",
               listOf(text("o6a_Temperature")), "position",
               mapOf("lat", real(51.2), "lng", real(7.1), "alt", text("100")), "origin",
               mapOf("gps", truth(true)), "childDeviceIds",
               mapOf("references", listOf(mapOf("id", text("8")))), "childAssetIds", text("a"),
               "childAdditionIds", whole(1), "deviceParentIds", listOf(), "assetParentIds", mapOf(),
               "additionParentIds", truth(false), "creationTime", real(EXAMPLE_SECONDS),
               "lastUpdated", text("later"), "o6a_Custom", real(0.5), "measurements", mapOf());
}

struct example_t {
  const char* kind; // the type segment
  const char* type;
  Conversion* convert;
  map_t (*payload)();
  map_t (*fields)();
};

inline constexpr example_t EXAMPLES[] = {
    {"alarms", "com.tivra.ostrovia.Alarm", plugins::pulsar::convertAlarm, alarmExample,
     alarmFields},
    {"events", "com.tivra.ostrovia.Event", plugins::pulsar::convertEvent, eventExample,
     eventFields},
    {"measurements", "com.tivra.ostrovia.Measurement", plugins::pulsar::convertMeasurement,
     measurementExample, measurementFields},
    {"managedobjects", "com.tivra.ostrovia.ManagedObject", plugins::pulsar::convertManagedObject,
     managedObjectExample, managedObjectFields},
    {"operations", "com.tivra.ostrovia.Operation", plugins::pulsar::convertOperation,
     operationExample, operationFields},
};

} // namespace com::velanto::connectivity::test

#endif
