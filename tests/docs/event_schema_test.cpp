// Keeps docs/event.schema.json true. (1) It accepts every event of the samples and the conformance
// cases. (2) It refuses an event that lacks a required field, or has one of a wrong kind. (3) It
// refuses other shapes of measurements.
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "tests/docs/json_schema.hpp"
#include "tests/docs/markdown.hpp"
#include "tests/docs/replay_codec.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/stderr_capture.hpp"
#include "tests/support/values.hpp"
#include "tools/check/conformance/case.hpp"

namespace com::velanto::connectivity::test {

namespace {

struct schema_kind_t {
  const char* word; // after com.tivra.ostrovia.
  std::vector<const char*> typed;
  std::vector<const char*> untyped; // required, but of any kind
  std::vector<const char*> never;
};

const std::vector<schema_kind_t> SCHEMA_KINDS = {
    {"Event", {"id", "source", "text", "type"}, {"firstOccurrenceTime", "measurements"}, {"time"}},
    {"Alarm",
     {"id", "source", "count", "severity", "status", "text", "time", "type"},
     {"measurements"},
     {}},
    {"Measurement", {"id", "source", "time", "type"}, {"measurements"}, {}},
    {"ManagedObject", {}, {"id", "source", "measurements"}, {}},
    {"Operation", {"source", "status"}, {"id", "measurements"}, {"deviceId"}},
};

// JSON has no borrowed keys and no keys but strings, so no replay makes such a field.
bool hasPlainKeys(const Message& event) {
  const data_t& payload = event.getPayload();
  if (payload.type_tag() != VLT_TAG_MAP) return true;
  for (const auto& [key, value] : payload.get<map_t>()) {
    if (key.type_tag() != VLT_TAG_STRING) return false;
  }
  return true;
}

std::string typeOf(Message& message) {
  map_t& metadata = message.getMetadataMap();
  return has(metadata, "vlt.type") ? at(metadata, "vlt.type").get<const char*>() : "";
}

void set(map_t& map, const char* field, data_t&& value) {
  if (has(map, field)) map.erase(map.find(text(field)));
  map.insert(text(field), std::move(value));
}

// False when there is nothing to take away.
bool takeAway(map_t& map, const char* field) {
  if (!has(map, field)) return false;
  map.erase(map.find(text(field)));
  return true;
}

// Without a path any message passes.
std::vector<Message> notificationsIn(std::vector<Message>&& messages) {
  std::erase_if(messages, [](Message& m) { return !has(m.getMetadataMap(), "pulsarPath"); });
  return std::move(messages);
}

class EventSchemaTest : public HostFixture {
 protected:
  void expectAccepted(std::vector<Message>&& reached, const std::string& place) {
    for (Message& message : reached) {
      const std::string type = typeOf(message);
      if (type.empty() || !hasPlainKeys(message)) continue;
      seen_.insert(type);
      EXPECT_EQ(schema_.complaint(toJson(message)), "") << place << ": " << toJson(message);
    }
  }

  // The first event of the samples that is of the kind `word`.
  Message sampleOf(const std::string& word) {
    ReplayCodec codec(reader_.parseValue(R"({"tenantId": "t4100"})"));
    for (const std::string& line : readDocument("samples/site-day.ndjson").lines) {
      std::vector<Message> batch;
      batch.push_back(reader_.parseMessage(line));
      std::vector<Message> reached = codec.hostGets(std::move(batch));
      takeLog();
      if (!reached.empty() && typeOf(reached[0]) == "com.tivra.ostrovia." + word) {
        return std::move(reached[0]);
      }
    }
    throw std::runtime_error("no " + word + " in the samples");
  }

  static map_t& fieldsOf(Message& event) { return event.getPayload().get<map_t>(); }

  bool accepted(const Message& event) const { return schema_.complaint(toJson(event)).empty(); }
  // A measurement event with `measurements` in place of its own.
  bool acceptedWith(const char* measurements) {
    Message event = sampleOf("Measurement");
    set(fieldsOf(event), "measurements", reader_.parseValue(measurements));
    return accepted(event);
  }

  JsonSchema schema_{"docs/event.schema.json"};
  JsonReader reader_;
  std::set<std::string> seen_;
};

const std::set<std::string> ALL_TYPES = {
    "com.tivra.ostrovia.Alarm", "com.tivra.ostrovia.Event", "com.tivra.ostrovia.ManagedObject",
    "com.tivra.ostrovia.Measurement", "com.tivra.ostrovia.Operation"};

} // namespace

TEST_F(EventSchemaTest, EveryEventOfTheSamplesIsAccepted) {
  const std::string direct = stderrOf([&] {
    for (const char* tenant : {R"({"tenantId": ""})", R"({"tenantId": "t4100"})"}) {
      ReplayCodec codec(reader_.parseValue(tenant));
      for (const std::string& name : ndjsonIn("samples")) {
        std::vector<Message> batch;
        for (const std::string& line : readDocument(name).lines) {
          batch.push_back(reader_.parseMessage(line));
        }
        expectAccepted(codec.hostGets(notificationsIn(std::move(batch))), name);
      }
    }
  });
  EXPECT_EQ(seen_, ALL_TYPES);
}

TEST_F(EventSchemaTest, EveryEventOfTheConformanceCasesIsAccepted) {
  const std::string direct = stderrOf([&] {
    for (const auto& [file, line] : tools::check::embeddedLines()) {
      tools::check::case_t played = tools::check::readCase(reader_.parseValue(line));
      if (!played.created || played.towards_transport) continue;
      ReplayCodec codec(played.configuration);
      expectAccepted(codec.hostGets(notificationsIn(std::move(played.in))), played.name);
    }
  });
  EXPECT_EQ(seen_, ALL_TYPES);
}

TEST_F(EventSchemaTest, EventWithoutARequiredFieldIsRefused) {
  for (const schema_kind_t& kind : SCHEMA_KINDS) {
    std::vector<const char*> required = kind.typed;
    required.insert(required.end(), kind.untyped.begin(), kind.untyped.end());
    for (const char* field : required) {
      Message event = sampleOf(kind.word);
      ASSERT_TRUE(accepted(event));
      ASSERT_TRUE(takeAway(fieldsOf(event), field)) << kind.word << " " << field;
      EXPECT_FALSE(accepted(event)) << kind.word << " " << field;
    }
  }
}

TEST_F(EventSchemaTest, FieldOfAWrongKindIsRefused) {
  for (const schema_kind_t& kind : SCHEMA_KINDS) {
    for (const char* field : kind.typed) {
      for (const char* wrong : {"null", "true", "1.5", "\"2024\"", "[]", "{}"}) {
        Message event = sampleOf(kind.word);
        const data_t value = reader_.parseValue(wrong);
        const bool right = value.type_tag() == at(fieldsOf(event), field).type_tag();
        set(fieldsOf(event), field, data_t(value));
        const bool is_enum = std::string("severity status").find(field) != std::string::npos;
        EXPECT_EQ(accepted(event), right && !is_enum) << kind.word << " " << field << " " << wrong;
      }
    }
  }
}

TEST_F(EventSchemaTest, FieldThatIsAlwaysConsumedIsRefused) {
  for (const schema_kind_t& kind : SCHEMA_KINDS) {
    for (const char* field : kind.never) {
      Message event = sampleOf(kind.word);
      set(fieldsOf(event), field, text("x"));
      EXPECT_FALSE(accepted(event)) << kind.word << " " << field;
    }
  }
}

TEST_F(EventSchemaTest, UnknownFieldsAreAccepted) {
  for (const schema_kind_t& kind : SCHEMA_KINDS) {
    Message event = sampleOf(kind.word);
    set(fieldsOf(event), "o6a_Unheard", reader_.parseValue(R"({"of": [null, 1]})"));
    EXPECT_TRUE(accepted(event)) << kind.word;
  }
}

TEST_F(EventSchemaTest, MetadataIsTypeAndChannelAndNothingElse) {
  for (const char* field : {"vlt.type", "vlt.channel"}) {
    Message lacking = sampleOf("Event");
    ASSERT_TRUE(takeAway(lacking.getMetadataMap(), field));
    EXPECT_FALSE(accepted(lacking)) << field;
    Message spoilt = sampleOf("Event");
    set(spoilt.getMetadataMap(), field, whole(1));
    EXPECT_FALSE(accepted(spoilt)) << field;
  }
  Message more = sampleOf("Event");
  set(more.getMetadataMap(), "pulsarPath", text("t/s/events/1"));
  EXPECT_FALSE(accepted(more));
}

TEST_F(EventSchemaTest, EventOfAnUnknownTypeIsRefused) {
  for (const schema_kind_t& kind : SCHEMA_KINDS) {
    Message event = sampleOf(kind.word);
    set(event.getMetadataMap(), "vlt.type", text("com.tivra.ostrovia.Inventory"));
    EXPECT_FALSE(accepted(event)) << kind.word;
  }
}

TEST_F(EventSchemaTest, LineThatIsNoMessageIsRefused) {
  const std::string metadata =
      R"("metadata": {"vlt.type": "com.tivra.ostrovia.ManagedObject", "vlt.channel": "c"})";
  const std::string payload = R"("payload": {"id": "1", "source": "n", "measurements": {}})";
  EXPECT_EQ(schema_.complaint("{" + metadata + ", " + payload + "}"), "");
  const std::vector<std::string> refused = {
      "[]",
      "{" + metadata + "}",
      "{" + payload + "}",
      "{" + metadata + R"(, "payload": []})",
      R"({"metadata": [], )" + payload + "}",
      "{" + metadata + ", " + payload + R"(, "dropped": {}})"};
  for (const std::string& line : refused) {
    EXPECT_NE(schema_.complaint(line), "") << line;
  }
}

TEST_F(EventSchemaTest, MeasurementsHaveValueUnitsAndParams) {
  EXPECT_TRUE(acceptedWith(R"({"T": {"value": 1, "units": "C", "params": {}}})"));
  EXPECT_TRUE(acceptedWith(R"({"T": {"value": "1 m", "params": {"unit": "m"}}})"));
  EXPECT_TRUE(acceptedWith("{}"));
  EXPECT_FALSE(acceptedWith(R"({"T": {"value": 1, "units": "C"}})"));
  EXPECT_FALSE(acceptedWith(R"({"T": {"value": "-1.5", "units": "C"}})"));
  EXPECT_FALSE(acceptedWith(R"({"T": {"value": 1, "params": {}, "unit": "C"}})"));
  EXPECT_FALSE(acceptedWith(R"({"T": {"value": 1, "params": "none"}})"));
}

TEST_F(EventSchemaTest, EntryMeasurementsThatIsNoFragmentIsAccepted) {
  EXPECT_TRUE(acceptedWith(R"("wind")"));
  EXPECT_TRUE(acceptedWith(R"({"T": 1})"));
  EXPECT_TRUE(acceptedWith(R"({"T": {"state": "probe dirty"}})"));
  EXPECT_TRUE(acceptedWith(R"({"T": {"value": true}})"));
  EXPECT_TRUE(acceptedWith(R"({"T": {"value": "wet"}})"));
}

TEST_F(EventSchemaTest, ReadableTimeLeftAStringIsRefused) {
  for (const char* word : {"Event", "Alarm", "Measurement", "Operation"}) {
    for (const char* field : {"creationTime", "lastUpdated", "firstOccurrenceTime"}) {
      const bool is_time = word != std::string("Measurement") || field[0] != 'f';
      Message event = sampleOf(word);
      set(fieldsOf(event), field, text("2024-05-14T06:55:12.000Z"));
      EXPECT_EQ(accepted(event), !is_time) << word << " " << field;
      set(fieldsOf(event), field, text("2024-05-14T06:55:12"));
      EXPECT_TRUE(accepted(event)) << word << " " << field;
    }
  }
}

} // namespace com::velanto::connectivity::test
