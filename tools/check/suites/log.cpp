// The log: levels, categories and the cost of a trace. Its lines are in the conformance files.
#include <string>
#include <vector>

#include "standin/standin.h"
#include "tools/check/check_fixture.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr const char* CONFIGURATION = R"({"tenantId": "t1"})";
constexpr vlt_log_level_t TRACE = 6;

Message unknown(const std::string& id) {
  return notification("a/b/inventory", std::string_view(R"({"id": ")" + id + R"("})"));
}

std::string unknownLine(const std::string& id) {
  return dropped(" ('id' = '" + id + "'): Unrecognised Pulsar message type: 'inventory'");
}

void traceCosts(Trial& trial) {
  {
    CheckFixture fixture(trial, CONFIGURATION, TRACE);
    standin_reset_calls();
    fixture.send(plainEvent("1"));
    trial.equal("strings rendered for one notification", 2, standin_calls(STANDIN_DATA_TO_STRING));
  }
  CheckFixture fixture(trial, CONFIGURATION, TRACE - 1);
  standin_reset_calls();
  fixture.send(plainEvent("1"));
  trial.equal("strings rendered at level 5", 0, standin_calls(STANDIN_DATA_TO_STRING));
}

void noTraceBelow(Trial& trial) {
  CheckFixture fixture(trial, CONFIGURATION, TRACE - 1);
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  batch.push_back(unknown("2"));
  fixture.send(std::move(batch));
  fixture.expectLog("at level 5", {unknownLine("2")});
}

void noDropsBelow(Trial& trial) {
  CheckFixture fixture(trial, CONFIGURATION, 2);
  fixture.send(unknown("1"));
  fixture.expectLog("a dropped message at level 2", {});
}

void nothingAtAll(Trial& trial) {
  CheckFixture fixture(trial, CONFIGURATION, 0);
  fixture.send(unknown("1"));
  const Codec refused(trial, fixture.loaded, value("{}"));
  fixture.expectLog("at level 0", {});
}

void category(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  Codec codec(trial, library, value(CONFIGURATION), "a name", "a%schain");
  codec.link();
  Message message = unknown("1");
  codec.towardsHost({&message, 1});
  trial.equal("log",
              lines_t{"3 connectivity.a name.a%schain <connectivity.a name.a%schain> Error when "
                      "transforming message towards host ('id' = '1'): Unrecognised Pulsar message "
                      "type: 'inventory'"},
              log.take());
}

// The level is that of the codec's own category, read at its creation.
void levelOfCreation(Trial& trial) {
  CheckFixture fixture(trial, CONFIGURATION, TRACE - 1);
  standin_set_default_log_level(TRACE);
  fixture.send(plainEvent("1"));
  fixture.expectLog("raised after creation", {});
  standin_set_log_level("connectivity.codec.chain", TRACE);
  standin_set_default_log_level(0);
  Codec codec(trial, fixture.loaded, fixture.configuration);
  codec.link();
  Message message = plainEvent("1");
  codec.towardsHost({&message, 1});
  trial.equal("lines of a codec whose category has level 6", 1, fixture.log.take().size());
}

void silentWhenGood(Trial& trial) {
  CheckFixture fixture(trial, CONFIGURATION, TRACE - 1);
  fixture.codec.start();
  fixture.codec.hostReady();
  std::vector<Message> batch;
  for (const line_t& example : exampleLines()) batch.push_back(notificationOf(example));
  fixture.send(std::move(batch));
  fixture.codec.shutdown();
  fixture.codec.destroy();
  fixture.expectLog("a life without faults", {});
  trial.equal("standard output and error", "", trial.printed());
}

const check_t LOG_CHECKS[] = {
    {"log.trace-costs", "a trace renders payload and metadata once each, at level 6 alone",
     ADVISED_ONLY, traceCosts, Use::LOAD_CODEC},
    {"log.no-trace-below", "below level 6 nothing is traced", "Events and the log", noTraceBelow,
     Use::LOAD_CODEC},
    {"log.no-drops-below", "below level 3 dropped messages are not logged", "Events and the log",
     noDropsBelow, Use::LOAD_CODEC},
    {"log.nothing-at-level-0", "at level 0 nothing is logged", "Events and the log", nothingAtAll},
    {"log.category", "category and label are made of the names, which are no formats",
     "Events and the log", category, Use::LOAD_CODEC},
    {"log.level-of-creation", "the level is the category's when the codec is made",
     "Events and the log", levelOfCreation, Use::LOAD_CODEC},
    {"log.silent-when-good", "without faults nothing is logged below 6 and nothing printed",
     "Events and the log", silentWhenGood, Use::LOAD_CODEC},
};

} // namespace

suite_t logChecks() { return LOG_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
