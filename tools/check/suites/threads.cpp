// Several threads at once: each with a codec of its own, or with messages of its own in one codec.
#include <barrier>
#include <string>
#include <thread>
#include <vector>

#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr int BATCHES = 300;

// Runs `work` with an id in each of two threads at once, and comes back after both.
template <class Work>
void inTwoThreads(Trial& trial, const Work& work) {
  std::barrier together(2);
  const auto run = [&](const char* id) {
    together.arrive_and_wait();
    trial.part([&] { work(id); });
  };
  std::thread other(run, "other-id");
  run("first-id");
  other.join();
}

// The messages of a batch below that arrive, all with one payload.
struct arriving_t {
  std::size_t messages;
  data_t payload;
};

arriving_t arriving(const Trial& trial, const std::string& id, const char* tenant) {
  if (!trial.isCodec()) return {3, std::move(plainEvent(id).getPayload())};
  data_t event = plainEventPayload(id);
  set(event, "tenantId", data_t(tenant));
  return {2, std::move(event)};
}

// The lines that two threads log.
int linesOfTwo(const Trial& trial) { return trial.isCodec() ? 2 * BATCHES : 0; }

// Sends batches of events with an id of this thread and expects each back as it must be.
void sendAndExpect(Trial& trial, Codec& codec, Link& link, const std::string& id,
                   const char* tenant) {
  const arriving_t expected = arriving(trial, id, tenant);
  for (int i = 0; i < BATCHES; ++i) {
    std::vector<Message> batch;
    batch.push_back(plainEvent(id));
    batch.push_back(plainEvent(id, UNKNOWN_PATH));
    batch.push_back(plainEvent(id));
    trial.equal(id + ": result", 0, codec.towardsHost(batch));
    if (!trial.equal(id + ": messages", expected.messages, link.messages.size())) return;
    for (const Message& event : link.messages) {
      if (!same(trial, id + ": payload", expected.payload, event.getPayload())) return;
    }
    link.messages.clear();
  }
}

void twoCodecs(Trial& trial) {
  Log log;
  const PluginLibrary library = load(trial);
  const BlockBalance balance;
  inTwoThreads(trial, [&](const char* id) {
    const std::string json = std::string(R"({"tenantId": ")") + id + R"("})";
    Codec codec(trial, library, configured(trial, json), PLUGIN_NAME, id);
    codec.link();
    sendAndExpect(trial, codec, codec.host, id, id);
  });
  trial.equal("log lines", linesOfTwo(trial), log.take().size());
  balance.expectBack(trial, "after both codecs");
}

// The link tells the threads apart: it keeps the messages of its own thread.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): one a thread
thread_local std::vector<Message>* mine = nullptr;

void keepMine(void*, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
  auto* const last = reinterpret_cast<Message*>(end);
  for (auto* m = reinterpret_cast<Message*>(start); m != last; ++m) mine->push_back(std::move(*m));
}

void oneCodec(Trial& trial) {
  CheckFixture fixture(trial);
  fixture.codec.setNextTowardsHost(nullptr, keepMine);
  inTwoThreads(trial, [&](const char* id) {
    Link link; // for its messages only
    mine = &link.messages;
    sendAndExpect(trial, fixture.codec, link, id, "t1");
  });
  trial.equal("log lines", linesOfTwo(trial), fixture.log.take().size());
}

void createAndDestroy(Trial& trial) {
  const Log log;
  const PluginLibrary library = load(trial);
  const BlockBalance balance;
  inTwoThreads(trial, [&](const char* id) {
    for (int i = 0; i < BATCHES; ++i) {
      Codec codec(trial, library, configured(trial), PLUGIN_NAME, id);
      if (!trial.equal("created", true, codec.made())) return;
    }
  });
  balance.expectBack(trial, "after all codecs");
}

// A host's threads come and go; a codec does not belong to the one that made it.
void handedOver(Trial& trial) {
  CheckFixture fixture(trial);
  const auto in_a_thread = [&](const auto& call) { std::thread([&] { trial.part(call); }).join(); };
  in_a_thread([&] { trial.equal("start", 0, fixture.codec.start()); });
  in_a_thread([&] { sendAndExpect(trial, fixture.codec, fixture.codec.host, "1", "t1"); });
  in_a_thread([&] { trial.equal("destroy", 0, fixture.codec.destroy()); });
}

const check_t THREADS_CHECKS[] = {
    {"threads.two-codecs", "two codecs in two threads do not disturb each other", "Threads",
     twoCodecs},
    {"threads.one-codec", "one codec serves two threads with messages of their own", "Threads",
     oneCodec},
    {"threads.create-and-destroy", "codecs are made and destroyed in two threads at once",
     "Threads", createAndDestroy},
    {"threads.handed-over", "a codec may be started, used and destroyed by different threads",
     "Threads", handedOver},
};

} // namespace

suite_t threadsChecks() { return THREADS_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
