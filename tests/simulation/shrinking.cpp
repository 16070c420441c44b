#include <array>
#include <utility>

#include "tests/simulation/life.hpp"

namespace com::velanto::connectivity::simulation {

namespace {

// Each makes a step simpler, or leaves it as it is.
using simplification_t = void (*)(step_t&);
constexpr std::array<simplification_t, 11> SIMPLIFICATIONS = {
    [](step_t& step) { step.messages /= 2; },
    [](step_t& step) { step.messages -= step.messages > 0 ? 1 : 0; },
    [](step_t& step) { step.edits = 0; },
    [](step_t& step) { step.deed = Deed::KEEP; },
    [](step_t& step) { step.turns = 0; },
    [](step_t& step) { step.refused = 0; },
    [](step_t& step) { step.thread = 0; },
    [](step_t& step) { step.is_recorded_before = false; },
    [](step_t& step) { step.is_recorded_after = false; },
    [](step_t& step) { step.is_linked = step.is_started = step.has_tenant = true; },
    [](step_t& step) { step.level = 3; }};

} // namespace

life_t shrunk(life_t life, const std::function<bool(const life_t&)>& fails) {
  for (bool has_changed = true; has_changed;) {
    has_changed = false;
    for (std::size_t i = life.size(); i-- > 0;) {
      life_t shorter = life;
      shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i));
      if (fails(shorter)) {
        life = std::move(shorter);
        has_changed = true;
        continue;
      }
      for (const simplification_t simplify : SIMPLIFICATIONS) {
        life_t simpler = life;
        simplify(simpler[i]);
        if (simpler[i] == life[i] || !fails(simpler)) continue;
        life = std::move(simpler);
        has_changed = true;
      }
    }
  }
  return life;
}

} // namespace com::velanto::connectivity::simulation
