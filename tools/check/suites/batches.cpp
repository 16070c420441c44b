// Batches: the kept messages, their order, the places of the dropped ones, the call of the link.
#include <stdexcept>
#include <string>
#include <vector>

#include "standin/standin.h"
#include "tools/check/chain.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// The ids of messages, in their order.
std::string idsOf(const std::vector<Message>& messages) {
  std::string ids;
  for (const Message& message : messages) {
    if (!ids.empty()) ids += ' ';
    ids += textAt(message.getPayload(), "id");
  }
  return ids;
}

// Good and failing messages in turn, with the ids 1, 2, 3 …
std::vector<Message> mixture() {
  std::vector<Message> batch;
  batch.push_back(plainEvent("1", UNKNOWN_PATH));
  batch.push_back(plainEvent("2"));
  batch.push_back(notification(EVENT_PATH, std::string_view(R"({"id": "3"})")));
  batch.push_back(plainMeasurement("4"));
  batch.emplace_back(value(R"({"id": "5"})"));
  batch.push_back(plainEvent("6", UNKNOWN_PATH));
  batch.push_back(plainEvent("7"));
  return batch;
}

const char* const UNKNOWN_KIND = "Unrecognised Pulsar message type: 'inventory'";

std::string unknownKind(const char* id) {
  return dropped(std::string(" ('id' = '") + id + "'): " + UNKNOWN_KIND);
}

void empty(Trial& trial) {
  Chain chain(trial);
  std::vector<Message> none(1);
  trial.equal("sendBatchTowardsHost", 0, chain.codec.towardsHost({none.data(), 0}));
  if (!trial.equal("calls of the link", 1, chain.codec.host.calls.size())) return;
  const Link::call_t call = chain.codec.host.calls[0];
  trial.equal("messages at the link", 0, call.end - call.start);
  chain.expectLog("an empty batch", {});
}

void one(Trial& trial) {
  Chain chain(trial);
  const std::vector<Message> events = chain.send(plainEvent("1"));
  trial.equal("calls of the link", 1, chain.codec.host.calls.size());
  if (!trial.equal("events", 1, events.size())) return;
  data_t expected = plainEventPayload("1");
  set(expected, "tenantId", data_t("t1"));
  same(trial, "payload", expected, events[0].getPayload());
}

void allDropped(Trial& trial) {
  Chain chain(trial);
  std::vector<Message> batch;
  for (const char* const id : {"1", "2", "3"}) batch.push_back(plainEvent(id, UNKNOWN_PATH));
  trial.equal("sendBatchTowardsHost", 0, chain.codec.towardsHost(batch));
  if (trial.equal("calls of the link", 1, chain.codec.host.calls.size())) {
    const Link::call_t call = chain.codec.host.calls[0];
    trial.equal("messages at the link", 0, call.end - call.start);
    trial.holds(reinterpret_cast<const Message*>(call.start) == batch.data(), "start of the range",
                "the batch's own", "another address");
  }
  chain.expectLog("three dropped", {unknownKind("1"), unknownKind("2"), unknownKind("3")});
}

void many(Trial& trial) {
  constexpr int COUNT = 5000;
  Chain chain(trial);
  std::vector<Message> batch;
  std::string expected;
  for (int i = 0; i < COUNT; ++i) {
    const std::string id = std::to_string(i);
    batch.push_back(plainEvent(id, i % 7 == 3 ? UNKNOWN_PATH : EVENT_PATH));
    if (i % 7 == 3) continue;
    if (!expected.empty()) expected += ' ';
    expected += id;
  }
  const std::vector<Message> events = chain.send(std::move(batch));
  trial.equal("calls of the link", 1, chain.codec.host.calls.size());
  trial.holds(idsOf(events) == expected, "ids at the link", "all that convert, in order",
              std::to_string(events.size()) + " others, or in another order");
  trial.equal("log lines", (COUNT + 3) / 7, chain.log.take().size());
}

void order(Trial& trial) {
  Chain chain(trial);
  const std::vector<Message> kept = chain.send(mixture());
  trial.equal("ids at the link", "2 4 5 7", idsOf(kept));
  chain.expectLog("the dropped ones, in their order",
                  {unknownKind("1"),
                   dropped(" ('id' = '3'): Required key 'source' missing from message payload"),
                   unknownKind("6")});
}

void linkOnce(Trial& trial) {
  Chain chain(trial);
  chain.codec.host.moves_out = false;
  std::vector<Message> batch = mixture();
  chain.codec.towardsHost(batch);
  if (!trial.equal("calls of the link", 1, chain.codec.host.calls.size())) return;
  const Link::call_t call = chain.codec.host.calls[0];
  const auto* const front = reinterpret_cast<const vlt_underlying_message_t*>(batch.data());
  trial.holds(call.start == front, "start of the range", "the front of the batch",
              "another address");
  trial.equal("messages at the link", 4, call.end - call.start);
  trial.equal("batches at the transport's link", 0, chain.codec.transport.calls.size());
}

void droppedBehind(Trial& trial) {
  Chain chain(trial);
  chain.codec.host.moves_out = false;
  std::vector<Message> batch = mixture();
  chain.codec.towardsHost(batch);
  std::string kept;
  for (std::size_t i = 0; i < 4; ++i) kept += textAt(batch[i].getPayload(), "id");
  trial.equal("ids in front", "2457", kept);
  std::string left; // in any order
  for (const char* const id : {"1", "3", "6"}) {
    for (std::size_t i = 4; i < batch.size(); ++i) {
      if (textAt(batch[i].getPayload(), "id") == id) left += id;
    }
  }
  trial.equal("ids of the dropped, sorted", "136", left);
}

void droppedHoldIds(Trial& trial) {
  Chain chain(trial);
  chain.codec.host.moves_out = false;
  std::vector<Message> batch;
  batch.push_back(plainEvent("1", UNKNOWN_PATH));
  chain.codec.towardsHost(batch);
  same(trial, "payload with a text id", value(R"({"id": "1"})"), batch[0].getPayload());
  trial.equal("its metadata entries", 0, batch[0].getMetadataMap().size());
  batch[0] = notification(UNKNOWN_PATH, std::string_view(R"({"id": 1, "x": 2})"));
  chain.codec.towardsHost(batch);
  trial.holds(batch[0].getPayload().empty(), "payload with another id", "an empty value",
              shown(batch[0].getPayload()));
  batch[0] = notification(EVENT_PATH, std::string_view(R"("no map")"));
  chain.codec.towardsHost(batch);
  same(trial, "payload that is no map", value(R"("no map")"), batch[0].getPayload());
  trial.equal("its path", EVENT_PATH, textAt(batch[0].getMetadataMap(), "pulsarPath"));
}

void forbiddenCalls(Trial& trial) {
  Chain chain(trial);
  chain.codec.start();
  chain.codec.hostReady();
  std::vector<Message> batch = mixture();
  std::vector<Message> down = mixture();
  standin_reset_calls();
  chain.codec.towardsHost(batch);
  chain.codec.towardsTransport(down);
  trial.equal("calls of vlt_get_log_level", 0, standin_calls(STANDIN_GET_LOG_LEVEL));
  trial.equal("calls of vlt_set_user_status_map", 0, standin_calls(STANDIN_SET_USER_STATUS_MAP));
}

void throwingLink(Trial& trial) {
  Chain chain(trial);
  chain.codec.setNextTowardsHost(nullptr,
                                 [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
                                   throw std::runtime_error("jam");
                                 });
  Message message = plainEvent("1");
  trial.equal("sendBatchTowardsHost", 1, chain.codec.towardsHost({&message, 1}));
  chain.expectLog("a link that throws", {line(3, "Exception from sendBatchTowardsHost: jam")});
  chain.codec.setNextTowardsHost(&chain.codec.host, Link::take);
  trial.equal("events afterwards", 1, chain.send(plainEvent("2")).size());
}

void nothingKept(Trial& trial) {
  Chain chain(trial);
  for (int i = 0; i < 20; ++i) {
    trial.equal("ids at the link", "2 4 5 7", idsOf(chain.send(mixture())));
    trial.equal("log lines", 3, chain.log.take().size());
  }
}

constexpr check_t BATCHES_CHECKS[] = {
    {"batches.empty", "an empty batch reaches the link, as an empty range", empty},
    {"batches.one", "a batch of one is converted", one},
    {"batches.all-dropped", "with every message dropped, the link gets an empty range", allDropped},
    {"batches.many", "of 5000 messages every good one arrives, in order", many},
    {"batches.order", "kept messages keep their order, dropped ones are reported in theirs", order},
    {"batches.link-once", "the link is called once a batch, with the front of the caller's array",
     linkOnce},
    {"batches.dropped-last", "dropped messages come after the kept ones", droppedBehind},
    {"batches.dropped-hold-ids",
     "a dropped message holds its id and nothing else (docs/architecture.md)", droppedHoldIds},
    {"batches.forbidden-calls", "a batch asks for no log level and sets no user status",
     forbiddenCalls},
    {"batches.throwing-link", "a link that throws is reported, and the codec stays usable",
     throwingLink},
    {"batches.nothing-kept", "a batch leaves no trace in the next one", nothingKept},
};

} // namespace

suite_t batchesChecks() { return BATCHES_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
