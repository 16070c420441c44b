// The way to the transport, on which everything passes.
#include <string>
#include <vector>

#include "standin/standin.h"
#include "tools/check/chain.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

std::vector<Message> anything() {
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  batch.push_back(plainEvent("2", UNKNOWN_PATH));
  batch.push_back(notification(EVENT_PATH, std::string_view("7")));
  batch.push_back(notification(EVENT_PATH, data_t()));
  batch.emplace_back();
  batch.emplace_back(value(R"({"x": [1, 2]})"));
  return batch;
}

void untouched(Trial& trial) {
  Chain chain(trial, R"({"tenantId": "t1"})", 6);
  chain.codec.transport.moves_out = false;
  std::vector<Message> batch = anything();
  const std::string before = bytesOf(batch);
  standin_reset_calls();
  trial.equal("sendBatchTowardsTransport", 0, chain.codec.towardsTransport(batch));
  trial.equal("calls of host functions", 0, standin_calls_total());
  trial.holds(bytesOf(batch) == before, "the batch", "the same bytes as before", "other bytes");
  chain.expectLog("at level 6", {});
}

void oneCall(Trial& trial) {
  Chain chain(trial);
  chain.codec.transport.moves_out = false;
  std::vector<Message> batch = anything();
  chain.codec.towardsTransport(batch);
  trial.equal("batches at the host's link", 0, chain.codec.host.calls.size());
  if (!trial.equal("calls of the transport's link", 1, chain.codec.transport.calls.size())) return;
  const Link::call_t call = chain.codec.transport.calls[0];
  const auto* const front = reinterpret_cast<const vlt_underlying_message_t*>(batch.data());
  trial.holds(call.start == front, "start of the range", "the front of the batch",
              "another address");
  trial.equal("messages at the link", batch.size(), call.end - call.start);
}

void ownHandle(Trial& trial) {
  Chain chain(trial);
  Link other;
  chain.codec.setNextTowardsTransport(&other, Link::take);
  std::vector<Message> batch = anything();
  chain.codec.towardsTransport(batch);
  trial.equal("calls with a handle that nobody set", 0, Link::strayCalls());
  trial.equal("messages at the link whose handle was set", batch.size(), other.messages.size());
}

void throwingTransportLink(Trial& trial) {
  Chain chain(trial);
  chain.codec.setNextTowardsTransport(
      nullptr, [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) { throw 7; });
  Message message(value("1"));
  trial.equal("sendBatchTowardsTransport", 1, chain.codec.towardsTransport({&message, 1}));
  chain.expectLog("a link that throws a number",
                  {line(3, "Unknown exception from sendBatchTowardsTransport")});
}

constexpr check_t TRANSPORT_CHECKS[] = {
    {"transport.untouched", "every message passes byte for byte, without a call of the host",
     untouched},
    {"transport.one-call", "the transport's link is called once a batch, with the whole of it",
     oneCall},
    {"transport.own-handle", "the link gets the handle that was set with it", ownHandle},
    {"transport.throwing-link", "a link that throws anything is reported at level 3",
     throwingTransportLink},
};

} // namespace

suite_t transportChecks() { return TRANSPORT_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
