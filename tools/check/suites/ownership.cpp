// The owner of each block of the host, call by call.
#include <malloc.h>

#include <set>
#include <string>
#include <vector>

#include "standin/standin.h"
#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/counted_heap.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

void eventsOwnTheirBlocks(Trial& trial) {
  CheckFixture fixture(trial);
  for (const line_t& example : exampleLines()) {
    const BlockBalance balance;
    const std::vector<Message> converted = fixture.send(notificationOf(example));
    expectOwnership(trial, example.place(), balance.before(), converted);
  }
}

void aBatchOfEvents(Trial& trial) {
  CheckFixture fixture(trial);
  const std::vector<line_t> examples = exampleLines();
  const BlockBalance balance;
  std::vector<Message> batch;
  for (int i = 0; i < 3; ++i) {
    for (const line_t& example : examples) batch.push_back(notificationOf(example));
  }
  std::vector<Message> converted = fixture.send(std::move(batch));
  trial.equal("events", 3 * examples.size(), converted.size());
  expectOwnership(trial, "the events of a batch", balance.before(), converted);
  converted.clear();
  balance.expectBack(trial, "after freeing the events");
}

void droppedMessages(Trial& trial) {
  CheckFixture fixture(trial);
  for (const char* const payload :
       {R"({"id": "1"})", R"({"id": 1})", R"({"id": "1", "source": {"id": 7}, "text": "t"})",
        R"({"id": "1", "source": {"id": "7"}, "text": 1, "time": "2023-04-05T06:07:08Z",
            "type": "T", "deviceId": "d", "count": 1, "severity": "MAJOR", "status": "x"})",
        R"({"id": "1", "name": 1, "o6a_Position": {"lat": 1}})", R"("no map")", "[1, [2]]"}) {
    for (const char* const kind :
         {"events", "alarms", "measurements", "managedobjects", "operations", "inventory"}) {
      const std::string path = std::string("t/s/") + kind + "/1";
      const BlockBalance balance;
      fixture.codec.host.moves_out = false;
      std::vector<Message> batch;
      batch.push_back(notification(path.c_str(), std::string_view(payload)));
      fixture.codec.towardsHost(batch);
      expectOwnership(trial, std::string(kind) + " " + payload, balance.before(), batch);
    }
  }
}

void passedMessages(Trial& trial) {
  CheckFixture fixture(trial);
  const BlockBalance balance;
  std::vector<Message> batch;
  batch.emplace_back(value(R"({"a": [1, {"b": "c"}]})"));
  batch.push_back(notification(EVENT_PATH, data_t()));
  const std::vector<Message> kept = fixture.send(std::move(batch));
  expectOwnership(trial, "towards the host", balance.before(), kept);
}

void towardsTransport(Trial& trial) {
  CheckFixture fixture(trial);
  const BlockBalance balance;
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  batch.emplace_back(value(R"({"a": [1, {"b": "c"}]})"));
  fixture.codec.towardsTransport(batch);
  expectOwnership(trial, "towards the transport", balance.before(),
                  fixture.codec.transport.messages);
}

// A codec is the only owner of its blocks: its events survive it, and it survives them.
void eventsOutliveTheCodec(Trial& trial) {
  const BlockBalance balance;
  std::vector<Message> converted;
  {
    CheckFixture fixture(trial, R"({"tenantId": "t1", "towardsHostChannelPrefix": "p."})");
    std::vector<Message> batch;
    batch.push_back(plainEvent("1"));
    batch.push_back(plainMeasurement("2"));
    converted = fixture.send(std::move(batch));
  }
  if (!trial.equal("events", 2, converted.size())) return;
  for (const Message& event : converted) {
    trial.equal("tenantId", "t1", textAt(event.getPayload(), "tenantId"));
  }
  trial.equal("vlt.channel", "p.ostrovia.devices",
              textAt(converted[0].getMetadataMap(), "vlt.channel"));
  expectOwnership(trial, "after unloading", balance.before(), converted);
}

const void* blockOf(const data_t& payload, const char* key) {
  const data_t* const found = find(payload, key);
  return found == nullptr ? nullptr : found->underlying()->value.list;
}

void containersAreMoved(Trial& trial) {
  CheckFixture fixture(trial);
  Message message = plainEvent("1");
  set(message.getPayload(), "list", value(R"([1, "two"])"));
  set(message.getPayload(), "map", value(R"({"a": "b"})"));
  set(message.getPayload(), "buffer", buffer("bytes"));
  set(message.getPayload(), "custom", custom(7));
  constexpr const char* KEYS[] = {"list", "map", "buffer", "custom"};
  std::vector<const void*> blocks;
  for (const char* const key : KEYS) blocks.push_back(blockOf(message.getPayload(), key));
  const std::vector<Message> converted = fixture.send(std::move(message));
  if (!trial.equal("events", 1, converted.size())) return;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    trial.holds(blockOf(converted[0].getPayload(), KEYS[i]) == blocks[i], KEYS[i],
                "the notification's own block", "another one");
  }
}

// Memory of the C library's heap, which the host cannot count.
void heapStaysLevel(Trial& trial) {
  if (!countsHeap()) trial.skip("the sanitizer's heap does not count blocks in use");
  constexpr std::size_t BATCHES = 400;
  CheckFixture fixture(trial);
  const auto run = [&] {
    for (std::size_t i = 0; i < BATCHES; ++i) {
      std::vector<Message> batch;
      batch.push_back(plainEvent("1"));
      batch.push_back(plainEvent("2", UNKNOWN_PATH));
      batch.push_back(plainMeasurement("3"));
      fixture.send(std::move(batch));
      static_cast<void>(fixture.log.take());
    }
    fixture.codec.host.calls.clear();
    return mallinfo2().uordblks;
  };
  run();
  const std::size_t before = run();
  const std::size_t after = run();
  trial.holds(after < before + BATCHES * 16, "heap in use after 400 batches",
              "about " + std::to_string(before) + " bytes", std::to_string(after) + " bytes");
}

const check_t OWNERSHIP_CHECKS[] = {
    {"ownership.events", "the blocks of an event are all that a conversion leaves, each owned once",
     "Who owns what", eventsOwnTheirBlocks, Use::LOAD_CODEC},
    {"ownership.batch", "events of one batch share no block", "Who owns what", aBatchOfEvents,
     Use::LOAD_CODEC},
    {"ownership.dropped", "a dropped message owns all that is left of it", "Who owns what",
     droppedMessages, Use::LOAD_CODEC},
    {"ownership.passed", "messages that pass keep their blocks, no more and no fewer",
     "Who owns what", passedMessages},
    {"ownership.transport", "towards the transport no block is made or lost", "Who owns what",
     towardsTransport},
    {"ownership.events-outlive", "events outlive their codec and the library", "Who owns what",
     eventsOutliveTheCodec, Use::LOAD_CODEC},
    {"ownership.containers-are-moved", "lists, maps, buffers and custom objects are never copied",
     ADVISED_ONLY, containersAreMoved, Use::LOAD_CODEC},
    {"ownership.heap-stays-level", "batches leak nothing of the C library's heap", "Who owns what",
     heapStaysLevel},
};

} // namespace

suite_t ownershipChecks() { return OWNERSHIP_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
