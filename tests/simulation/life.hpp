// A life of the whole system as the steps of its host, made from a seed. Each step stands for itself:
// without the steps before it, it does the same or nothing. So a failing life can lose steps.
#ifndef VLT_TESTS_SIMULATION_LIFE_HPP
#define VLT_TESTS_SIMULATION_LIFE_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "fuzz/plugin/message_model.hpp"
#include "tests/exhaustion/exhaustion.hpp"
#include "tools/host/hosted_plugin.hpp"

namespace com::velanto::connectivity::simulation {

using fuzz::message_t;
using test::exhaustion_t;
using tools::Direction;

inline constexpr std::size_t THREADS = 3;
inline constexpr std::size_t CHAINS = 2; // that live at the same time

enum class Action { MAKE, SEND, RELINK, LEVEL, START, SHUTDOWN, DESTROY };

// How the last link deals with the batch that arrives.
enum class Deed { KEEP, TAKE, THROW, THROW_NUMBER, REPLACE_ITSELF, SEND_ANOTHER };

struct step_t {
  Action action = Action::SEND;
  std::size_t thread = 0;
  std::size_t chain = 0;
  Direction direction = Direction::TOWARDS_HOST; // SEND, RELINK

  // MAKE
  bool is_recorded_before = false;
  bool is_recorded_after = false;
  bool is_linked = true;
  bool is_started = true;
  bool has_tenant = true; // without one the codec must refuse

  vlt_log_level_t level = 3; // LEVEL, for chains made later
  bool is_null = false;      // RELINK: to a null function

  // SEND
  std::uint64_t seed = 0; // of the messages
  std::size_t messages = 0;
  std::size_t edits = 0; // at most, of each message
  Deed deed = Deed::KEEP;
  std::size_t turns = 0; // steps of other threads before the last link returns

  // The n-th allocation is refused: in MAKE, RELINK and SEND of the calling thread, in SHUTDOWN of
  // the recorders' threads. 0: none.
  std::uint64_t refused = 0;
  const exhaustion_t* exhaustion = test::EXHAUSTIONS.data();

  bool operator==(const step_t&) const = default;
};

using life_t = std::vector<step_t>;

[[nodiscard]] life_t makeLife(std::uint64_t seed);

// The batch of a SEND, and of the one that its link sends: samples, edited samples, empty messages.
[[nodiscard]] std::vector<message_t> messagesOf(const step_t& step);

// A life as small as it gets with `fails`, which it must fulfil: loses steps, and has simpler ones, one
// change at a time.
[[nodiscard]] life_t shrunk(life_t life, const std::function<bool(const life_t&)>& fails);

// The life with each step on a line, the messages of its batches below it.
[[nodiscard]] std::string describe(const life_t& life);

} // namespace com::velanto::connectivity::simulation

#endif
