// The plug-in in a chain of one, driven through its C functions, with everything seen that it does:
// lines logged, ranges passed on, results.
//
// Checks here the laws of every call. Results are 0 or 1. A range for the next link is the front of
// the batch. Every block has one owner: the host, a message or the plug-in.
#ifndef VLT_FUZZ_PLUGIN_WATCHED_PLUGIN_HPP
#define VLT_FUZZ_PLUGIN_WATCHED_PLUGIN_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/plugin/batch.hpp"
#include "fuzz/plugin/scenario.hpp"
#include "tools/host/plugin_library.hpp"

namespace com::velanto::connectivity::fuzz {

struct line_t {
  vlt_log_level_t level;
  std::string text;
  bool operator==(const line_t&) const = default;
};

// The result of sending a batch.
struct outcome_t {
  int result = 0;
  std::optional<std::size_t> kept; // messages passed on; nothing: no call of the next link
  std::vector<line_t> lines;
};

class WatchedPlugin {
 public:
  // Which build it is: the subject of the checks, or the plain one for comparison, from which they
  // check only the rules that hold for any build.
  enum class Build { OURS, PLAIN };

  // Loads the libraries of both builds, which make blocks of their own; before the first chain.
  static void loadLibraries();

  // Creates the plug-in, unless it refuses, with its links set and started.
  WatchedPlugin(const scenario_t& scenario, Build build);
  WatchedPlugin(const WatchedPlugin&) = delete;
  WatchedPlugin& operator=(const WatchedPlugin&) = delete;
  ~WatchedPlugin(); // shuts down and destroys; a finding when a block is left

  [[nodiscard]] bool exists() const { return plugin_ != nullptr; }
  // The log so far.
  [[nodiscard]] const std::vector<line_t>& lines() const { return lines_; }

  outcome_t sendTowardsHost(Batch& batch);
  outcome_t sendTowardsTransport(Batch& batch);

 private:
  using send_t = int (*)(void*, Message*, Message*);
  outcome_t send(send_t function, Batch& batch);
  void setLinks(links_t links);

  static void file(void* chain, const char* category, vlt_log_level_t level, const char* text);
  static void pass(void* chain, vlt_underlying_message_t* start, vlt_underlying_message_t* end);
  static void passAndThrow(void* chain, vlt_underlying_message_t* start,
                           vlt_underlying_message_t* end);

  Build build_;
  const tools::PluginLibrary& library_;
  std::int64_t live_before_;
  std::vector<line_t> lines_;
  void* plugin_ = nullptr;
  Batch* under_way_ = nullptr;
  std::optional<std::size_t> passed_;
};

} // namespace com::velanto::connectivity::fuzz

#endif
