// The host of simulated lives: it holds the chains, takes the steps, and has its laws judge each call
// and, after each step, its blocks.
//
//   transport ◄──► [ recorder "before" ] ◄──► codec ◄──► [ recorder "after" ] ◄──► host
//
// It skips a step that makes no sense: on a chain that does not exist, or a change of one with a batch
// under way on another thread, which the host's rules forbid.
#ifndef VLT_TESTS_SIMULATION_WORLD_HPP
#define VLT_TESTS_SIMULATION_WORLD_HPP

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/simulation/actor.hpp"
#include "tests/simulation/laws.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::simulation {

using tools::PluginLibrary;

class World {
 public:
  // Loads the libraries; all codecs have this tenant. Takes the process's log.
  World(const std::string& codec, const std::string& recorder, const std::string& tenant);
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  ~World();

  // Lives to the end of all chains, or to the first breach. Leaves the world as it was.
  struct end_t {
    std::optional<breach_t> breach;
    std::size_t step; // of the breach, from 1; one more than there are: at the end of the chains
  };
  end_t live(const life_t& life);

  [[nodiscard]] const figures_t& figures() const { return laws_.figures; }

 private:
  struct chain_t;
  struct plugin_t;
  // The handle of a link: to the plug-in of this place on the way, or out of the chain.
  struct link_t {
    World* world;
    chain_t* chain;
    Direction direction;
    std::size_t place;
  };
  class Scope;

  void takeInTurn(const step_t& step);
  void take(const step_t& step);
  void end();
  void make(const step_t& step);
  void linkAll(chain_t& chain, bool with_ends);
  void relink(chain_t& chain, const step_t& step);
  void start(chain_t& chain);
  void shutDown(chain_t& chain, const step_t& step);
  void destroy(chain_t& chain);
  void send(chain_t& chain, const step_t& step, Direction direction);
  void arrive(const link_t& link, sending_t& sending, Message* start, Message* end);
  void judgeBlocks();

  static int setLink(const plugin_t& plugin, Direction direction, const link_t* link);
  static int setEnd(chain_t& chain, Direction direction, const link_t* link);
  static int pass(chain_t& chain, std::size_t place, Direction direction, Message* start,
                  Message* end);
  static void follow(void* link, vlt_underlying_message_t* start, vlt_underlying_message_t* end);
  static void file(void* world, const char* category, vlt_log_level_t level, const char* text);

  PluginLibrary codecs_;
  PluginLibrary recorders_;
  test::TemporaryFolder folder_;
  const data_t settings_;
  const data_t settings_without_tenant_;
  const data_t recorder_settings_;
  Laws laws_;
  std::array<Actor, THREADS - 1> actors_; // the threads but the first one
  std::array<std::size_t, THREADS - 1> turns_left_{};
  std::int64_t blocks_before_ = 0;
  vlt_log_level_t level_ = 3;
  std::size_t made_ = 0; // chains in this life
  std::array<std::unique_ptr<chain_t>, CHAINS> chains_;
  std::vector<const sending_t*> under_way_;
};

} // namespace com::velanto::connectivity::simulation

#endif
