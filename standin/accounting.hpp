// Counts live blocks and host calls without slowing the counted threads: each thread writes
// counters of its own, and a reader adds up all threads.
//
//   running threads   a list of counters, each in its thread's own storage.
//   ended threads     one set of totals. A thread adds its counters there when it ends.
//
// One thread may free a block of another. So one thread's count of live blocks may be negative;
// only the sum means something.
#ifndef VLT_STANDIN_ACCOUNTING_HPP
#define VLT_STANDIN_ACCOUNTING_HPP

#include <array>
#include <atomic>
#include <cstddef>

#include "standin/interface.hpp"

namespace standin {

// Blocks by kind, then calls by function.
inline constexpr std::size_t COUNTER_COUNT = std::size_t{STANDIN_BLOCK_KINDS} + STANDIN_FUNCTIONS;

using counters_t = std::array<std::atomic<int64_t>, COUNTER_COUNT>;

// A thread without counters still counts, slowly: destructors of other libraries may call late.
enum class thread_state_t { FRESH, RUNNING, ENDED };

struct thread_counters_t {
  counters_t counters{};
  thread_state_t state = thread_state_t::FRESH;
  thread_counters_t* previous = nullptr;
  thread_counters_t* next = nullptr;
};

// The model spares each call a function call to find the thread's storage; 19 counters fit the
// space that the loader reserves for libraries loaded late.
extern constinit thread_local thread_counters_t thread_counters [[gnu::tls_model("initial-exec")]];

// Enters the thread into the list on its first call, counts in the totals after its last.
void addSlowly(std::size_t counter, int64_t change) noexcept;

inline void add(std::size_t counter, int64_t change) noexcept {
  thread_counters_t& own = thread_counters;
  if (own.state != thread_state_t::RUNNING) return addSlowly(counter, change);
  // One writer per counter: a plain addition, atomic only towards the readers.
  std::atomic<int64_t>& value = own.counters[counter];
  value.store(value.load(std::memory_order_relaxed) + change, std::memory_order_relaxed);
}

inline void countMade(standin_block_t kind) noexcept { add(kind, 1); }
inline void countFreed(standin_block_t kind, int64_t blocks) noexcept { add(kind, -blocks); }

inline void countCall(standin_function_t function) noexcept {
  add(std::size_t{STANDIN_BLOCK_KINDS} + function, 1);
}

} // namespace standin

#endif
