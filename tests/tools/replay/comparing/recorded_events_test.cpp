// --expect-events with the built tool: its own events, recorded, changed or left out.
#include "tools/replay/comparing/recorded_events.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tools/program.hpp"
#include "tests/tools/recorded_lines.hpp"

namespace com::velanto::connectivity::test {

namespace {

class RecordedEventsTest : public Program {
 protected:
  RecordedEventsTest() { std::filesystem::create_directory(folder_.path("rec")); }

  // The event of a message, a line.
  std::string eventOf(const std::string& message) {
    input_ = message;
    return run({"--quiet"}).out;
  }

  // A batch of one message on both sides.
  void add(unsigned id) {
    const std::string message = eventLine(std::to_string(id));
    before_ += recordedLine({++number_before_, id}, message);
    after_ += recordedLine({++number_after_, id}, eventOf(message));
  }

  result_t compare(std::vector<std::string> more = {}) {
    folder_.write("rec/before.000001.ndjson", headLine(head_before_) + before_ +
                                                  footLine(number_before_, number_before_, 0, 0));
    folder_.write("rec/after.000001.ndjson",
                  headLine(head_after_) + after_ + footLine(number_after_, number_after_, 0, 0));
    more.insert(more.end(), {"--quiet", "--expect-events", "rec/after", "rec/before"});
    return run(more);
  }
  void expectSame(const std::string& diagnostics = "") {
    const result_t result = compare();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.diagnostics, diagnostics);
  }
  void expectDifferent(const std::string& diagnostics) {
    const result_t result = compare();
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.diagnostics, diagnostics);
  }

  head_t head_before_{"before"};
  head_t head_after_{"after"};
  std::string before_;
  std::string after_;
  unsigned number_before_ = 0; // of the last message
  unsigned number_after_ = 0;
};

std::string differences(const std::string& count) {
  return "ostrovia-replay: " + count + " messages differ from rec/after\n";
}

std::string notCompared(const std::string& rest) {
  return "ostrovia-replay: not compared: " + rest + "\n";
}

} // namespace

TEST_F(RecordedEventsTest, SameEventsAreNoDifference) {
  for (unsigned id = 1; id <= 3; ++id) add(id);
  expectSame();
  const result_t json = compare({"--summary=json"});
  EXPECT_NE(json.diagnostics.find(
                R"("events":{"compared":3,"different":0,"not_compared":{"no-remark":0,)"
                R"("no-batch":0,"part":0,"no-message":0},"recordings":[{"name":"after",)"),
            std::string::npos)
      << json.diagnostics;
}

TEST_F(RecordedEventsTest, DifferingFieldsAreShown) {
  add(1);
  before_ += recordedLine({++number_before_, 2}, eventLine("2"));
  std::string event = eventOf(eventLine("2"));
  event.replace(event.find("\"x\""), 3, "\"y\"");
  after_ += recordedLine({++number_after_, 2}, event);
  expectDifferent(
      "--- rec/after.000001.ndjson:3\n+++ rec/before.000001.ndjson:3\n"
      "@ event.payload.text\n- \"y\"\n+ \"x\"\n" +
      differences("1 of 2"));
}

TEST_F(RecordedEventsTest, EventThatProductionDroppedIsADifference) {
  add(1);
  before_ += recordedLine({++number_before_, 2}, eventLine("2"));
  add(3);
  const result_t result = compare();
  EXPECT_EQ(result.status, 5);
  EXPECT_TRUE(result.diagnostics.starts_with("--- nothing\n+++ rec/before.000001.ndjson:3\n+ {"))
      << result.diagnostics;
  EXPECT_TRUE(result.diagnostics.ends_with(differences("1 of 3")));
}

TEST_F(RecordedEventsTest, EventThatThisBuildDropsIsADifference) {
  before_ += recordedLine({++number_before_, 1}, textlessLine("1"));
  after_ += recordedLine({++number_after_, 1}, "{\"payload\":{\"id\":\"1\"}}\n");
  expectDifferent(
      "--- rec/after.000001.ndjson:2\n+++ rec/before.000001.ndjson:2\n"
      "@ event\n- {\"payload\":{\"id\":\"1\"},\"metadata\":{}}\n"
      "@ log\n+ \"" +
      textlessLog("1").substr(0, 76) + "\n  " + textlessLog("1").substr(76, 77) + "\n  " +
      textlessLog("1").substr(153) + "\"\n" + differences("1 of 1"));
}

TEST_F(RecordedEventsTest, EventsTooDeepToRecordAreCompared) {
  std::string deep = eventLine("1");
  const std::string lists = std::string(1023, '[') + std::string(1023, ']');
  deep.insert(deep.find("\"id\""), "\"deep\": [" + lists + "], ");
  before_ += recordedLine({++number_before_, 1}, deep);
  after_ += recordedLine({++number_after_, 1}, eventOf(eventLine("1")));
  const std::string brackets(76, '[');
  expectDifferent(
      "--- rec/after.000001.ndjson:2\n+++ rec/before.000001.ndjson:2\n"
      "@ event.payload.deep\n+ " +
      brackets + "[\n  " + brackets + "[\n  " + brackets + "[\n  " + brackets + "…\n" +
      differences("1 of 1"));
}

TEST_F(RecordedEventsTest, MessageDroppedByBothIsNoDifference) {
  add(1);
  before_ += recordedLine({++number_before_, 2}, textlessLine("2"));
  add(3);
  expectSame();
}

TEST_F(RecordedEventsTest, EventsOfABatchArePairedByIdentity) {
  std::string events;
  for (unsigned place = 0; place < 4; ++place) {
    const std::string id = std::to_string(place);
    before_ += recordedLine({++number_before_, 1, place, 4},
                            place == 1 ? textlessLine(id) : eventLine(id));
    if (place == 2) continue; // dropped by production
    const std::string event =
        place == 1 ? "{\"payload\":{\"id\":\"1\"}}\n" : eventOf(eventLine(id));
    after_ += recordedLine({++number_after_, 1, place - (place > 2 ? 1 : 0), 3}, event);
  }
  const result_t result = compare();
  EXPECT_EQ(result.status, 5);
  const std::string text = result.diagnostics;
  EXPECT_NE(text.find("--- rec/after.000001.ndjson:3\n+++ rec/before.000001.ndjson:3\n@ event\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("--- nothing\n+++ rec/before.000001.ndjson:4\n"), std::string::npos) << text;
  EXPECT_TRUE(text.ends_with(differences("2 of 4"))) << text;
}

TEST_F(RecordedEventsTest, EventsWithOtherIdentitiesArePairedInOrder) {
  for (unsigned place = 0; place < 2; ++place) {
    const std::string message = eventLine(std::to_string(place));
    std::string event = eventOf(message);
    event.replace(event.find("\"id\":\""), 6, "\"id\":\"X");
    before_ += recordedLine({++number_before_, 1, place, 2}, message);
    after_ += recordedLine({++number_after_, 1, place, 2}, event);
  }
  expectDifferent(
      "--- rec/after.000001.ndjson:2\n+++ rec/before.000001.ndjson:2\n"
      "@ event.payload.id\n- \"X0\"\n+ \"0\"\n"
      "--- rec/after.000001.ndjson:3\n+++ rec/before.000001.ndjson:3\n"
      "@ event.payload.id\n- \"X1\"\n+ \"1\"\n" +
      differences("2 of 2"));
}

TEST_F(RecordedEventsTest, BatchLostBehindTheCodecIsNotCompared) {
  add(1);
  before_ += recordedLine({++number_before_, 2}, eventLine("2"));
  after_ += gapLine(2, 2, 1);
  ++number_after_;
  add(3);
  expectSame(notCompared("1 messages of batches without recorded events"));
}

TEST_F(RecordedEventsTest, BatchLostBeforeTheCodecIsNotCompared) {
  add(1);
  after_ += recordedLine({++number_after_, 2}, eventOf(eventLine("2")));
  add(3);
  expectSame(notCompared("1 events of batches without recorded messages"));
}

TEST_F(RecordedEventsTest, PartsOfABatchAreComparedAsFarAsCertain) {
  for (const bool is_before : {false, true}) {
    before_ = after_ = "";
    number_before_ = number_after_ = 0;
    for (unsigned place = 0; place < 3; ++place) {
      const std::string message = eventLine(std::to_string(place));
      ++number_before_;
      ++number_after_;
      if (!is_before || place != 1) {
        before_ += recordedLine({number_before_, 1, place, 3}, message);
      }
      if (is_before || place != 1) {
        after_ += recordedLine({number_after_, 1, place, 3}, eventOf(message));
      }
    }
    expectSame(notCompared("1 messages and events of batches recorded in part"));
  }
}

TEST_F(RecordedEventsTest, SamplesOfTheSameBatchesAreCompared) {
  head_before_.one_in = head_after_.one_in = 10;
  for (const unsigned id : {10U, 20U, 30U}) {
    number_before_ = number_after_ = id - 1;
    add(id);
    if (id == 10) before_ += recordedLine({15, 15}, eventLine("15"));
  }
  const result_t result = compare();
  EXPECT_EQ(result.status, 5); // production dropped 15
  EXPECT_TRUE(result.diagnostics.ends_with(differences("1 of 4"))) << result.diagnostics;
}

TEST_F(RecordedEventsTest, OtherSamplesAreNotCompared) {
  head_after_.one_in = 10;
  add(1);
  for (unsigned id = 2; id <= 9; ++id) {
    before_ += recordedLine({++number_before_, id}, eventLine(std::to_string(id)));
  }
  number_after_ = 9;
  add(10);
  expectSame(notCompared("8 messages of batches without recorded events"));
}

TEST_F(RecordedEventsTest, FilteredMessagesAreNotCompared) {
  head_after_.configuration = R"("kinds":["alarms"])";
  add(1);
  before_ += recordedLine({++number_before_, 2}, eventLine("2"));
  ++number_after_; // filtered
  add(3);
  expectSame(notCompared("1 messages of batches without recorded events"));
}

TEST_F(RecordedEventsTest, OmittedTextsAreNoDifference) {
  head_after_.omitted = "\"text\"";
  before_ += recordedLine({++number_before_, 1}, eventLine("1"));
  std::string event = eventOf(eventLine("1"));
  event.replace(event.find("\"x\""), 3, "\"omitted\"");
  after_ += recordedLine({++number_after_, 1}, event);
  expectSame();
}

TEST_F(RecordedEventsTest, ThreadsMayOvertakeEachOther) {
  std::vector<std::string> events;
  for (unsigned id = 1; id <= 40; ++id) {
    const std::string message = eventLine(std::to_string(id));
    before_ += recordedLine({++number_before_, id}, message);
    events.push_back(eventOf(message));
  }
  for (const unsigned first : {21U, 1U}) {
    for (unsigned id = first; id < first + 20; ++id) {
      after_ += recordedLine({++number_after_, id}, events[id - 1]);
    }
  }
  expectSame();
}

TEST_F(RecordedEventsTest, RunsAreToldApart) {
  for (const char* run : {"00000000000000a1", "00000000000000a2"}) {
    if (number_before_ > 0) {
      before_ += footLine(1, 1, 0, 0) + headLine({"before", 2, run});
      after_ += footLine(1, 1, 0, 0) + headLine({"after", 2, run});
    }
    number_before_ = number_after_ = 0;
    add(1);
  }
  expectSame();
}

TEST_F(RecordedEventsTest, RecordedKindsAreComparedExactly) {
  const std::string decimal = R"({"$":["decimal","00000000000000ff"]})";
  const std::string nan = R"({"$":["double","7ff8000000000000"]})";
  const std::string pairs = R"({"$":["map",[[1,2],[3,4]]]})";
  const std::string turned = R"({"$":["map",[[3,4],[1,2]]]})";
  const auto add_both = [this](const std::string& before, const std::string& after) {
    before_ += recordedLine({++number_before_, number_before_}, passingLine(before));
    after_ += recordedLine({++number_after_, number_after_},
                           "{\"metadata\":{}," + passingLine(after).substr(1));
  };
  add_both(decimal, decimal);
  add_both(nan, nan);
  add_both("{\"a\":" + nan + ",\"b\":" + pairs + "}", "{\"b\":" + turned + ",\"a\":" + nan + "}");
  expectSame();
  add_both(decimal, R"({"$":["decimal","00000000000000fe"]})");
  EXPECT_EQ(compare().status, 5);
}

TEST_F(RecordedEventsTest, NothingComparedIsNoProof) {
  before_ = recordedLine({1, 1}, eventLine("1"));
  after_ = recordedLine({1, 2}, eventOf(eventLine("2")));
  head_after_.run = "00000000000000a2";
  expectDifferent(notCompared("1 messages of batches without recorded events") +
                  notCompared("1 events of batches without recorded messages") +
                  "ostrovia-replay: no message could be compared with rec/after\n");
}

TEST_F(RecordedEventsTest, HandWrittenLinesAreNotCompared) {
  add(1);
  before_ += eventLine("2");
  expectSame(notCompared("1 lines that no recorder wrote"));
}

TEST_F(RecordedEventsTest, MalformedEventIsNamed) {
  before_ = recordedLine({1, 1}, eventLine("1"));
  after_ = recordedLine({1, 1}, "{\"payload\":tru}\n");
  const result_t result = compare();
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: rec/after.000001.ndjson:2: bad literal, expected true, false or "
            "null\n");
}

TEST_F(RecordedEventsTest, MissingRecordingIsNamed) {
  const result_t result = run({"--expect-events", "rec/between", "in"});
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: rec/between: No such file or directory\n");
}

} // namespace com::velanto::connectivity::test
