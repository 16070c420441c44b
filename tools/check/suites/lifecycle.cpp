// A codec's life, in the host's order and in others that must do no harm.
#include <memory>
#include <string>
#include <vector>

#include "standin/standin.h"
#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// Sends a plain event and expects it at the codec's host link.
void expectWorks(Trial& trial, const std::string& when, Codec& codec) {
  Message message = plainEvent("1");
  trial.equal(when + ", sendBatchTowardsHost", 0, codec.towardsHost({&message, 1}));
  trial.equal(when + ", events", 1, codec.host.messages.size());
  codec.host.messages.clear();
}

void inOrder(Trial& trial) {
  const BlockBalance balance;
  {
    CheckFixture fixture(trial);
    trial.equal("start", 0, fixture.codec.start());
    trial.equal("hostReady", 0, fixture.codec.hostReady());
    expectWorks(trial, "after hostReady", fixture.codec);
    Message down(value("5"));
    trial.equal("sendBatchTowardsTransport", 0, fixture.codec.towardsTransport({&down, 1}));
    trial.equal("messages at the transport", 1, fixture.codec.transport.messages.size());
    trial.equal("shutdown", 0, fixture.codec.shutdown());
    trial.equal("destroy", 0, fixture.codec.destroy());
    fixture.expectLog("a life", {});
  }
  balance.expectBack(trial, "after unloading");
}

void outOfOrder(Trial& trial) {
  CheckFixture fixture(trial);
  trial.equal("shutdown before start", 0, fixture.codec.shutdown());
  trial.equal("hostReady before start", 0, fixture.codec.hostReady());
  trial.equal("start", 0, fixture.codec.start());
  trial.equal("a second start", 0, fixture.codec.start());
  trial.equal("shutdown", 0, fixture.codec.shutdown());
  trial.equal("a second shutdown", 0, fixture.codec.shutdown());
  expectWorks(trial, "after shutdown", fixture.codec);
  fixture.expectLog("out of order", {});
}

void batchBeforeStart(Trial& trial) {
  CheckFixture fixture(trial);
  expectWorks(trial, "before start", fixture.codec);
}

void batchBeforeLinks(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  Codec codec(trial, library, configured(trial));
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  batch.push_back(plainEvent("2", UNKNOWN_PATH));
  trial.equal("sendBatchTowardsHost", 0, codec.towardsHost(batch));
  trial.equal("sendBatchTowardsTransport", 0, codec.towardsTransport(batch));
  if (!trial.isCodec()) {
    trial.equal("log", lines_t{}, log.take());
    return;
  }
  trial.equal("type of the event in the batch", "com.tivra.ostrovia.Event",
              textAt(batch[0].getMetadataMap(), "vlt.type"));
  trial.equal("log",
              lines_t{dropped(" ('id' = '2'): Unrecognised Pulsar message type: 'inventory'")},
              log.take());
}

void startWithoutLinks(Trial& trial) {
  const PluginLibrary library = load(trial);
  Codec codec(trial, library, configured(trial));
  trial.equal("start", 0, codec.start());
  trial.equal("hostReady", 0, codec.hostReady());
  trial.equal("shutdown", 0, codec.shutdown());
}

void hooksCallNothing(Trial& trial) {
  CheckFixture fixture(trial);
  standin_reset_calls();
  fixture.codec.start();
  fixture.codec.hostReady();
  fixture.codec.shutdown();
  trial.equal("calls of host functions", 0, standin_calls_total());
}

void destroyAtOnce(Trial& trial) {
  const PluginLibrary library = load(trial);
  const BlockBalance balance;
  for (int i = 0; i < 50; ++i) {
    Codec codec(trial, library,
                configured(trial, R"({"tenantId": "t1", "towardsHostChannelPrefix": "p.",
                                      "measurementSplittingChannel": "m"})"));
    trial.equal("created", true, codec.made());
    trial.equal("destroy", 0, codec.destroy());
  }
  balance.expectBack(trial, "after 50 codecs");
}

void destroySetsNoStatus(Trial& trial) {
  CheckFixture fixture(trial);
  standin_reset_calls();
  fixture.codec.destroy();
  trial.equal("calls of vlt_set_user_status_map", 0, standin_calls(STANDIN_SET_USER_STATUS_MAP));
}

void linksAreReplaced(Trial& trial) {
  CheckFixture fixture(trial);
  Link second;
  trial.equal("setNextTowardsHost", 0, fixture.codec.setNextTowardsHost(&second, Link::take));
  fixture.send(plainEvent("1"));
  trial.equal("batches at the first link", 0, fixture.codec.host.calls.size());
  trial.equal("batches at the second link", 1, second.calls.size());
}

void sameNames(Trial& trial) {
  CheckFixture fixture(trial);
  auto twin = std::make_unique<Codec>(trial, fixture.loaded, value(R"({"tenantId": "t2"})"));
  twin->link();
  Message message = plainEvent("1");
  twin->towardsHost({&message, 1});
  if (trial.equal("events of the second codec", 1, twin->host.messages.size())) {
    trial.equal("tenant of the second codec", "t2",
                textAt(twin->host.messages[0].getPayload(), "tenantId"));
  }
  twin.reset();
  const std::vector<Message> events = fixture.send(plainEvent("1"));
  if (trial.equal("events of the first codec", 1, events.size())) {
    trial.equal("tenant of the first codec", "t1", textAt(events[0].getPayload(), "tenantId"));
  }
  fixture.expectLog("two codecs of one name", {});
}

void keptApart(Trial& trial) {
  CheckFixture fixture(trial, R"({"tenantId": "t1", "towardsHostChannelPrefix": "a."})");
  Codec other(trial, fixture.loaded,
              value(R"({"tenantId": "t2", "towardsHostChannelPrefix": "b."})"), PLUGIN_NAME,
              "other");
  other.link();
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  batch.push_back(plainEvent("2", UNKNOWN_PATH));
  other.towardsHost(batch);
  if (trial.equal("events of the other codec", 1, other.host.messages.size())) {
    const Message& event = other.host.messages[0];
    trial.equal("channel of the other codec", "b.ostrovia.devices",
                textAt(event.getMetadataMap(), "vlt.channel"));
    trial.equal("tenant of the other codec", "t2", textAt(event.getPayload(), "tenantId"));
  }
  trial.equal("batches at the first codec's link", 0, fixture.codec.host.calls.size());
  fixture.expectLog(
      "the other codec",
      {"3 connectivity.codec.other <connectivity.codec.other> Error when transforming "
       "message towards host ('id' = '2'): Unrecognised Pulsar message type: "
       "'inventory'"});
  const std::vector<Message> events = fixture.send(plainEvent("1"));
  if (trial.equal("events of the first codec", 1, events.size())) {
    trial.equal("channel of the first codec", "a.ostrovia.devices",
                textAt(events[0].getMetadataMap(), "vlt.channel"));
  }
}

const check_t LIFECYCLE_CHECKS[] = {
    {"lifecycle.in-order", "every call succeeds in the host's order, and nothing is left",
     "What the plug-in offers", inOrder},
    {"lifecycle.out-of-order", "hooks succeed in any order and twice, and the codec stays usable",
     ADVISED_ONLY, outOfOrder},
    {"lifecycle.batch-before-start", "a batch before start goes the same way as any other",
     ADVISED_ONLY, batchBeforeStart},
    {"lifecycle.batch-before-links", "a batch before links are set goes nowhere, without an error",
     "Batches", batchBeforeLinks},
    {"lifecycle.start-without-links", "hooks succeed without links", ADVISED_ONLY,
     startWithoutLinks},
    {"lifecycle.hooks-call-nothing", "start, hostReady and shutdown call no host function",
     ADVISED_ONLY, hooksCallNothing, Use::LOAD_CODEC},
    {"lifecycle.destroy-at-once", "codecs that are destroyed at once leave nothing",
     "Who owns what", destroyAtOnce},
    {"lifecycle.destroy-sets-no-status", "destroy hands no user status over",
     "What the host offers", destroySetsNoStatus, Use::LOAD_CODEC},
    {"lifecycle.links-are-replaced", "a new link takes the place of the one before",
     "Who owns what", linksAreReplaced},
    {"lifecycle.same-names", "two codecs of the same names do not disturb each other",
     "What the plug-in offers", sameNames, Use::LOAD_CODEC},
    {"lifecycle.kept-apart", "settings, links and log of two codecs are kept apart",
     "What the plug-in offers", keptApart, Use::LOAD_CODEC},
};

} // namespace

suite_t lifecycleChecks() { return LIFECYCLE_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
