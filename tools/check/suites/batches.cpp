// Batches: many messages at once, the links that they reach, and the calls that a batch must not
// make. Which messages are kept or dropped is in the conformance files.
#include <stdexcept>
#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "ndjson/make_blocks.hpp"
#include "standin/standin.h"
#include "tools/check/check_fixture.hpp"
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

void many(Trial& trial) {
  constexpr int COUNT = 5000;
  CheckFixture fixture(trial);
  std::vector<Message> batch;
  std::string expected;
  for (int i = 0; i < COUNT; ++i) {
    const std::string id = std::to_string(i);
    batch.push_back(plainEvent(id, i % 7 == 3 ? UNKNOWN_PATH : EVENT_PATH));
    if (i % 7 == 3) continue;
    if (!expected.empty()) expected += ' ';
    expected += id;
  }
  const std::vector<Message> events = fixture.send(std::move(batch));
  trial.equal("calls of the link", 1, fixture.codec.host.calls.size());
  trial.holds(idsOf(events) == expected, "ids at the link", "all that convert, in order",
              std::to_string(events.size()) + " others, or in another order");
  trial.equal("log lines", (COUNT + 3) / 7, fixture.log.take().size());
}

void forbiddenCalls(Trial& trial) {
  CheckFixture fixture(trial);
  fixture.codec.start();
  fixture.codec.hostReady();
  std::vector<Message> batch = mixture();
  std::vector<Message> down = mixture();
  standin_reset_calls();
  fixture.codec.towardsHost(batch);
  fixture.codec.towardsTransport(down);
  trial.equal("calls of vlt_get_log_level", 0, standin_calls(STANDIN_GET_LOG_LEVEL));
  trial.equal("calls of vlt_set_user_status_map", 0, standin_calls(STANDIN_SET_USER_STATUS_MAP));
}

void throwingLink(Trial& trial) {
  CheckFixture fixture(trial);
  fixture.codec.setNextTowardsHost(nullptr,
                                   [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
                                     throw std::runtime_error("jam");
                                   });
  Message message = plainEvent("1");
  trial.equal("sendBatchTowardsHost", 1, fixture.codec.towardsHost({&message, 1}));
  fixture.expectLog("a link that throws", {line(3, "Exception from sendBatchTowardsHost: jam")});
  fixture.codec.setNextTowardsHost(&fixture.codec.host, Link::take);
  trial.equal("events afterwards", 1, fixture.send(plainEvent("2")).size());
}

void nothingKept(Trial& trial) {
  CheckFixture fixture(trial);
  for (int i = 0; i < 20; ++i) {
    trial.equal("ids at the link", "2 4 5 7", idsOf(fixture.send(mixture())));
    trial.equal("log lines", 3, fixture.log.take().size());
  }
}

void ownHandle(Trial& trial) {
  CheckFixture fixture(trial);
  Link other;
  fixture.codec.setNextTowardsTransport(&other, Link::take);
  std::vector<Message> batch = mixture();
  fixture.codec.towardsTransport(batch);
  trial.equal("calls with a handle that nobody set", 0, Link::strayCalls());
  trial.equal("messages at the link whose handle was set", batch.size(), other.messages.size());
}

void throwingTransportLink(Trial& trial) {
  CheckFixture fixture(trial);
  fixture.codec.setNextTowardsTransport(
      nullptr, [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) { throw 7; });
  Message message(value("1"));
  trial.equal("sendBatchTowardsTransport", 1, fixture.codec.towardsTransport({&message, 1}));
  fixture.expectLog("a link that throws a number",
                    {line(3, "Unknown exception from sendBatchTowardsTransport")});
}

// Of a field; its payload is one level more, the deepest that ostrovia-replay reads.
constexpr int DEPTH = JsonReader::MAX_DEPTH - 1;

data_t nestedMaps() {
  data_t deep;
  for (int i = 0; i < DEPTH; ++i) {
    map_t around;
    around[data_t("d")] = std::move(deep);
    deep = data_t(std::move(around));
  }
  return deep;
}

data_t nestedLists() {
  data_t deep;
  for (int i = 0; i < DEPTH; ++i) {
    std::vector<data_t> around(1);
    around[0] = std::move(deep);
    deep = data_t(makeList(std::move(around)));
  }
  return deep;
}

// A message nests as deep as its sender likes, without consuming stack.
void deepNesting(Trial& trial) {
  CheckFixture fixture(trial, R"({"tenantId": "t1"})", 6);
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  set(batch[0].getPayload(), "deep", nestedMaps());
  batch.push_back(plainEvent("2"));
  set(batch[1].getPayload(), "deep", nestedLists());
  batch.push_back(plainEvent("3", UNKNOWN_PATH));
  set(batch[2].getPayload(), "deep", nestedMaps());
  const int arriving = trial.isCodec() ? 2 : 3;
  trial.equal("events", arriving, fixture.send(std::move(batch)).size());
}

const check_t BATCHES_CHECKS[] = {
    {"batches.many", "of 5000 messages every good one arrives, in order", "Batches", many,
     Use::LOAD_CODEC},
    {"batches.forbidden-calls", "a batch asks for no log level and sets no user status",
     "What the host offers", forbiddenCalls, Use::LOAD_CODEC},
    {"batches.throwing-link", "a link that throws is reported, and the codec stays usable",
     "Batches", throwingLink},
    {"batches.nothing-kept", "a batch leaves no trace in the next one", "Batches", nothingKept,
     Use::LOAD_CODEC},
    {"batches.own-handle", "a link gets the handle that was set with it", "Who owns what",
     ownHandle},
    {"batches.throwing-transport-link", "a link that throws anything is reported at level 3",
     "Batches", throwingTransportLink},
    {"batches.deep-nesting", "a payload of 200000 levels does not consume stack",
     "Values and messages", deepNesting},
};

} // namespace

suite_t batchesChecks() { return BATCHES_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
