// The log: levels, categories and the cost of a trace. Its lines are in the conformance files.
#include <string>
#include <vector>

#include "standin/standin.h"
#include "tools/check/chain.hpp"
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
  Chain chain(trial, CONFIGURATION, TRACE);
  standin_reset_calls();
  chain.send(plainEvent("1"));
  trial.equal("strings rendered for one notification", 2, standin_calls(STANDIN_DATA_TO_STRING));
}

void noTraceBelow(Trial& trial) {
  Chain chain(trial, CONFIGURATION, TRACE - 1);
  standin_reset_calls();
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  batch.push_back(unknown("2"));
  chain.send(std::move(batch));
  trial.equal("strings rendered", 0, standin_calls(STANDIN_DATA_TO_STRING));
  chain.expectLog("at level 5", {unknownLine("2")});
}

void noDropsBelow(Trial& trial) {
  Chain chain(trial, CONFIGURATION, 2);
  standin_reset_calls();
  chain.send(unknown("1"));
  trial.equal("calls of vlt_log_at", 0, standin_calls(STANDIN_LOG_AT));
  chain.expectLog("a dropped message at level 2", {});
  chain.codec.setNextTowardsHost(nullptr, nullptr);
  trial.equal("lines for a refused link at level 2", 1, chain.log.take().size());
}

void nothingAtAll(Trial& trial) {
  Chain chain(trial, CONFIGURATION, 0);
  chain.send(unknown("1"));
  chain.codec.setNextTowardsHost(nullptr, nullptr);
  chain.expectLog("at level 0", {});
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
  Chain chain(trial, CONFIGURATION, TRACE - 1);
  standin_set_default_log_level(TRACE);
  chain.send(plainEvent("1"));
  chain.expectLog("raised after creation", {});
  standin_set_log_level("connectivity.codec.chain", TRACE);
  standin_set_default_log_level(0);
  Codec codec(trial, chain.loaded, chain.configuration);
  codec.link();
  Message message = plainEvent("1");
  codec.towardsHost({&message, 1});
  trial.equal("lines of a codec whose category has level 6", 1, chain.log.take().size());
}

void silentWhenGood(Trial& trial) {
  Chain chain(trial, CONFIGURATION, TRACE - 1);
  chain.codec.start();
  chain.codec.hostReady();
  std::vector<Message> batch;
  for (const line_t& example : exampleLines()) batch.push_back(notificationOf(example));
  chain.send(std::move(batch));
  chain.codec.shutdown();
  chain.codec.destroy();
  chain.expectLog("a life without faults", {});
  trial.equal("standard output and error", "", trial.printed());
}

const check_t LOG_CHECKS[] = {
    {"log.trace-costs", "a trace renders payload and metadata once each", traceCosts},
    {"log.no-trace-below", "below level 6 nothing is rendered and nothing traced", noTraceBelow},
    {"log.no-drops-below", "below level 3 dropped messages are not logged, failures of calls are",
     noDropsBelow},
    {"log.nothing-at-level-0", "at level 0 nothing is logged", nothingAtAll},
    {"log.category", "category and label are made of the names, which are no formats", category},
    {"log.level-of-creation", "the level is the category's when the codec is made",
     levelOfCreation},
    {"log.silent-when-good", "without faults nothing is logged below 6 and nothing printed",
     silentWhenGood},
};

} // namespace

suite_t logChecks() { return LOG_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
