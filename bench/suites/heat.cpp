#include "bench/suites/heat.hpp"

#include "bench/floor/floor_contender.hpp"
#include "bench/peers/peers.hpp"
#include "bench/plugin_contender.hpp"

namespace com::velanto::connectivity::bench {

void Heat::enter(std::string name, std::shared_ptr<Contender> contender,
                 std::optional<sameness_t> sameness) {
  entrants_.push_back({std::move(name), std::move(contender), sameness});
}

Heat& Heat::inBatchesOf(std::size_t messages) {
  batch_ = messages;
  return *this;
}

Heat& Heat::withPlugin() {
  const auto make = [this](const std::string& library) {
    return std::make_shared<PluginContender>(library, lines_, batch_, tables_);
  };
  enter("plug-in", make(options_.plugin), sameness_t::SLOTS);
  if (options_.against) enter(options_.against_name, make(*options_.against), sameness_t::SLOTS);
  return *this;
}

Heat& Heat::withFloor(const std::string& name, floor::variant_t variant) {
  enter(name, std::make_shared<floor::FloorContender>(lines_, batch_, variant, tables_),
        sameness_t::SLOTS);
  return *this;
}

Heat& Heat::withFloors() {
  withFloor("floor", floor::variant_t::PLAIN);
  withFloor("floor-reuse", floor::variant_t::REUSE);
  return withFloor("floor-sized", floor::variant_t::SIZED);
}

Heat& Heat::withPeers() {
  enter("nlohmann::json", peers::makeNlohmann(lines_, batch_), sameness_t::CONTENT);
  enter("RapidJSON", peers::makeRapidJson(lines_, batch_), sameness_t::CONTENT);
  enter("Boost.JSON", peers::makeBoostJson(lines_, batch_), sameness_t::CONTENT);
  enter("Boost.JSON, monotonic", peers::makeBoostJsonMonotonic(lines_, batch_),
        sameness_t::CONTENT);
  return *this;
}

Heat& Heat::withSame(std::string name, std::shared_ptr<Contender> contender) {
  enter(std::move(name), std::move(contender), sameness_t::SLOTS);
  return *this;
}

Heat& Heat::withOther(std::string name, std::shared_ptr<Contender> contender) {
  enter(std::move(name), std::move(contender), std::nullopt);
  return *this;
}

group_t Heat::run(std::size_t rounds, double per) {
  Contender& reference = *entrants_.front().contender;
  for (std::size_t i = 1; i < entrants_.size(); ++i) {
    const entrant_t& entrant = entrants_[i];
    if (!entrant.sameness) continue;
    requireSame(name_, reference, entrant.name, *entrant.contender, *entrant.sameness);
  }
  if (options_.only_check) return {name_, {}};
  std::vector<lane_t> lanes;
  for (const entrant_t& entrant : entrants_) {
    const auto messages = static_cast<double>(entrant.contender->size());
    lanes.push_back(laneOf(entrant.name, entrant.contender, messages * per));
  }
  return {name_, race(lanes, rounds)};
}

} // namespace com::velanto::connectivity::bench
