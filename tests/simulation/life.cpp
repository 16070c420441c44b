#include "tests/simulation/life.hpp"

#include <array>

#include "fuzz/plugin/batch.hpp"
#include "fuzz/plugin/edits.hpp"
#include "fuzz/plugin/samples.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity::simulation {

namespace {

using fuzz::ValueMaker;

// The same numbers from a seed with any compiler, which the standard distributions do not promise.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    std::uint64_t mixed = state_ += 0x9e3779b97f4a7c15;
    mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111eb;
    return mixed ^ (mixed >> 31U);
  }
  std::size_t below(std::size_t limit) { return next() % limit; }
  bool oneIn(std::size_t count) { return below(count) == 0; }

 private:
  std::uint64_t state_;
};

template <class Element, std::size_t SIZE>
const Element& oneOf(const std::array<Element, SIZE>& choices, Random& random) {
  return choices[random.below(SIZE)];
}

void refuse(step_t& step, std::size_t one_in, std::size_t most, Random& random) {
  if (!random.oneIn(one_in)) return;
  step.refused = 1 + random.below(most);
  step.exhaustion = &oneOf(test::EXHAUSTIONS, random);
}

step_t making(std::size_t chain, bool records, Random& random) {
  step_t step;
  step.action = Action::MAKE;
  step.chain = chain;
  step.is_recorded_before = records && !random.oneIn(4);
  step.is_recorded_after = records && !random.oneIn(4);
  step.is_linked = !random.oneIn(12);
  step.is_started = !random.oneIn(8);
  step.has_tenant = !random.oneIn(16);
  refuse(step, 8, 16, random);
  return step;
}

void makeSending(step_t& step, Random& random) {
  static constexpr std::array<std::size_t, 8> COUNTS = {0, 1, 1, 1, 2, 3, 5, 14};
  static constexpr std::array DEEDS = {
      Deed::KEEP,  Deed::KEEP,         Deed::KEEP,           Deed::TAKE,        Deed::TAKE,
      Deed::THROW, Deed::THROW_NUMBER, Deed::REPLACE_ITSELF, Deed::SEND_ANOTHER};
  step.direction = random.oneIn(4) ? Direction::TOWARDS_TRANSPORT : Direction::TOWARDS_HOST;
  step.seed = random.next();
  step.messages = oneOf(COUNTS, random);
  step.edits = random.below(4);
  step.deed = oneOf(DEEDS, random);
  step.turns = random.below(4);
  refuse(step, 4, 48, random);
}

step_t anyStep(bool records, Random& random) {
  static constexpr std::array ACTIONS = {Action::SEND,  Action::SEND,     Action::SEND,
                                         Action::SEND,  Action::SEND,     Action::SEND,
                                         Action::SEND,  Action::RELINK,   Action::LEVEL,
                                         Action::START, Action::SHUTDOWN, Action::DESTROY};
  static constexpr std::array<vlt_log_level_t, 6> LEVELS = {3, 6, 3, 7, 2, 1};
  step_t step;
  step.action = oneOf(ACTIONS, random);
  // A third of the steps begin the second chain or follow it.
  step.chain = random.oneIn(3) ? 1 : 0;
  if (random.oneIn(8)) return making(step.chain, records, random);
  if (step.action == Action::SEND) makeSending(step, random);
  if (step.action == Action::LEVEL) step.level = oneOf(LEVELS, random);
  if (step.action == Action::SHUTDOWN) refuse(step, 4, 24, random);
  if (step.action == Action::RELINK) {
    step.direction = random.oneIn(2) ? Direction::TOWARDS_TRANSPORT : Direction::TOWARDS_HOST;
    step.is_null = random.oneIn(4);
    refuse(step, 3, 2, random);
  }
  return step;
}

message_t anyMessage(std::size_t most_edits, Random& random) {
  const fuzz::samples_t& known = fuzz::samples();
  if (random.oneIn(16)) return {};
  const auto& from = random.oneIn(4) ? known.failing : known.messages;
  message_t message = from[random.below(from.size())];
  std::array<std::uint8_t, 96> bytes{};
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random.next());
  ValueMaker input(bytes);
  for (std::size_t left = random.below(most_edits + 1); left > 0; --left) edit(message, input);
  return message;
}

std::string describe(const step_t& step) {
  static constexpr std::array ACTIONS = {
      "makes",  "sends through", "sets the link of", "sets the level of chains after",
      "starts", "shuts down",    "destroys"};
  static constexpr std::array DEEDS = {"keeps",           "takes",           "throws",
                                       "throws a number", "replaces itself", "sends as many back"};
  std::string text = "thread " + std::to_string(step.thread) + " " +
                     ACTIONS[static_cast<std::size_t>(step.action)] + " chain " +
                     std::to_string(step.chain);
  const auto add = [&](bool holds, const std::string& more) { text += holds ? ", " + more : ""; };
  const bool sends = step.action == Action::SEND;
  const bool is_to_host = step.direction == Direction::TOWARDS_HOST;
  add(sends || step.action == Action::RELINK,
      is_to_host ? "towards the host" : "towards the transport");
  add(step.is_recorded_before, "recorder before");
  add(step.is_recorded_after, "recorder after");
  add(!step.is_linked, "without links");
  add(!step.is_started, "not started");
  add(!step.has_tenant, "without tenant");
  add(step.action == Action::LEVEL, "level " + std::to_string(step.level));
  add(step.is_null, "null");
  add(sends, std::to_string(step.messages) + " messages, the link " +
                 DEEDS[static_cast<std::size_t>(step.deed)]);
  add(step.turns > 0, std::to_string(step.turns) + " steps later");
  add(step.refused > 0,
      "allocation " + std::to_string(step.refused) + " refused: " + step.exhaustion->name);
  return text;
}

} // namespace

life_t makeLife(std::uint64_t seed) {
  Random random(seed);
  const bool records = random.oneIn(5);
  const std::size_t threads = 1 + (random.oneIn(2) ? 0 : 1 + random.below(THREADS - 1));
  life_t life = {making(0, records, random)};
  for (std::size_t left = 3 + random.below(14); left > 0; --left) {
    life.push_back(anyStep(records, random));
    life.back().thread = random.below(threads);
  }
  return life;
}

std::vector<message_t> messagesOf(const step_t& step) {
  std::vector<message_t> messages;
  for (std::size_t i = 0; i < step.messages; ++i) {
    Random random(step.seed + i);
    messages.push_back(anyMessage(step.edits, random));
  }
  return messages;
}

std::string describe(const life_t& life) {
  std::string text;
  for (std::size_t i = 0; i < life.size(); ++i) {
    text += "  " + std::to_string(i + 1) + ". " + describe(life[i]) + "\n";
    if (life[i].action != Action::SEND) continue;
    for (const message_t& message : messagesOf(life[i])) {
      fuzz::Batch batch({&message, 1});
      text += "       " + to_string(*batch.begin(), true) + "\n";
    }
  }
  return text;
}

} // namespace com::velanto::connectivity::simulation
