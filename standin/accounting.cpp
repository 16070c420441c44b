// The slow half of counting: threads that come and go, sums, and resets.
#include "standin/accounting.hpp"

#include <pthread.h>

#include <mutex>

namespace standin {

// Named again, since g++ forgets the model of the declaration.
constinit thread_local thread_counters_t thread_counters [[gnu::tls_model("initial-exec")]];

namespace {

std::mutex counts_lock; // guards the variables below
thread_counters_t* running_threads = nullptr;
std::array<int64_t, COUNTER_COUNT> ended_totals{};
std::array<int64_t, COUNTER_COUNT> calls_at_reset{};

// The destructor of a pthread key, because that runs after the destructors of all C++ thread-local
// objects. These may still free values.
void endThread(void* ended) {
  auto& thread = *static_cast<thread_counters_t*>(ended);
  const std::lock_guard guard(counts_lock);
  for (std::size_t i = 0; i < COUNTER_COUNT; ++i) {
    ended_totals[i] += thread.counters[i].load(std::memory_order_relaxed);
  }
  (thread.previous != nullptr ? thread.previous->next : running_threads) = thread.next;
  if (thread.next != nullptr) thread.next->previous = thread.previous;
  thread.state = thread_state_t::ENDED;
}

struct end_key_t {
  pthread_key_t key{};
  bool made = pthread_key_create(&key, endThread) == 0;
};

// Only a thread with a destructor for its end may enter the list: its counters vanish with it.
bool enterThread() noexcept {
  static const end_key_t END;
  thread_counters_t& own = thread_counters;
  if (!END.made || pthread_setspecific(END.key, &own) != 0) return false;
  const std::lock_guard guard(counts_lock);
  own.next = running_threads;
  if (running_threads != nullptr) running_threads->previous = &own;
  running_threads = &own;
  own.state = thread_state_t::RUNNING;
  return true;
}

// The caller holds the lock.
int64_t sum(std::size_t counter) noexcept {
  int64_t total = ended_totals[counter];
  for (const thread_counters_t* thread = running_threads; thread != nullptr;
       thread = thread->next) {
    total += thread->counters[counter].load(std::memory_order_relaxed);
  }
  return total;
}

} // namespace

void addSlowly(std::size_t counter, int64_t change) noexcept {
  if (thread_counters.state == thread_state_t::FRESH && enterThread()) return add(counter, change);
  const std::lock_guard guard(counts_lock);
  ended_totals[counter] += change;
}

} // namespace standin

using namespace standin;

int64_t standin_live_blocks(standin_block_t kind) {
  if (kind >= STANDIN_BLOCK_KINDS) return 0;
  const std::lock_guard guard(counts_lock);
  return sum(kind);
}

int64_t standin_live_blocks_total(void) {
  const std::lock_guard guard(counts_lock);
  int64_t total = 0;
  for (std::size_t i = 0; i < STANDIN_BLOCK_KINDS; ++i) total += sum(i);
  return total;
}

int64_t standin_calls(standin_function_t function) {
  if (function >= STANDIN_FUNCTIONS) return 0;
  const std::lock_guard guard(counts_lock);
  const std::size_t counter = std::size_t{STANDIN_BLOCK_KINDS} + function;
  return sum(counter) - calls_at_reset[counter];
}

int64_t standin_calls_total(void) {
  const std::lock_guard guard(counts_lock);
  int64_t total = 0;
  for (std::size_t i = STANDIN_BLOCK_KINDS; i < COUNTER_COUNT; ++i) {
    total += sum(i) - calls_at_reset[i];
  }
  return total;
}

// Remembers the sums instead of clearing the counters, which only their own threads may write.
void standin_reset_calls(void) {
  const std::lock_guard guard(counts_lock);
  for (std::size_t i = STANDIN_BLOCK_KINDS; i < COUNTER_COUNT; ++i) calls_at_reset[i] = sum(i);
}
