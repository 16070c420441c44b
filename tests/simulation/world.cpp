#include "tests/simulation/world.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "tests/support/allocations.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::simulation {

namespace {

using test::Exhausted;
using test::UncountedAllocations;

constexpr vlt_log_level_t FIRST_LEVEL = 3;
constexpr vlt_log_level_t ANY_LEVEL = 7;
constexpr std::array DIRECTIONS = {Direction::TOWARDS_HOST, Direction::TOWARDS_TRANSPORT};

std::size_t indexOf(Direction direction) { return static_cast<std::size_t>(direction); }

} // namespace

struct World::plugin_t {
  const PluginLibrary& functions;
  std::string name;
  void* plugin = nullptr;
  std::int64_t seen = 0;
  test::foot_t foot{}; // that a recorder must write last
};

struct World::chain_t {
  std::string id;
  vlt_log_level_t level;
  std::vector<plugin_t> plugins{}; // from the transport to the host
  std::int64_t blocks = 0;         // of the host, its own
  bool is_running = false;
  bool may_have_lost = false; // a recorder's thread was refused memory
  int under_way = 0;
  // Of each direction, in its order: to each plug-in, and two to the end, which replace each other.
  std::array<std::vector<link_t>, 2> links{};
  std::array<const link_t*, 2> end{}; // null: none

  plugin_t& at(Direction direction, std::size_t place) {
    return plugins[direction == Direction::TOWARDS_HOST ? place : plugins.size() - 1 - place];
  }
  [[nodiscard]] const link_t* otherEnd(Direction direction) const {
    const link_t* const ends = &links[indexOf(direction)][plugins.size()];
    return end[indexOf(direction)] == ends ? ends + 1 : ends;
  }
};

// As long as it lives, the lines of this thread go to a list, and `sending` is its innermost batch.
class World::Scope {
 public:
  explicit Scope(lines_t& to, sending_t* innermost = nullptr)
      : lines(to), sending(innermost), outer_(std::exchange(of_this_thread_, this)) {}
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
  ~Scope() { of_this_thread_ = outer_; }

  // Null: none.
  static Scope* ofThisThread() { return of_this_thread_; }

  lines_t& lines;
  sending_t* const sending;

 private:
  static inline thread_local Scope* of_this_thread_ = nullptr;
  Scope* const outer_;
};

World::World(const std::string& codec, const std::string& recorder, const std::string& tenant)
    : codecs_(codec),
      recorders_(recorder, PluginLibrary::Version::OURS, PluginLibrary::RECORDER_CLASS_NAME),
      settings_(test::mapOf("tenantId", test::text(tenant.c_str()))),
      settings_without_tenant_(test::mapOf("tenantId", data_t())),
      recorder_settings_(test::mapOf("recordingFolder", test::text(folder_.path("").c_str()))) {
  standin_set_log_sink(file, this);
  under_way_.reserve(2 * THREADS); // a life must leave no memory
}

World::~World() { standin_reset_logging(); }

// ---- the life

World::end_t World::live(const life_t& life) {
  test::model::lasting_texts().clear(); // of messages described before
  const std::int64_t held = test::allocationsHeld();
  blocks_before_ = standin_live_blocks_total();
  std::size_t taken = 0;
  while (taken < life.size() && !laws_.areBroken()) {
    ++laws_.figures.steps;
    takeInTurn(life[taken++]);
    judgeBlocks();
  }
  if (!laws_.areBroken()) ++taken;
  end();
  const std::int64_t left = test::allocationsHeld() - held;
  laws_.require(left == 0, "ownership", std::to_string(left) + " allocations are left");
  return {laws_.takeBreach(), taken};
}

// A thread's last step ends before its next one.
void World::takeInTurn(const step_t& step) {
  if (step.thread == 0) {
    take(step);
  } else {
    Actor& actor = actors_[step.thread - 1];
    if (actor.isParked()) actor.resume();
    turns_left_[step.thread - 1] = step.turns;
    actor.run([&] { take(step); });
  }
  for (std::size_t i = 0; i < actors_.size(); ++i) {
    const bool waits = i + 1 != step.thread && actors_[i].isParked();
    if (waits && --turns_left_[i] == 0) actors_[i].resume();
  }
}

void World::end() {
  for (Actor& actor : actors_) {
    if (actor.isParked()) actor.resume();
  }
  for (auto& chain : chains_) {
    if (chain) destroy(*chain);
    chain.reset();
  }
  judgeBlocks();
  standin_set_default_log_level(level_ = FIRST_LEVEL);
  made_ = 0;
  test::model::lasting_texts().clear();
  for (const auto& entry : std::filesystem::directory_iterator(folder_.path(""))) {
    std::filesystem::remove(entry);
  }
}

void World::take(const step_t& step) {
  if (step.action == Action::MAKE) return make(step);
  if (step.action == Action::LEVEL) return standin_set_default_log_level(level_ = step.level);
  if (!chains_[step.chain]) return;
  chain_t& chain = *chains_[step.chain];
  if (step.action == Action::SEND) return send(chain, step, step.direction);
  if (chain.under_way > 0) return;
  if (step.action == Action::RELINK) return relink(chain, step);
  if (step.action == Action::START) return start(chain);
  if (step.action == Action::SHUTDOWN) return shutDown(chain, step);
  destroy(chain);
  chains_[step.chain].reset();
}

// ---- chains

void World::make(const step_t& step) {
  if (chains_[step.chain]) return;
  auto chain = std::make_unique<chain_t>(chain_t{"chain" + std::to_string(++made_), level_});
  if (step.is_recorded_before) chain->plugins.push_back({recorders_, "before"});
  chain->plugins.push_back({codecs_, "codec"});
  if (step.is_recorded_after) chain->plugins.push_back({recorders_, "after"});
  const data_t& codecs_settings = step.has_tenant ? settings_ : settings_without_tenant_;
  const std::int64_t blocks_before = standin_live_blocks_total();
  lines_t lines;
  bool is_complete = true;
  bool was_refused = false;
  {
    const Scope scope(lines);
    const Exhausted exhausted(*step.exhaustion, step.refused);
    for (plugin_t& plugin : chain->plugins) {
      const bool is_codec = &plugin.functions == &codecs_;
      plugin.plugin = plugin.functions.create(
          plugin.name.c_str(), chain->id.c_str(),
          (is_codec ? codecs_settings : recorder_settings_).underlying(), nullptr, nullptr);
      is_complete = plugin.plugin != nullptr;
      if (!is_complete) break;
    }
    was_refused = step.refused > 0 && refusals(*step.exhaustion) > 0;
  }
  laws_.judgeCall(!is_complete, !step.has_tenant, was_refused, lines, chain->level);
  if (!is_complete) {
    for (const plugin_t& plugin : chain->plugins) plugin.functions.destroy(plugin.plugin);
    return;
  }
  chain->blocks = standin_live_blocks_total() - blocks_before;
  linkAll(*chain, step.is_linked);
  if (step.is_started) start(*chain);
  chains_[step.chain] = std::move(chain);
}

void World::linkAll(chain_t& chain, bool with_ends) {
  const std::size_t size = chain.plugins.size();
  int failures = 0;
  for (const Direction direction : DIRECTIONS) {
    auto& links = chain.links[indexOf(direction)];
    for (std::size_t place = 0; place < size + 2; ++place) {
      links.push_back({this, &chain, direction, place});
    }
    for (std::size_t place = 1; place < size; ++place) {
      failures += setLink(chain.at(direction, place - 1), direction, &links[place]);
    }
    if (with_ends) failures += setEnd(chain, direction, chain.otherEnd(direction));
  }
  laws_.require(failures == 0, "calls", "a link is refused");
}

// Null: a null function.
int World::setLink(const plugin_t& plugin, Direction direction, const link_t* link) {
  auto* const set = direction == Direction::TOWARDS_HOST ? plugin.functions.setNextTowardsHost
                                                         : plugin.functions.setNextTowardsTransport;
  return set(plugin.plugin, const_cast<link_t*>(link), link == nullptr ? nullptr : follow);
}

int World::setEnd(chain_t& chain, Direction direction, const link_t* link) {
  const int result = setLink(chain.at(direction, chain.plugins.size() - 1), direction, link);
  if (result == 0) chain.end[indexOf(direction)] = link;
  return result;
}

void World::relink(chain_t& chain, const step_t& step) {
  lines_t lines;
  int result = 0;
  bool was_refused = false;
  {
    const Scope scope(lines);
    const Exhausted exhausted(*step.exhaustion, step.refused);
    result = setEnd(chain, step.direction, step.is_null ? nullptr : chain.otherEnd(step.direction));
    was_refused = step.refused > 0 && refusals(*step.exhaustion) > 0;
  }
  laws_.judgeCall(result != 0, step.is_null || was_refused, false, lines, chain.level);
}

void World::start(chain_t& chain) {
  if (std::exchange(chain.is_running, true)) return;
  int failures = 0;
  for (const plugin_t& plugin : chain.plugins) {
    failures += plugin.functions.start(plugin.plugin) + plugin.functions.hostReady(plugin.plugin);
  }
  laws_.require(failures == 0, "calls", "a start fails");
}

void World::shutDown(chain_t& chain, const step_t& step) {
  if (!std::exchange(chain.is_running, false)) return;
  int failures = 0;
  test::failAllocationElsewhere(step.refused, step.exhaustion->for_good);
  for (plugin_t& plugin : chain.plugins) {
    failures += plugin.functions.shutdown(plugin.plugin);
    plugin.foot.seen = plugin.seen;
  }
  test::failAllocationElsewhere(0, false);
  const bool was_refused = step.refused > 0 && test::refusedElsewhere() > 0;
  // The threads of all recorders were refused it.
  for (const auto& each : chains_) {
    if (each && was_refused) each->may_have_lost = true;
  }
  laws_.judgeCall(failures > 0, false, was_refused, {}, chain.level);
}

void World::destroy(chain_t& chain) {
  shutDown(chain, {});
  for (const plugin_t& plugin : chain.plugins) {
    laws_.require(plugin.functions.destroy(plugin.plugin) == 0, "calls", "a destruction fails");
    if (&plugin.functions == &codecs_) continue;
    laws_.judgeRecording(folder_.path(""), plugin.name + "-" + chain.id, plugin.foot,
                         chain.may_have_lost);
  }
}

// ---- batches

void World::send(chain_t& chain, const step_t& step, Direction direction) {
  sending_t sending(step, direction);
  const auto before = sending.batch.blocks();
  sending.must_arrive = chain.end[indexOf(direction)] != nullptr;
  under_way_.push_back(&sending);
  ++chain.under_way;
  int result = 0;
  {
    const Scope scope(sending.lines, &sending);
    // A batch that a link sends is not the step's own, and has its memory.
    const std::uint64_t refused = direction == step.direction ? step.refused : 0;
    const Exhausted exhausted(*step.exhaustion, refused);
    result = pass(chain, 0, direction, sending.start, sending.start + sending.messages.size());
    if (!sending.must_arrive) sending.was_refused = refused > 0 && refusals(*step.exhaustion) > 0;
  }
  --chain.under_way;
  std::erase(under_way_, &sending);
  const auto after = sending.batch.blocks();
  laws_.require(!after.are_shared, "ownership", "two values own one block");
  laws_.require(std::includes(before.uncopied.begin(), before.uncopied.end(),
                              after.uncopied.begin(), after.uncopied.end()),
                "ownership", "a list, buffer or custom object is copied");
  laws_.judgeSending(sending, chain.plugins.size(), chain.level, result);
}

int World::pass(chain_t& chain, std::size_t place, Direction direction, Message* start,
                Message* end) {
  plugin_t& plugin = chain.at(direction, place);
  plugin.seen += end - start;
  if (chain.is_running) plugin.foot.recorded += end - start;
  return direction == Direction::TOWARDS_HOST
             ? plugin.functions.sendBatchTowardsHost(plugin.plugin, start, end)
             : plugin.functions.sendBatchTowardsTransport(plugin.plugin, start, end);
}

void World::follow(void* link, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
  const auto& to = *static_cast<const link_t*>(link);
  auto* const first = reinterpret_cast<Message*>(start);
  Message* const last = first + (end - start);
  if (to.place >= to.chain->plugins.size()) {
    const Scope* const scope = Scope::ofThisThread();
    if (scope != nullptr && scope->sending != nullptr) {
      return to.world->arrive(to, *scope->sending, first, last);
    }
    return to.world->laws_.require(false, "links", "messages arrive that nobody sends");
  }
  if (pass(*to.chain, to.place, to.direction, first, last) == 0) return;
  const UncountedAllocations uncounted;
  throw std::runtime_error("the next plug-in failed");
}

// Memory is refused up to here: the rest of the way is the links' own.
void World::arrive(const link_t& link, sending_t& sending, Message* start, Message* end) {
  const step_t& step = sending.step;
  const bool is_own = sending.direction == step.direction;
  sending.was_refused = is_own && step.refused > 0 && refusals(*step.exhaustion) > 0;
  test::failAllocation(0, false);
  standin_fail_allocation(0);
  chain_t& chain = *link.chain;
  laws_.require(&link == chain.end[indexOf(link.direction)], "links", "a batch goes elsewhere");
  laws_.judgeArrival(sending, start, end);
  if (!is_own) return;
  if (step.turns > 0 && Actor::park()) ++laws_.figures.parked;
  sending.has_failed = step.deed == Deed::THROW || step.deed == Deed::THROW_NUMBER;
  if (step.deed == Deed::THROW) throw std::runtime_error("jam");
  if (step.deed == Deed::THROW_NUMBER) throw 42;
  if (step.deed == Deed::TAKE) {
    for (Message* message = start; message != end; ++message) *message = Message();
  } else if (step.deed == Deed::REPLACE_ITSELF && chain.under_way == 1) {
    const int result = setEnd(chain, link.direction, chain.otherEnd(link.direction));
    laws_.require(result == 0, "calls", "a link cannot replace itself");
  } else if (step.deed == Deed::SEND_ANOTHER) {
    send(chain, step, DIRECTIONS[1 - indexOf(link.direction)]);
  }
}

// ---- what the host sees

void World::file(void* world, const char* category, vlt_log_level_t level, const char* text) {
  const UncountedAllocations uncounted;
  const log_line_t line{category, level, text};
  if (Scope* const scope = Scope::ofThisThread()) {
    scope->lines.push_back(line);
  } else { // of a recorder's thread
    static_cast<World*>(world)->laws_.judgeLine(line, ANY_LEVEL);
  }
}

void World::judgeBlocks() {
  std::int64_t expected = blocks_before_;
  for (const auto& chain : chains_) expected += chain ? chain->blocks : 0;
  for (const sending_t* const sending : under_way_) {
    expected += static_cast<std::int64_t>(sending->batch.blocks().all.size());
  }
  const std::int64_t live = standin_live_blocks_total();
  laws_.require(
      live == expected, "ownership",
      std::to_string(live) + " blocks of the host instead of " + std::to_string(expected));
}

} // namespace com::velanto::connectivity::simulation
