// The chains of a run and the threads that serve them.
//
//   one chain     everything happens on the caller's thread
//   N chains      deals blocks of lines to the chains in turn, the first to the first; each has a
//                 thread of its own. The caller reads ahead, and publishes in the order of the
//                 input, so the output does not depend on N. Where the chains must be idle while a
//                 record is published, it publishes a block before the next one begins
#ifndef VLT_TOOLS_REPLAY_RUNNING_CHAIN_POOL_HPP
#define VLT_TOOLS_REPLAY_RUNNING_CHAIN_POOL_HPP

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "tools/replay/input/line_reader.hpp"
#include "tools/replay/running/worker.hpp"

namespace com::velanto::connectivity::tools {

// The pool's messages to its caller, on the caller's thread.
struct pool_listener_t {
  std::function<void(record_t&)> take;      // each record, in order
  std::function<void(incidents_t&)> report; // after each block
  std::function<bool()> finished;           // whether the run should end
  std::function<void()> pause;              // the next line may be long in coming
};

struct pool_options_t {
  std::size_t chains; // at least 1
  batching_t batching;
  bool undisturbed; // all chains are idle while a record is published
  bool prompt;      // sends a batch that is not full rather than wait for the next line
};

class ChainPool {
 public:
  // Throws PluginError; `log` then has the reason.
  ChainPool(const PluginLibrary& library, const data_t& configuration, Direction direction,
            const pool_options_t& options, std::vector<log_line_t>& log);

  // Takes all lines of `reader` through the chains. Returns the failure of a read, a ReplayError,
  // after publishing the lines before it; null: there was none.
  [[nodiscard]] std::exception_ptr run(LineReader& reader, const pool_listener_t& listener);

  // Ends every chain; the results in their order.
  std::vector<call_result_t> shutdown();

 private:
  // Lines to read, send and publish together.
  struct block_t {
    std::vector<record_t> records;
    std::size_t count = 0; // of the records in use
    incidents_t incidents;
    std::exception_ptr failure; // of the next read
  };

  void read(LineReader& reader, block_t& block);
  bool readOne(LineReader& reader, record_t& record);
  [[nodiscard]] std::exception_ptr runAlone(LineReader& reader, const pool_listener_t& listener);
  static void serve(block_t& block, Worker& worker);
  [[nodiscard]] std::exception_ptr runTogether(LineReader& reader, const pool_listener_t& listener);

  pool_options_t options_;
  std::optional<record_t> ahead_; // read, but of the batch after the last block
  std::vector<std::unique_ptr<Worker>> workers_;
};

} // namespace com::velanto::connectivity::tools

#endif
