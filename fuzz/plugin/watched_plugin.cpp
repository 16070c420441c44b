#include "fuzz/plugin/watched_plugin.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "fuzz/finding.hpp"
#include "standin/standin.h"

namespace com::velanto::connectivity::fuzz {

namespace {

const tools::PluginLibrary& libraryOf(WatchedPlugin::Build build) {
  static const tools::PluginLibrary OURS(VLT_FUZZ_PLUGIN);
  static const tools::PluginLibrary PLAIN(VLT_FUZZ_PLAIN_BUILD);
  return build == WatchedPlugin::Build::OURS ? OURS : PLAIN;
}

void refuse(std::uint64_t allocation, bool from_there_on) {
  (from_there_on ? standin_fail_allocations_from : standin_fail_allocation)(allocation);
}

void requireBlocks(std::int64_t expected) {
  requireNone(model::differing("the number of live blocks", standin_live_blocks_total(), expected),
              "memory");
}

} // namespace

void WatchedPlugin::loadLibraries() { static_cast<void>(libraryOf(Build::OURS)); }

WatchedPlugin::WatchedPlugin(const scenario_t& scenario, Build build)
    : build_(build), library_(libraryOf(build)), live_before_(standin_live_blocks_total()) {
  require(library_.apiVersion() == 4, "the interface version is 4");
  require(std::string(library_.productVersion()) == "10.15.4.1", "the product has its version");
  library_.checkIsCodec();
  standin_set_default_log_level(scenario.level);
  standin_set_log_sink(&WatchedPlugin::file, this);

  const vlt_underlying_data_t configuration = model::block_of(scenario.configuration);
  refuse(scenario.refused_in_create, scenario.refused_from_there_on);
  plugin_ = library_.create("fuzz", "chain", scenario.has_configuration ? &configuration : nullptr,
                            this, nullptr);
  standin_fail_allocation(0);
  requireNone(model::difference(configuration, scenario.configuration),
              "the configuration is left unchanged");
  static_cast<void>(data_t::adopt(configuration));

  if (!exists()) {
    requireBlocks(live_before_);
    return;
  }
  setLinks(scenario.links);
  require(library_.start(plugin_) == 0, "start succeeds");
  require(library_.hostReady(plugin_) == 0, "hostReady succeeds");
}

WatchedPlugin::~WatchedPlugin() {
  if (exists()) {
    require(library_.shutdown(plugin_) == 0, "shutdown succeeds");
  }
  if (exists() || build_ == Build::OURS) {
    require(library_.destroy(plugin_) == 0, "destroy succeeds, also without a plug-in");
  }
  standin_reset_logging();
  requireBlocks(live_before_);
}

void WatchedPlugin::setLinks(links_t links) {
  if (links == links_t::NONE) return;
  const vlt_batch_function next = links == links_t::THROWING ? &passAndThrow : &pass;
  require(library_.setNextTowardsHost(plugin_, this, next) == 0, "a link can be set");
  require(library_.setNextTowardsTransport(plugin_, this, next) == 0, "a link can be set");
}

outcome_t WatchedPlugin::sendTowardsHost(Batch& batch) {
  return send(library_.sendBatchTowardsHost, batch);
}
outcome_t WatchedPlugin::sendTowardsTransport(Batch& batch) {
  return send(library_.sendBatchTowardsTransport, batch);
}

outcome_t WatchedPlugin::send(send_t function, Batch& batch) {
  const blocks_t before = batch.blocks();
  const std::int64_t elsewhere =
      standin_live_blocks_total() - static_cast<std::int64_t>(before.all.size());
  under_way_ = &batch;
  lines_.clear();
  standin_set_log_sink(&WatchedPlugin::file, this); // another chain may have set its own
  outcome_t outcome;
  outcome.result = function(plugin_, batch.begin(), batch.end());
  standin_fail_allocation(0); // no refusal outlasts the call
  outcome.lines = std::exchange(lines_, {});
  outcome.kept = std::exchange(passed_, std::nullopt);
  under_way_ = nullptr;

  require(outcome.result == 0 || outcome.result == 1, "a result is 0 or 1");
  const blocks_t after = batch.blocks();
  require(!before.are_shared && !after.are_shared, "a block has one owner");
  requireBlocks(elsewhere + static_cast<std::int64_t>(after.all.size()));
  require(std::includes(before.uncopied.begin(), before.uncopied.end(), after.uncopied.begin(),
                        after.uncopied.end()),
          "lists, buffers and custom objects are only moved");
  return outcome;
}

void WatchedPlugin::file(void* chain, const char* category, vlt_log_level_t level,
                         const char* text) {
  require(std::string(category) == "connectivity.fuzz.chain", "a line has the chain's category");
  require(std::string(text).starts_with("<connectivity.fuzz.chain> "), "a line has its prefix");
  static_cast<WatchedPlugin*>(chain)->lines_.push_back({level, text});
}

void WatchedPlugin::pass(void* chain, vlt_underlying_message_t* start,
                         vlt_underlying_message_t* end) {
  WatchedPlugin& self = *static_cast<WatchedPlugin*>(chain);
  require(!self.passed_, "a batch is passed on once");
  require(self.under_way_ != nullptr, "nothing is passed on but batches");
  require(reinterpret_cast<Message*>(start) == self.under_way_->begin(),
          "a range for the next link is the front of the batch");
  self.passed_ = static_cast<std::size_t>(end - start);
  require(*self.passed_ <= self.under_way_->size(), "no more is passed on than there is");
}

void WatchedPlugin::passAndThrow(void* chain, vlt_underlying_message_t* start,
                                 vlt_underlying_message_t* end) {
  pass(chain, start, end);
  throw std::runtime_error("the next link failed");
}

} // namespace com::velanto::connectivity::fuzz
