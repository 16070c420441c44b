// Notifications mixed and damaged at random. The result of each is not known, but batches may make
// no difference: messages sent together give the same events and log lines as one by one.
#include <random>
#include <string>
#include <vector>

#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// The same on every machine for the same seed: the library's distributions would not be.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  std::size_t below(std::size_t end) { return static_cast<std::size_t>(engine_() % end); }

 private:
  std::mt19937_64 engine_;
};

constexpr const char* KEYS[] = {
    "id",           "source",       "text",        "time",
    "type",         "count",        "status",      "severity",
    "name",         "deviceId",     "tenantId",    "measurements",
    "position",     "creationTime", "lastUpdated", "firstOccurrenceTime",
    "o6a_Position", "childDevices", "fragment"};

constexpr const char* VALUES[] = {"null",
                                  "true",
                                  "7",
                                  "-1.5",
                                  R"("")",
                                  R"("text")",
                                  R"("MAJOR")",
                                  R"("ACTIVE")",
                                  R"("PENDING")",
                                  R"("2023-04-05T06:07:08.9Z")",
                                  R"("2023-04-05T06:07:08.999+14:00")",
                                  "[]",
                                  "{}",
                                  R"({"id": "9"})",
                                  R"({"id": 9})",
                                  R"({"s": {"value": 1, "units": "C"}})",
                                  R"({"s": {"value": "1 m"}, "t": {"value": "x"}})",
                                  R"([{"a": [null, "b"]}])",
                                  R"({"lat": "1", "lng": {}, "alt": 2})"};

constexpr const char* SOME_PATHS[] = {"t/s/events/1",
                                      "t/s/alarms/1",
                                      "t/s/measurements/1",
                                      "t/s/managedobjects/1",
                                      "t/s/operations/1",
                                      "t/s/inventory/1",
                                      "events",
                                      ""};

template <class T, std::size_t N>
const T& pick(Random& random, const T (&array)[N]) {
  return array[random.below(N)];
}

void damage(Random& random, Message& message) {
  data_t& payload = message.getPayload();
  for (std::size_t times = random.below(4); times > 0; --times) {
    const char* const key = pick(random, KEYS);
    if (random.below(3) == 0) {
      auto& fields = payload.get<map_t>();
      fields.erase(fields.find(data_t(key)));
    } else {
      set(payload, key, value(pick(random, VALUES)));
    }
  }
  if (random.below(6) == 0)
    message.getMetadataMap()[data_t("pulsarPath")] = data_t(pick(random, SOME_PATHS));
  if (random.below(12) == 0) message.getMetadataMap() = map_t();
  if (random.below(12) == 0) payload = value(pick(random, VALUES));
}

Message randomMessage(Random& random, const std::vector<line_t>& examples, std::size_t number) {
  Message message = notificationOf(examples[random.below(examples.size())]);
  set(message.getPayload(), "id", data_t(std::to_string(number).c_str()));
  if (random.below(2) == 0) damage(random, message);
  return message;
}

struct results_t {
  lines_t events; // as JSON
  lines_t log;
};

// Batches of one for a largest size of 1.
results_t sendAll(Trial& trial, std::size_t count, std::size_t largest) {
  Random messages(trial.seed());
  Random sizes(trial.seed() + 1);
  CheckFixture fixture(trial);
  const std::vector<line_t> examples = exampleLines();
  results_t results;
  for (std::size_t number = 0; number < count;) {
    const BlockBalance balance;
    std::vector<Message> batch;
    const std::size_t size = 1 + sizes.below(largest);
    for (; batch.size() < size && number < count; ++number) {
      batch.push_back(randomMessage(messages, examples, number));
    }
    trial.equal("result", 0, fixture.codec.towardsHost(batch));
    for (const Message& event : fixture.codec.host.messages) results.events.push_back(shown(event));
    for (Message& event : fixture.codec.host.messages) batch.push_back(std::move(event));
    fixture.codec.host.messages.clear();
    expectOwnership(trial, "batch up to message " + std::to_string(number), balance.before(),
                    batch);
    const lines_t lines = fixture.log.take();
    results.log.insert(results.log.end(), lines.begin(), lines.end());
  }
  return results;
}

void expectSameLines(Trial& trial, const char* what, const lines_t& one_by_one,
                     const lines_t& together) {
  trial.equal(std::string(what) + ", number", one_by_one.size(), together.size());
  for (std::size_t i = 0; i < one_by_one.size() && i < together.size(); ++i) {
    const std::string where = std::string(what) + " " + std::to_string(i + 1);
    if (!trial.equal(where, one_by_one[i], together[i])) return;
  }
}

void batching(Trial& trial) {
  constexpr std::size_t COUNT = 600;
  const results_t one_by_one = sendAll(trial, COUNT, 1);
  const results_t together = sendAll(trial, COUNT, 40);
  expectSameLines(trial, "event", one_by_one.events, together.events);
  expectSameLines(trial, "log line", one_by_one.log, together.log);
  trial.holds(one_by_one.events.size() > COUNT / 4, "events", "more than a quarter",
              std::to_string(one_by_one.events.size()));
  trial.equal("messages accounted for", COUNT, one_by_one.events.size() + one_by_one.log.size());
}

void repeats(Trial& trial) {
  constexpr std::size_t COUNT = 200;
  const results_t first = sendAll(trial, COUNT, 10);
  const results_t second = sendAll(trial, COUNT, 10);
  expectSameLines(trial, "event", first.events, second.events);
  expectSameLines(trial, "log line", first.log, second.log);
}

const check_t RANDOM_CHECKS[] = {
    {"random.batching", "batches make no difference to mixed and damaged notifications", "Batches",
     batching, Use::LOAD_CODEC},
    {"random.repeats", "the same messages give the same events and lines again", "Batches", repeats,
     Use::LOAD_CODEC},
};

} // namespace

suite_t randomChecks() { return RANDOM_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
