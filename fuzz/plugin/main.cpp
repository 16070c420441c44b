// The whole plug-in, as a host loads it: a batch goes through it in both directions.
//
//   (1) Create the plug-in, which must refuse a wrong configuration.
//   (2) Send each message alone, and compare with the laws (fuzz/plugin/laws.hpp) and with the
//       second opinion, that of the plain build (fuzz/plugin/second_opinion.hpp).
//   (3) Send all together: towards the transport unchanged, towards the host with the same outcome
//       as alone and in their order. The second opinion gets all together, too.
//   (4) Destroy the plug-in; no block is left.
//
// A run without memory, or with a link that throws or is missing, omits (2). In (3), it checks the
// laws of every call (fuzz/plugin/watched_plugin.hpp) and, with memory, the second opinion.
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/finding.hpp"
#include "fuzz/plugin/laws.hpp"
#include "fuzz/plugin/samples.hpp"
#include "fuzz/plugin/second_opinion.hpp"
#include "standin/standin.h"

namespace com::velanto::connectivity::fuzz {

namespace {

// Counts of each outcome; a target whose inputs all fail checks little.
struct counts_t {
  std::array<unsigned long, KINDS.size()> converted{};
  unsigned long dropped = 0;
  unsigned long passed = 0;
  unsigned long refused_configurations = 0;
  unsigned long failing_batches = 0;
};
counts_t counts; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): over all inputs

void printCounts() {
  std::string line = "COUNTS: converted";
  for (std::size_t i = 0; i < KINDS.size(); ++i) {
    line += " " + std::to_string(counts.converted[i]) + " " + KINDS[i].segment;
  }
  note(line + "; " + std::to_string(counts.dropped) + " dropped, " + std::to_string(counts.passed) +
       " passed, " + std::to_string(counts.refused_configurations) + " configurations refused, " +
       std::to_string(counts.failing_batches) + " batches without memory or link");
}

void count(const verdict_t& verdict) {
  if (verdict.fate == fate_t::DROPPED) ++counts.dropped;
  if (verdict.fate == fate_t::PASSED) ++counts.passed;
  for (std::size_t i = 0; i < KINDS.size(); ++i) {
    if (verdict.kind == &KINDS[i]) ++counts.converted[i];
  }
}

// The result of all messages together: the kept ones as they were alone, and their lines.
struct expectation_t {
  std::vector<message_t> kept;
  std::vector<line_t> lines;
};

void sendAlone(const scenario_t& scenario, const message_t& message, WatchedPlugin& chain,
               WatchedPlugin* plain, expectation_t& expected) {
  Batch batch({&message, 1});
  const outcome_t outcome = chain.sendTowardsHost(batch);
  const verdict_t verdict = judge(scenario, message, batch[0], outcome);
  if (plain != nullptr) requireSameOpinion(*plain, {&message, 1}, batch, outcome);
  count(verdict);
  if (verdict.fate != fate_t::DROPPED) expected.kept.push_back(modelOf(batch[0]));
  expected.lines.insert(expected.lines.end(), outcome.lines.begin(), outcome.lines.end());
}

void sendTowardsTransport(const scenario_t& scenario, Batch& batch, WatchedPlugin& chain) {
  const outcome_t outcome = chain.sendTowardsTransport(batch);
  for (std::size_t i = 0; i < batch.size(); ++i) {
    requireNone(difference(batch[i], scenario.messages[i]), "towards the transport");
  }
  if (scenario.links == links_t::NONE) return;
  require(outcome.kept == batch.size(), "towards the transport everything passes");
  const bool fails = scenario.links == links_t::THROWING;
  require(outcome.result == (fails ? 1 : 0), "a link that throws makes the result 1");
  require(outcome.lines.size() == (fails && scenario.level >= 3 ? 1U : 0U),
          "a link that throws is reported once");
}

// The same of the plain build, whose batch is another one.
void sendTowardsTransport(const scenario_t& scenario, WatchedPlugin* plain) {
  if (plain == nullptr) return;
  Batch batch(scenario.messages);
  sendTowardsTransport(scenario, batch, *plain);
}

void sendTogether(const scenario_t& scenario, WatchedPlugin& chain, WatchedPlugin* plain,
                  const expectation_t& expected) {
  Batch batch(scenario.messages);
  sendTowardsTransport(scenario, plain);
  sendTowardsTransport(scenario, batch, chain);
  const outcome_t outcome = chain.sendTowardsHost(batch);
  require(outcome.result == 0, "a batch succeeds, also with dropped messages");
  require(outcome.lines == expected.lines, "messages log the same together as alone");
  require(outcome.kept == expected.kept.size(), "messages are kept together as alone");
  for (std::size_t i = 0; i < expected.kept.size(); ++i) {
    requireNone(difference(batch[i], expected.kept[i]), "together and alone");
  }
  if (plain != nullptr) requireSameOpinion(*plain, scenario.messages, batch, outcome);
}

void sendUnderFailure(const scenario_t& scenario, WatchedPlugin& chain, WatchedPlugin* plain) {
  Batch batch(scenario.messages);
  sendTowardsTransport(scenario, plain);
  sendTowardsTransport(scenario, batch, chain);
  (scenario.refused_from_there_on ? standin_fail_allocations_from
                                  : standin_fail_allocation)(scenario.refused_in_batch);
  const outcome_t outcome = chain.sendTowardsHost(batch);
  const bool fails = scenario.links == links_t::THROWING;
  if (!fails) require(outcome.result == 0, "a batch succeeds, also with dropped messages");
  if (plain != nullptr && scenario.refused_in_batch == 0) {
    requireSameOpinion(*plain, scenario.messages, batch, outcome);
  }
  if (scenario.links == links_t::NONE) return;
  require(outcome.kept.has_value(), "a batch is passed on, even an empty one");
  std::size_t reports = 0;
  for (const line_t& line : outcome.lines) reports += line.level == 3 ? 1 : 0;
  require(reports <= batch.size() - *outcome.kept + (fails ? 1 : 0),
          "no more is reported than was dropped");
}

void run(const scenario_t& scenario) {
  WatchedPlugin chain(scenario, WatchedPlugin::Build::OURS);
  std::optional<WatchedPlugin> plain; // with memory alone: it may ask for more, or less
  if (scenario.refused_in_create == 0) {
    plain.emplace(scenario, WatchedPlugin::Build::PLAIN);
    require(plain->exists() == chain.exists() && plain->lines() == chain.lines(),
            "both builds refuse the same configurations");
    require(chain.exists() != mustBeRefused(scenario),
            "a configuration is refused when it must be");
    require(chain.lines().size() == (chain.exists() || scenario.level < 2 ? 0U : 1U),
            "a refused configuration is reported once");
  }
  if (!chain.exists()) {
    ++counts.refused_configurations;
    return;
  }
  if (scenario.links != links_t::SET || scenario.refused_in_batch != 0) {
    ++counts.failing_batches;
    return sendUnderFailure(scenario, chain, plain ? &*plain : nullptr);
  }
  expectation_t expected;
  for (const message_t& message : scenario.messages) {
    sendAlone(scenario, message, chain, plain ? &*plain : nullptr, expected);
  }
  sendTogether(scenario, chain, plain ? &*plain : nullptr, expected);
}

} // namespace

} // namespace com::velanto::connectivity::fuzz

namespace fuzz = com::velanto::connectivity::fuzz;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::WatchedPlugin::loadLibraries(); // with its counters, before the fuzzer looks for them
  static_cast<void>(fuzz::samples());
  return std::atexit(fuzz::printCounts);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::run(fuzz::readScenario({data, size}));
  fuzz::model::lasting_texts().clear();
  return 0;
}
