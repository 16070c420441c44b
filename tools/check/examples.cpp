#include "tools/check/examples.hpp"

#include <cstring>

#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// 2023-04-05T06:07:08Z is 1680674828.
constexpr example_t EXAMPLES[] = {
    {"Event", "t/s/events/1",
     R"({"id": "1", "source": {"id": "7", "name": "dev"}, "text": "t",
         "time": "2023-04-05T06:07:08.000Z", "type": "o6a_Test", "o6a_Extra": 5})",
     R"({"id": "1", "source": "7", "text": "t", "firstOccurrenceTime": 1680674828.0,
         "type": "o6a_Test", "o6a_Extra": 5, "measurements": {}})",
     "the time becomes firstOccurrenceTime, the source its id"},
    {"Event", "t/s/events/2",
     R"({"id": "2", "source": {"id": "7"}, "text": "t", "time": "2023-04-05T06:07:08Z", "type": "T",
         "creationTime": "garbage", "firstOccurrenceTime": "2023-04-05T06:07:08.123Z",
         "lastUpdated": 5, "measurements": [1, "two", null], "tenantId": "t9"})",
     R"({"id": "2", "source": "7", "text": "t", "firstOccurrenceTime": 1680674828.123, "type": "T",
         "creationTime": "garbage", "lastUpdated": 5, "measurements": [1, "two", null]})",
     "optional times, a firstOccurrenceTime of its own, measurements and tenant of its own"},
    {"Event", "t/s/eventsArchive/3",
     R"({"id": "3", "source": {"id": ""}, "text": "", "time": "2023-04-05T06:07:08+01:00",
         "type": "", "site_Batch": {"number": 311, "cubicMetres": 2.5, "parts": [{"a": true}]}})",
     R"({"id": "3", "source": "", "text": "", "firstOccurrenceTime": 1680671228.0, "type": "",
         "site_Batch": {"number": 311, "cubicMetres": 2.5, "parts": [{"a": true}]},
         "measurements": {}})",
     "empty texts, a fragment, a path that only begins with the word"},
    {"Alarm", "t/s/alarms/4",
     R"({"id": "4", "source": {"id": "9", "name": "K1"}, "count": 4, "severity": "MAJOR",
         "status": "ACTIVE", "text": "Gusts", "time": "2023-04-05T06:07:08.000Z", "type": "Gust",
         "firstOccurrenceTime": "2023-04-05T06:07:08-0530",
         "creationTime": "2023-04-05T06:07:08.123Z", "site_Gust": {"peak": 21.4}})",
     R"({"id": "4", "source": "9", "count": 4, "severity": "MAJOR", "status": "ACTIVE",
         "text": "Gusts", "time": 1680674828.0, "type": "Gust",
         "firstOccurrenceTime": 1680694628.0, "creationTime": 1680674828.123,
         "site_Gust": {"peak": 21.4}, "measurements": {}})",
     "all its times are seconds, time keeps its name"},
    {"Alarm", "t/s/alarms/5",
     R"({"id": "5", "source": {"id": "9"}, "count": -1, "severity": "CRITICAL",
         "status": "ACKNOWLEDGED", "text": "x", "time": "2023-04-05T06:07:08Z", "type": "T"})",
     R"({"id": "5", "source": "9", "count": -1, "severity": "CRITICAL", "status": "ACKNOWLEDGED",
         "text": "x", "time": 1680674828.0, "type": "T", "measurements": {}})",
     "severity CRITICAL, status ACKNOWLEDGED"},
    {"Alarm", "//alarms/6",
     R"({"id": "6", "source": {"id": "9"}, "count": 0, "severity": "MINOR", "status": "CLEARED",
         "text": "x", "time": "2023-04-05T06:07:08Z", "type": "T"})",
     R"({"id": "6", "source": "9", "count": 0, "severity": "MINOR", "status": "CLEARED",
         "text": "x", "time": 1680674828.0, "type": "T", "measurements": {}})",
     "severity MINOR, status CLEARED, empty segments of the path"},
    {"Alarm", "t/s/alarms",
     R"({"id": "7", "source": {"id": "9"}, "count": 1, "severity": "WARNING", "status": "ACTIVE",
         "text": "x", "time": "2023-04-05T06:07:08Z", "type": "T"})",
     R"({"id": "7", "source": "9", "count": 1, "severity": "WARNING", "status": "ACTIVE",
         "text": "x", "time": 1680674828.0, "type": "T", "measurements": {}})",
     "severity WARNING, a path that ends with the word"},
    {"Measurement", "t/s/measurements/8",
     R"({"id": "8", "source": {"id": "9"}, "time": "2023-04-05T06:07:08Z", "type": "T",
         "firstOccurrenceTime": "2023-04-05T06:07:08Z", "lastUpdated": "2023-04-05T06:07:08Z",
         "o6a_Temperature": {"T": {"value": 21.5, "units": "C"}},
         "site_Mixer": {"drum": {"value": "14", "unit": "rpm", "limit": 18}},
         "site_Order": {"number": "QN-118"}, "site_Samples": {}})",
     R"({"id": "8", "source": "9", "time": 1680674828.0, "type": "T",
         "firstOccurrenceTime": "2023-04-05T06:07:08Z", "lastUpdated": 1680674828.0,
         "site_Order": {"number": "QN-118"},
         "measurements": {"T": {"value": 21.5, "units": "C", "params": {}},
                          "drum": {"value": "14", "params": {"unit": "rpm", "limit": 18}}}})",
     "fragments lose their names, their series keep theirs"},
    {"Measurement", "t/s/measurementsX/9",
     R"({"id": "9", "source": {"id": "9"}, "time": "2023-04-05T06:07:08Z", "type": "T",
         "good": {"a": {"value": 1}}, "bad": {"b": {"value": 2}, "c": {"v": 3}},
         "hex": {"d": {"value": "0x10"}}, "word": {"e": {"value": "abc"}}, "list": [1]})",
     R"({"id": "9", "source": "9", "time": 1680674828.0, "type": "T",
         "bad": {"b": {"value": 2}, "c": {"v": 3}}, "hex": {"d": {"value": "0x10"}},
         "word": {"e": {"value": "abc"}}, "list": [1],
         "measurements": {"a": {"value": 1, "params": {}}}})",
     "one entry that is no series makes a map no fragment"},
    {"ManagedObject", "t/s/managedobjects/10",
     R"({"id": "10", "name": "Pump", "type": "o6a_Device", "creationTime": "2023-04-05T06:07:08Z",
         "o6a_Position": {"lat": 51.2, "lng": 7, "alt": "100", "fix": "RTK", "mast": {"h": 2}},
         "o6a_SupportedOperations": ["stop", 7], "o6a_SupportedMeasurements": ["T"],
         "childDevices": {"references": [{"id": "11"}]}, "childAssets": 1, "childAdditions": 2,
         "deviceParents": 3, "assetParents": 4, "additionParents": 5, "owner": "x"})",
     R"({"id": "10", "source": "Pump", "creationTime": 1680674828.0,
         "position": {"lat": 51.2, "lng": 7, "alt": "100"}, "fix": "RTK", "mast": {"h": 2},
         "supportedOperations": ["stop", 7], "supportedMeasurements": ["T"],
         "childDeviceIds": {"references": [{"id": "11"}]}, "childAssetIds": 1,
         "childAdditionIds": 2, "deviceParentIds": 3, "assetParentIds": 4,
         "additionParentIds": 5, "owner": "x", "measurements": {}})",
     "name becomes source, type nothing, references change their names"},
    {"ManagedObject", "t/s/managedobjects/11",
     R"({"id": "11", "name": "P", "source": "register", "position": "sump 1",
         "o6a_Position": {"fix": "RTK"}, "o6a_SupportedOperations": "all",
         "firstOccurrenceTime": "2023-04-05T06:07:08Z", "time": 1})",
     R"({"id": "11", "source": "register", "position": "sump 1", "fix": "RTK",
         "supportedOperations": "all", "firstOccurrenceTime": "2023-04-05T06:07:08Z", "time": 1,
         "measurements": {}})",
     "without type; leftovers replace what the conversion made"},
    {"Operation", "t/s/operations/12",
     R"({"id": "12", "deviceId": "9", "source": {"id": "9"}, "status": "PENDING",
         "creationTime": "2023-04-05T06:07:08.000Z", "o6a_Restart": {}})",
     R"({"id": "12", "source": "9", "status": "PENDING", "creationTime": 1680674828.0,
         "o6a_Restart": {}, "measurements": {}})",
     "deviceId does not reach the event"},
    {"Operation", "t/s/operations/13",
     R"({"deviceId": "9", "source": {"id": "8"}, "status": "SUCCESSFUL", "text": 1, "type": 2,
         "time": "2023-04-05T06:07:08Z", "lastUpdated": "2023-04-05T06:07:08Z"})",
     R"({"id": "9", "source": "8", "status": "SUCCESSFUL", "text": 1, "type": 2,
         "time": "2023-04-05T06:07:08Z", "lastUpdated": 1680674828.0, "measurements": {}})",
     "without id, deviceId becomes id; time stays a text"},
    {"Operation", "t/s/operations/14",
     R"({"id": 14, "deviceId": "9", "source": {"id": "8"}, "status": "FAILED"})",
     R"({"id": 14, "source": "8", "status": "FAILED", "measurements": {}})",
     "status FAILED, an id that is no string"},
    {"Operation", "t/s/operations/15",
     R"({"id": "15", "deviceId": "9", "source": {"id": "8"}, "status": "EXECUTING"})",
     R"({"id": "15", "source": "8", "status": "EXECUTING", "measurements": {}})",
     "status EXECUTING"},
};

std::string plainJson(const std::string& id) {
  return R"({"id": ")" + id +
         R"(", "source": {"id": "7"}, "time": "2023-04-05T06:07:08.000Z", "type": "o6a_Test")";
}

} // namespace

std::span<const example_t> workedExamples() { return EXAMPLES; }

Message notificationOf(const example_t& example) {
  return notification(example.path, std::string_view(example.payload));
}

data_t eventOf(const example_t& example) {
  data_t event = value(example.event);
  set(event, "tenantId", data_t("t1"));
  return event;
}

data_t metadataOf(const example_t& example) {
  data_t metadata = value("{}");
  set(metadata, "vlt.type", data_t((std::string("com.tivra.ostrovia.") + example.kind).c_str()));
  const bool measurement = std::strcmp(example.kind, "Measurement") == 0;
  set(metadata, "vlt.channel", data_t(measurement ? "ostrovia.measurements" : "ostrovia.devices"));
  return metadata;
}

Message plainEvent(const std::string& id, const char* path) {
  return notification(path, std::string_view(plainJson(id) + R"(, "text": "t"})"));
}

Message plainMeasurement(const std::string& id) {
  return notification(MEASUREMENT_PATH, std::string_view(plainJson(id) + "}"));
}

data_t plainEventPayload(const std::string& id) {
  return value(R"({"id": ")" + id +
               R"(", "source": "7", "text": "t", "firstOccurrenceTime": 1680674828.0,)"
               R"( "type": "o6a_Test", "measurements": {}})");
}

} // namespace com::velanto::connectivity::tools::check
