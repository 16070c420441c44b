// Contenders that take turns over the same messages: first compared, then raced.
#ifndef VLT_BENCH_SUITES_HEAT_HPP
#define VLT_BENCH_SUITES_HEAT_HPP

#include <optional>
#include <string>
#include <vector>

#include "bench/comparison.hpp"
#include "bench/floor/planner.hpp"
#include "bench/host_messages.hpp"
#include "bench/runner.hpp"

namespace com::velanto::connectivity::bench {

struct options_t {
  std::string plugin;                 // path of the measured library
  std::optional<std::string> against; // path of another revision's
  std::string against_name = "other revision";
  std::size_t rounds = 151;
  bool only_check = false;
};

// The measurements of one race; the first result is the plug-in's.
struct group_t {
  std::string name;
  std::vector<result_t> results;
};

struct suite_t {
  std::string name;
  std::string unit; // of the samples
  std::vector<group_t> groups;
};

inline constexpr std::size_t LARGE_BATCH = 256;

struct entrant_t {
  std::string name;
  std::shared_ptr<Contender> contender;
  std::optional<sameness_t> sameness; // to the first entrant's results; nothing: another matter
};

class Heat {
 public:
  // `options` must outlive the heat.
  Heat(const options_t& options, std::string name, lines_t lines, tables_t tables = tables_t::GROWN)
      : options_(options), name_(std::move(name)), lines_(std::move(lines)), tables_(tables) {}

  // All contenders that enter after this convert so many messages before they release them; before
  // it, LARGE_BATCH.
  Heat& inBatchesOf(std::size_t messages);
  // The plug-in, and the other revision's, if there is one.
  Heat& withPlugin();
  Heat& withFloor(const std::string& name, floor::variant_t variant);
  Heat& withFloors();
  Heat& withPeers();
  // Something that must give the first entrant's results.
  Heat& withSame(std::string name, std::shared_ptr<Contender> contender);
  // Something over other messages, for comparison of times only.
  Heat& withOther(std::string name, std::shared_ptr<Contender> contender);

  // Compares, then races unless the caller wants the comparison alone. `per` message: a divisor of
  // the times, in addition to the number of messages.
  [[nodiscard]] group_t run(std::size_t rounds, double per = 1.0);

 private:
  void enter(std::string name, std::shared_ptr<Contender> contender,
             std::optional<sameness_t> sameness);

  const options_t& options_;
  std::string name_;
  lines_t lines_;
  tables_t tables_;
  std::size_t batch_ = LARGE_BATCH;
  std::vector<entrant_t> entrants_;
};

} // namespace com::velanto::connectivity::bench

#endif
