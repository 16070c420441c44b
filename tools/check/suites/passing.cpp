// Messages that are no notifications, on their way to the host.
#include <string>
#include <vector>

#include "standin/standin.h"
#include "tools/check/chain.hpp"
#include "tools/check/examples.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// Payloads of every kind, without a path.
std::vector<Message> plainMessages() {
  std::vector<Message> batch;
  for (const char* const payload : {"null", "true", "1.5", "7", R"("text")", "[1, [2]]",
                                    R"({"id": "1", "source": {"id": "2"}})", "{}"}) {
    batch.emplace_back(value(payload));
    batch.back().getMetadataMap()[data_t("chain")] = data_t("north");
  }
  batch.emplace_back(value("1")); // without metadata
  batch.emplace_back(buffer("bytes"));
  batch.emplace_back(custom(7));
  batch.emplace_back(borrowed("lent"));
  batch.emplace_back(bare(11));
  return batch;
}

// Expects the batch to pass byte for byte, without a call of the host.
void expectUntouched(Trial& trial, std::vector<Message>&& batch) {
  Chain chain(trial);
  chain.codec.host.moves_out = false;
  const std::string before = bytesOf(batch);
  standin_reset_calls();
  trial.equal("sendBatchTowardsHost", 0, chain.codec.towardsHost(batch));
  trial.equal("calls of host functions", 0, standin_calls_total());
  trial.holds(bytesOf(batch) == before, "the batch", "the same bytes as before", "other bytes");
  if (!trial.equal("calls of the link", 1, chain.codec.host.calls.size())) return;
  const Link::call_t call = chain.codec.host.calls[0];
  trial.equal("messages at the link", batch.size(), call.end - call.start);
}

void withoutPath(Trial& trial) { expectUntouched(trial, plainMessages()); }

void withoutPayload(Trial& trial) {
  std::vector<Message> batch;
  batch.push_back(notification(EVENT_PATH, data_t()));
  batch.push_back(notification(UNKNOWN_PATH, data_t()));
  batch.emplace_back();
  expectUntouched(trial, std::move(batch));
}

// A lookup tells kinds apart: a borrowed key is another key.
void borrowedPath(Trial& trial) {
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  map_t metadata;
  metadata[borrowed("pulsarPath")] = data_t(EVENT_PATH);
  batch[0].getMetadataMap() = std::move(metadata);
  expectUntouched(trial, std::move(batch));
}

void otherCase(Trial& trial) {
  std::vector<Message> batch;
  batch.push_back(plainEvent("1"));
  map_t metadata;
  metadata[data_t("PulsarPath")] = data_t(EVENT_PATH);
  batch[0].getMetadataMap() = std::move(metadata);
  expectUntouched(trial, std::move(batch));
}

constexpr check_t PASSING_CHECKS[] = {
    {"passing.without-path", "messages without pulsarPath pass byte for byte, whatever they hold",
     withoutPath},
    {"passing.without-payload", "messages without a payload pass, path or not", withoutPayload},
    {"passing.borrowed-path", "a pulsarPath under a borrowed key is none", borrowedPath},
    {"passing.other-case", "the name pulsarPath is compared with case", otherCase},
};

} // namespace

suite_t passingChecks() { return PASSING_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
