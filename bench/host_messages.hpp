// Messages in the host's storage. Reads prototypes once, and makes copies of them before each run
// by the host's own deep copy, which keeps capacities, positions and deleted slots.
#ifndef VLT_BENCH_HOST_MESSAGES_HPP
#define VLT_BENCH_HOST_MESSAGES_HPP

#include <vector>

#include "bench/contender.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::bench {

using messages_t = std::vector<Message>;

// How full the tables of the inputs are.
enum class tables_t {
  GROWN,  // as insertion by insertion leaves them: 8, 16, 2 × live + 2 … slots
  OTHERS, // rebuilt with anything between live + 1 and 4 × live slots, changing from table to table
  WORST,  // three fifths full, with twice the slots of a stage of the table that takes their
          // entries in. In the order of slots, the second half runs into the first.
};

// The messages of the lines. Throws MalformedJson, std::bad_alloc.
[[nodiscard]] messages_t readMessages(const lines_t& lines, tables_t tables);

// Deep copies into `copies`, in `order`; all three are of one size. Throws std::bad_alloc.
void copyMessages(const messages_t& prototypes, const order_t& order, messages_t& copies);

// Frees the contents of the messages from `first` up to `end`, as the owner of the array does.
void releaseMessages(messages_t& messages, std::size_t first, std::size_t end) noexcept;

} // namespace com::velanto::connectivity::bench

#endif
