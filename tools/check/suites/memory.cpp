// Memory that runs out: the n-th allocation refused, for every n until none is left to refuse.
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

// Far beyond any need: the loop stops here for a library that never comes to an end.
constexpr std::uint64_t MOST_ALLOCATIONS = 2000;

// Runs `attempt` with the first allocation refused, then the second, and so on, until it ran
// without a refusal; standin_failed_allocations tells `attempt` whether there was one.
template <class Attempt>
void withEachRefused(Trial& trial, const Attempt& attempt) {
  for (std::uint64_t n = 1; n <= MOST_ALLOCATIONS; ++n) {
    attempt(n);
    if (standin_failed_allocations() == 0) return;
    if (trial.mismatches() > 0) return; // the next ones would say the same
  }
  trial.holds(false, "allocations", "an end", "more than " + std::to_string(MOST_ALLOCATIONS));
}

std::string nth(std::uint64_t n) { return "allocation " + std::to_string(n) + " refused"; }

constexpr const char* SETTINGS = R"({"tenantId": "t1", "towardsHostChannelPrefix": "p.",
                                      "measurementSplittingChannel": "m"})";

// A build may do with a default or without a block that was refused; it may also lose its line.
void creation(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  const data_t settings = configured(trial, SETTINGS);
  withEachRefused(trial, [&](std::uint64_t n) {
    const BlockBalance balance;
    standin_fail_allocation(n);
    Codec codec(trial, library, settings);
    standin_fail_allocation(0);
    const lines_t lines = log.take();
    const lines_t refusal{line(2, "Exception from create: std::bad_alloc")};
    if (codec.made() || !lines.empty()) {
      trial.equal(nth(n) + ", log", codec.made() ? lines_t{} : refusal, lines);
    }
    trial.holds(codec.made() || standin_failed_allocations() > 0, nth(n), "a codec", "none");
    codec.destroy();
    balance.expectBack(trial, nth(n));
  });
}

void creationIsRefused(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  const data_t settings = configured(trial, SETTINGS);
  withEachRefused(trial, [&](std::uint64_t n) {
    standin_fail_allocation(n);
    Codec codec(trial, library, settings);
    standin_fail_allocation(0);
    const bool refused = standin_failed_allocations() > 0;
    trial.equal(nth(n) + ", codec made", !refused, codec.made());
    trial.equal(nth(n) + ", log lines", refused ? 1 : 0, log.take().size());
  });
}

std::string reportOf(const Message& notification) {
  const std::string id = textAt(notification.getPayload(), "id");
  return dropped(id.empty() ? ": std::bad_alloc" : " ('id' = '" + id + "'): std::bad_alloc");
}

// Before or after the message's turn: its own is the only one that may be lost.
void conversions(Trial& trial) {
  for (const line_t& example : exampleLines()) {
    CheckFixture fixture(trial);
    withEachRefused(trial, [&](std::uint64_t n) {
      const std::string where = example.place() + ", " + nth(n);
      const BlockBalance balance;
      std::vector<Message> batch;
      batch.push_back(notificationOf(example));
      const std::string report = reportOf(batch[0]);
      standin_fail_allocation(n);
      const int result = fixture.codec.towardsHost(batch);
      standin_fail_allocation(0);
      const bool refused = standin_failed_allocations() > 0;
      trial.equal(where + ", result", 0, result);
      trial.equal(where + ", events", refused ? 0 : 1, fixture.codec.host.messages.size());
      trial.equal(where + ", log", refused ? lines_t{report} : lines_t{}, fixture.log.take());
      for (Message& event : fixture.codec.host.messages) batch.push_back(std::move(event));
      fixture.codec.host.messages.clear();
      expectOwnership(trial, where, balance.before(), batch);
    });
  }
}

void theBatchGoesOn(Trial& trial) {
  CheckFixture fixture(trial);
  withEachRefused(trial, [&](std::uint64_t n) {
    std::vector<Message> batch;
    for (const char* const id : {"1", "2", "3"}) batch.push_back(plainEvent(id));
    standin_fail_allocation(n);
    fixture.codec.towardsHost(batch);
    standin_fail_allocation(0);
    const bool refused = standin_failed_allocations() > 0;
    trial.equal(nth(n) + ", events", refused ? 2 : 3, fixture.codec.host.messages.size());
    fixture.codec.host.messages.clear();
    trial.equal(nth(n) + ", log lines", refused ? 1 : 0, fixture.log.take().size());
  });
}

// Dropping takes memory of its own; a report may be short, but the message must go.
void dropping(Trial& trial) {
  CheckFixture fixture(trial, R"({"tenantId": "t1"})", 6);
  for (std::uint64_t n = 1; n <= 40; ++n) {
    const BlockBalance balance;
    std::vector<Message> batch;
    batch.push_back(plainEvent("1", UNKNOWN_PATH));
    standin_fail_allocation(n);
    trial.equal(nth(n) + ", result", 0, fixture.codec.towardsHost(batch));
    standin_fail_allocation(0);
    trial.equal(nth(n) + ", events", 0, fixture.codec.host.messages.size());
    expectOwnership(trial, nth(n), balance.before(), batch);
    static_cast<void>(fixture.log.take());
  }
}

void noneAtAll(Trial& trial) {
  CheckFixture fixture(trial);
  const BlockBalance balance;
  std::vector<Message> batch;
  for (const char* const id : {"1", "2"}) batch.push_back(plainEvent(id));
  standin_fail_allocations_from(1);
  const int result = fixture.codec.towardsHost(batch);
  standin_fail_allocation(0);
  trial.equal("sendBatchTowardsHost", 0, result);
  trial.equal("events", 0, fixture.codec.host.messages.size());
  fixture.expectLog("both reported, with their ids", {dropped(" ('id' = '1'): std::bad_alloc"),
                                                      dropped(" ('id' = '2'): std::bad_alloc")});
  expectOwnership(trial, "without any memory", balance.before(), batch);
  trial.equal("events afterwards", 1, fixture.send(plainEvent("3")).size());
}

void fromThenOn(Trial& trial) {
  CheckFixture fixture(trial);
  const std::vector<line_t> examples = exampleLines();
  for (std::uint64_t n = 1; n <= 60; ++n) {
    const BlockBalance balance;
    std::vector<Message> batch;
    batch.reserve(examples.size());
    for (const line_t& example : examples) batch.push_back(notificationOf(example));
    standin_fail_allocations_from(n);
    const int result = fixture.codec.towardsHost(batch);
    standin_fail_allocation(0);
    trial.equal(nth(n) + " and all after it, result", 0, result);
    for (Message& event : fixture.codec.host.messages) batch.push_back(std::move(event));
    fixture.codec.host.messages.clear();
    expectOwnership(trial, nth(n) + " and all after it", balance.before(), batch);
    static_cast<void>(fixture.log.take());
  }
}

void passing(Trial& trial) {
  CheckFixture fixture(trial);
  std::vector<Message> batch;
  batch.emplace_back(value(R"({"a": 1})"));
  batch.push_back(notification(EVENT_PATH, data_t()));
  standin_fail_allocations_from(1);
  trial.equal("towards the host", 0, fixture.codec.towardsHost(batch));
  standin_fail_allocation(0);
  trial.equal("messages at the host", 2, fixture.codec.host.messages.size());
  trial.equal("allocations refused", 0, standin_failed_allocations());
}

const check_t MEMORY_CHECKS[] = {
    {"memory.creation", "create loses nothing at any refused allocation", "When memory runs out",
     creation},
    {"memory.creation-refused", "create takes no default in place of a block that is refused",
     ADVISED_ONLY, creationIsRefused},
    {"memory.conversions",
     "a conversion fails cleanly at any refused allocation, for all five kinds",
     "When memory runs out", conversions, Use::LOAD_CODEC},
    {"memory.batch-goes-on", "memory that ends once costs one message of a batch",
     "When memory runs out", theBatchGoesOn, Use::LOAD_CODEC},
    {"memory.dropping", "a message is dropped even when there is no memory to report it",
     "When memory runs out", dropping, Use::LOAD_CODEC},
    {"memory.none-at-all", "without any memory a batch is dropped, and the codec stays usable",
     "When memory runs out", noneAtAll, Use::LOAD_CODEC},
    {"memory.from-then-on", "memory that ends for good leaves nothing owned twice or by nobody",
     "When memory runs out", fromThenOn, Use::LOAD_CODEC},
    {"memory.passing", "messages that only pass need no memory", ADVISED_ONLY, passing},
};

} // namespace

suite_t memoryChecks() { return MEMORY_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
