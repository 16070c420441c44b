// The laws of every life, whatever a host, its links and its memory do:
//
//   calls       A call returns 0, or 1 for a reason: a link that failed or is null, refused memory, a
//               wrong configuration. Each plug-in that fails writes one line.
//   links       A batch reaches the link of that moment, once, as the front of its range.
//   counts      Messages sent = messages that arrive + lines about dropped messages.
//   order       Messages arrive in their order, each once. All arrive towards the transport, and all
//               that are no notifications; these arrive as they were sent.
//   ownership   The host's blocks are those of the chains and of the batches under way, each with one
//               owner. Lists, buffers and custom objects only move. A life leaves no memory.
//   log         A line is in a table of the documents, with its level, which its plug-in takes.
//   recordings  The records, gaps and feet of a recorder add up to the messages that passed it.
//
// Where memory was refused, a message may be dropped that would arrive, a trace may be missing, and a
// recorder may have lost records.
#ifndef VLT_TESTS_SIMULATION_LAWS_HPP
#define VLT_TESTS_SIMULATION_LAWS_HPP

#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/plugin/batch.hpp"
#include "tests/recording/recording.hpp"
#include "tests/simulation/life.hpp"
#include "tests/support/host_fixture.hpp"

namespace com::velanto::connectivity::simulation {

using fuzz::Batch;
using test::log_line_t;
using lines_t = std::vector<log_line_t>;

// Sums over lives; laws that never meet their case check little.
struct figures_t {
  std::size_t steps = 0;
  std::size_t sent = 0;
  std::size_t arrived = 0;
  std::size_t dropped = 0;
  std::size_t recorded = 0;
  std::size_t refusals = 0;     // steps that were refused memory
  std::size_t failed_links = 0; // batches whose link failed
  std::size_t parked = 0;       // batches that waited while other threads had turns
};
[[nodiscard]] std::string describe(const figures_t& figures);

struct breach_t {
  std::string law;
  std::string detail;
};

// A batch under way. All messages but empty ones bear a stamp: their place in the batch, from 1.
struct sending_t {
  sending_t(const step_t& sent_by, Direction towards);

  const step_t& step;
  const Direction direction;
  std::vector<message_t> messages;
  Batch batch;
  Message* const start; // of the range sent; an empty one begins at null or anywhere
  lines_t lines;

  bool must_arrive = false; // there is a last link
  bool was_refused = false;
  int arrivals = 0;
  std::size_t kept = 0;
  bool has_failed = false; // the last link
};

class Laws {
 public:
  Laws(); // reads the tables of the documents

  // Keeps the first breach. From any thread.
  void require(bool holds, const char* law, const std::string& detail);
  [[nodiscard]] bool areBroken() {
    const std::lock_guard guard(lock_);
    return breach_.has_value();
  }
  std::optional<breach_t> takeBreach() { return std::exchange(breach_, std::nullopt); }

  // links, order: the messages reach the last link as this range.
  void judgeArrival(sending_t& sending, const Message* start, const Message* end);
  // calls, counts, log: the first of so many plug-ins, which take lines of `level`, has returned.
  void judgeSending(const sending_t& sending, std::size_t plugins, vlt_log_level_t level,
                    int result);
  // calls, log: any other call.
  void judgeCall(bool failed, bool must_fail, bool was_refused, const lines_t& lines,
                 vlt_log_level_t level);
  // log: a plug-in that takes lines of `level` wrote this one.
  void judgeLine(const log_line_t& line, vlt_log_level_t level);
  // recordings: of a recorder that has ended.
  void judgeRecording(const std::string& folder, const std::string& name,
                      const test::foot_t& expected, bool may_have_lost);

  figures_t figures;

 private:
  void requireSame(std::size_t actual, std::size_t expected, const char* law, const char* what);
  void judgeMissing(const sending_t& sending, std::size_t from, std::size_t to);

  struct form_t {
    std::string level;
    std::string pattern;
  };

  std::mutex lock_;
  std::optional<breach_t> breach_;
  std::vector<form_t> forms_;
};

} // namespace com::velanto::connectivity::simulation

#endif
