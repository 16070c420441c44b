#include "tools/replay/replay.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

#include "host/storage.h"
#include "tests/support/host_fixture.hpp"
#include "tests/tools/elapsed.hpp"
#include "tools/host/host_library.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::input_t;
using tools::ReplayOptions;

const std::string LABEL = "<connectivity.OstroviaNotifications2Codec.replay> ";

// A line with an event that converts, and one with an event that lacks all but its id.
std::string good(const std::string& id) {
  return R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": ")" + id +
         R"(", "source": {"id": "9"}, "text": "x", "time": "2024-05-14T04:02:11Z", "type": "T"}})"
         "\n";
}
std::string bad(const std::string& id) {
  return R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": ")" + id + "\"}}\n";
}

// The plug-in's log line for the latter.
std::string sourcelessLog(const std::string& id) {
  return LABEL + "Error when transforming message towards host ('id' = '" + id +
         "'): Required key 'source' missing from message payload\n";
}
// The log line of its entry points when an operation of the faulty plug-in fails.
std::string faultLog(const std::string& operation) {
  return LABEL + "Exception from " + operation + ": boom\n";
}

input_t input(const char* name, std::string content) {
  return {name,
          [content = std::move(content)] { return std::make_unique<std::istringstream>(content); }};
}

// Breaks during a read, as a failing disk does.
class BrokenBuffer final : public std::streambuf {
 protected:
  int_type underflow() override { throw std::runtime_error("broken"); }
};
class BrokenStream final : public std::istream {
 public:
  BrokenStream() : std::istream(nullptr) { rdbuf(&buffer_); }

 private:
  BrokenBuffer buffer_;
};

class ReplayTest : public HostFixture {
 protected:
  ReplayTest() { options_.plugin_path = VLT_PLUGIN_PATH; }

  int replay(const std::vector<input_t>& inputs) {
    events_.str("");
    diagnostics_.str("");
    return tools::replay(options_, inputs, events_, diagnostics_);
  }
  int replay(const std::string& content) { return replay({input("in", content)}); }
  // The same with a plug-in that has the fault of this name.
  int replayFaulty(const char* fault, const std::string& content) {
    options_.plugin_path = VLT_FAULTY_PLUGIN_PATH;
    options_.tenant_id = fault;
    return replay(content);
  }

  std::string events() const { return events_.str(); }
  // With T in place of the time, which no two runs share.
  std::string diagnostics() const { return withoutElapsed(diagnostics_.str()); }

  ReplayOptions options_;

 private:
  std::ostringstream events_;
  std::ostringstream diagnostics_;
};

} // namespace

TEST_F(ReplayTest, EventsKeepOrderAndDroppedOnesCount) {
  EXPECT_EQ(replay(R"({"payload": 1})"
                   "\n" +
                   bad("2") + R"({"payload": {"a": 3.0}, "metadata": {"m": null}})" + "\n"),
            0);
  EXPECT_EQ(events(),
            "{\"metadata\":{},\"payload\":1}\n"
            "{\"metadata\":{\"m\":null},\"payload\":{\"a\":3.0}}\n");
  EXPECT_EQ(diagnostics(), "in:2: " + sourcelessLog("2") +
                               "read 3, reached the host 2, dropped 1, malformed 0, T ms\n");
}

TEST_F(ReplayTest, NotificationIsDecoded) {
  EXPECT_EQ(replay(good("1")), 0);
  EXPECT_NE(events().find(R"("vlt.type":"com.tivra.ostrovia.Event")"), std::string::npos);
  EXPECT_NE(events().find(R"("vlt.channel":"ostrovia.devices")"), std::string::npos);
  EXPECT_NE(events().find(R"("firstOccurrenceTime":1715659331.0)"), std::string::npos);
  EXPECT_EQ(events().find("tenantId"), std::string::npos);
}

TEST_F(ReplayTest, OptionsBecomeTheConfiguration) {
  options_.tenant_id = "t7";
  options_.channel_prefix = "p.";
  options_.measurement_channel = "m";
  EXPECT_EQ(replay(good("1") + R"({"metadata": {"pulsarPath": "t/s/measurements/7"}, "payload": )"
                               R"({"id": "2", "source": {"id": "9"}, "type": "T", )"
                               R"("time": "2024-05-14T04:02:11Z"}})"),
            0);
  EXPECT_NE(events().find(R"("vlt.channel":"p.ostrovia.devices")"), std::string::npos);
  EXPECT_NE(events().find(R"("vlt.channel":"m")"), std::string::npos);
  EXPECT_NE(events().find(R"("tenantId":"t7")"), std::string::npos);
}

TEST_F(ReplayTest, NothingToReadIsFine) {
  EXPECT_EQ(replay(""), 0);
  EXPECT_EQ(events(), "");
  EXPECT_EQ(diagnostics(), "read 0, reached the host 0, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, MalformedLinesAreReportedAndSkipped) {
  EXPECT_EQ(replay({input("a", "{\"payload\":1}\nx\n"), input("b",
                                                              "\n{\"payload\":\"\\u0000\"}\n"
                                                              "{\"payload\":2}")}),
            tools::EXIT_BAD_INPUT);
  EXPECT_EQ(events(), "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n");
  EXPECT_EQ(diagnostics(),
            "a:2:1: not well-formed JSON\n"
            "b:2:12: string with an embedded NUL\n"
            "read 4, reached the host 2, dropped 0, malformed 2, T ms\n");
}

TEST_F(ReplayTest, BlankLinesAndForeignLineEndsAreFine) {
  EXPECT_EQ(replay("\n  \t\n{\"payload\":1}\r\n\r\n{\"payload\":2}"), 0);
  EXPECT_EQ(events(), "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n");
  EXPECT_EQ(diagnostics(), "read 2, reached the host 2, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, BatchSizeChangesNothingButTheBatches) {
  std::string content;
  for (int i = 0; i < 10; ++i) {
    content += (i % 3 == 0 ? bad(std::to_string(i)) : good(std::to_string(i)));
    if (i == 4) content += "x\n";
  }
  EXPECT_EQ(replay(content), tools::EXIT_BAD_INPUT);
  const std::string one_by_one = events();
  const std::string log = diagnostics();
  EXPECT_EQ(log, "in:1: " + sourcelessLog("0") + "in:4: " + sourcelessLog("3") +
                     "in:6:1: not well-formed JSON\nin:8: " + sourcelessLog("6") +
                     "in:11: " + sourcelessLog("9") +
                     "read 11, reached the host 6, dropped 4, malformed 1, T ms\n");
  for (const std::size_t size : {2u, 3u, 5u, 10u, 256u, 1000u}) {
    options_.batch_size = size;
    EXPECT_EQ(replay(content), tools::EXIT_BAD_INPUT);
    EXPECT_EQ(events(), one_by_one) << size;
    EXPECT_EQ(diagnostics(), log) << size;
  }
}

TEST_F(ReplayTest, BatchesAreAsLargeAsAskedFor) {
  std::string content;
  for (int i = 0; i < 5; ++i) content += "{\"payload\":1}\n";
  options_.batch_size = 2;
  EXPECT_EQ(replayFaulty("sendBatchTowardsHost", content), tools::EXIT_PLUGIN);
  std::string expected;
  for (int i = 1; i <= 5; ++i) {
    expected += "in:" + std::to_string(i) + ": " + faultLog("sendBatchTowardsHost");
  }
  EXPECT_EQ(diagnostics(), expected +
                               "ostrovia-replay: the plug-in failed on a batch, messages 2\n"
                               "ostrovia-replay: the plug-in failed on a batch, messages 2\n"
                               "ostrovia-replay: the plug-in failed on a batch, messages 1\n"
                               "read 5, reached the host 0, dropped 5, malformed 0, T ms\n");
}

TEST_F(ReplayTest, TransportDirectionPassesMessagesUnchanged) {
  options_.direction = "transport";
  EXPECT_EQ(replay(bad("1")), 0);
  EXPECT_EQ(events(),
            "{\"metadata\":{\"pulsarPath\":\"t1/sub/events/7\"},\"payload\":{\"id\":\"1\"}}\n");
  EXPECT_EQ(diagnostics(), "read 1, reached the transport 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, LogIsShownUpToItsLevel) {
  const std::string figures = "read 1, reached the host 0, dropped 1, malformed 0, T ms\n";
  EXPECT_EQ(replay(bad("1")), 0);
  EXPECT_EQ(diagnostics(), "in:1: " + sourcelessLog("1") + figures);
  options_.log_level = 6;
  EXPECT_EQ(replay(bad("1")), 0);
  EXPECT_EQ(diagnostics().rfind("in:1: " + LABEL + "Processing message: ", 0), 0u);
  EXPECT_NE(diagnostics().find("\nin:1: " + sourcelessLog("1") + figures), std::string::npos);
  options_.log_level = 2;
  EXPECT_EQ(replay(bad("1")), 0);
  EXPECT_EQ(diagnostics(), figures);
}

TEST_F(ReplayTest, TerminalShowsEventsBeforeLaterLogLines) {
  std::ostringstream screen;
  options_.log_level = 3;
  tools::replay(options_, {input("in", good("1") + bad("2") + good("3"))}, screen, screen, nullptr,
                tools::Screen::PLAIN);
  EXPECT_TRUE(screen.str().starts_with("{")) << screen.str();
  const std::string after_first = screen.str().substr(screen.str().find('\n') + 1);
  EXPECT_TRUE(after_first.starts_with("in:2: " + sourcelessLog("2") + "{")) << after_first;
}

TEST_F(ReplayTest, BlocksOfTheCallerAreNotCounted) {
  const std::int64_t before = standin_live_blocks_total();
  vlt_underlying_map_table_t* const own = vlt_allocate_map(8);
  EXPECT_EQ(replay("{\"payload\":1}"), 0);
  vlt_free_map(own);
  EXPECT_EQ(standin_live_blocks_total(), before);
}

TEST_F(ReplayTest, PluginThatCannotBeUsedIsAFailure) {
  options_.plugin_path = "/nowhere/plugin.so";
  EXPECT_EQ(replay("{\"payload\":1}"), tools::EXIT_PLUGIN);
  EXPECT_EQ(events(), "");
  EXPECT_EQ(diagnostics(),
            "ostrovia-replay: cannot load /nowhere/plugin.so: cannot open shared object file: No "
            "such file or directory\n");
}

TEST_F(ReplayTest, PluginThatDoesNotStartIsAFailure) {
  const std::vector<std::pair<const char*, const char*>> rows = {
      {"create", "ostrovia-replay: the plug-in refused its configuration\n"},
      {"setNextTowardsHost", "ostrovia-replay: the plug-in failed in setNextTowardsHost\n"},
      {"start", "ostrovia-replay: the plug-in failed in start\n"},
      {"hostReady", "ostrovia-replay: the plug-in failed in hostReady\n"}};
  for (const auto& [fault, expected] : rows) {
    EXPECT_EQ(replayFaulty(fault, "{\"payload\":1}"), tools::EXIT_PLUGIN) << fault;
    EXPECT_EQ(diagnostics(), faultLog(fault) + expected);
    EXPECT_EQ(events(), "");
  }
}

TEST_F(ReplayTest, FailingShutdownIsReported) {
  EXPECT_EQ(replayFaulty("shutdown", "{\"payload\":1}"), tools::EXIT_PLUGIN);
  EXPECT_EQ(diagnostics(), faultLog("shutdown") +
                               "ostrovia-replay: the plug-in failed in shutdown\n"
                               "read 1, reached the host 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, MessageThatComesOutTwiceBreaksTheLaw) {
  EXPECT_EQ(replayFaulty("twice", "{\"payload\":1}\n{\"payload\":2}"), tools::EXIT_LAW);
  EXPECT_EQ(events(),
            "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{}}\n"
            "{\"metadata\":{},\"payload\":2}\n{\"metadata\":{}}\n");
  EXPECT_EQ(diagnostics(),
            "ostrovia-replay: in:1: 2 messages came out for one\n"
            "ostrovia-replay: the plug-in breaks the law: read 2 is not converted 0 + passed 4 + "
            "dropped 0 + malformed 0\n"
            "read 2, reached the host 4, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, MessageThatNobodyHasSentBreaksTheLaw) {
  EXPECT_EQ(replayFaulty("late", "{\"payload\":1}"), tools::EXIT_LAW);
  EXPECT_EQ(diagnostics(),
            "ostrovia-replay: the plug-in breaks the law: read 1 is not converted 0 + passed 2 + "
            "dropped 0 + malformed 0\n"
            "read 1, reached the host 2, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, DependenceOnNeighboursBreaksTheLaw) {
  options_.batch_size = 2;
  EXPECT_EQ(replayFaulty("greed", "{\"payload\":1}\n{\"payload\":2}\n{\"payload\":3}\n"),
            tools::EXIT_LAW);
  EXPECT_EQ(diagnostics(),
            "ostrovia-replay: in:1: the results of the messages depend on their batch, of 2\n"
            "read 3, reached the host 3, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, MessageThatVanishesWithoutAWordIsDropped) {
  EXPECT_EQ(replayFaulty("silence", "{\"payload\":1}"), 0);
  EXPECT_EQ(diagnostics(), "read 1, reached the host 0, dropped 1, malformed 0, T ms\n");
}

TEST_F(ReplayTest, DroppedMessagesAreAFailureWhenStrict) {
  options_.strict = true;
  EXPECT_EQ(replay(good("1")), 0);
  EXPECT_EQ(replay(good("1") + bad("2")), tools::EXIT_DROPPED);
  EXPECT_EQ(replay(good("1") + bad("2") + "x\n"), tools::EXIT_BAD_INPUT);
}

TEST_F(ReplayTest, InputThatBreaksIsAFailure) {
  const input_t broken = {"disk", [] { return std::make_unique<BrokenStream>(); }};
  EXPECT_EQ(replay({input("a", "{\"payload\":1}\n"), broken, input("c", "x\n")}), tools::EXIT_IO);
  EXPECT_EQ(events(), "{\"metadata\":{},\"payload\":1}\n");
  EXPECT_EQ(diagnostics(),
            "ostrovia-replay: disk: cannot be read to its end\n"
            "ostrovia-replay: incomplete: the input cannot be read further\n"
            "read 1, reached the host 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(ReplayTest, LinesBeforeAFailureAreHandled) {
  const input_t broken = {"disk", [] { return std::make_unique<BrokenStream>(); }};
  options_.batch_size = 100;
  EXPECT_EQ(replay({input("a", "{\"payload\":1}\n"), broken}), tools::EXIT_IO);
  EXPECT_EQ(events(), "{\"metadata\":{},\"payload\":1}\n");
}

TEST_F(ReplayTest, InputThatDoesNotOpenIsAFailure) {
  const input_t gone = {"gone", []() -> std::unique_ptr<std::istream> {
                          throw std::runtime_error("gone: No such file or directory");
                        }};
  EXPECT_EQ(replay({gone}), tools::EXIT_IO);
  EXPECT_EQ(diagnostics(), "ostrovia-replay: gone: No such file or directory\n");
}

TEST_F(ReplayTest, EventsThatCannotBeWrittenEndTheReplay) {
  std::ostringstream events;
  std::ostringstream diagnostics;
  events.setstate(std::ios::badbit);
  options_.batch_size = 1;
  EXPECT_EQ(tools::replay(options_, {input("in", "{\"payload\":1}\n")}, events, diagnostics),
            tools::EXIT_IO);
  EXPECT_EQ(diagnostics.str(), "ostrovia-replay: cannot write the events\n");
}

} // namespace com::velanto::connectivity::test
