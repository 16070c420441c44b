#include "recorder/library_life.hpp"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <new>
#include <utility>

#include "recorder/recording_lines.hpp"

namespace com::velanto::connectivity::recorder {

namespace {

std::uint64_t makeRun() noexcept {
  const auto process = static_cast<std::uint64_t>(getpid());
  return ((timeNow() * 0x9E3779B97F4A7C15U) ^ (process << 1U)) | 1U;
}

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): of the whole library
std::atomic<std::uint64_t> run{makeRun()};
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): for the same reason
std::atomic<std::uint64_t> batches{0};

} // namespace

// The guests, and the object whose destructor calls them.
class LastCall {
 public:
  LastCall() = default;
  LastCall(const LastCall&) = delete;
  LastCall& operator=(const LastCall&) = delete;
  ~LastCall() {
    const std::lock_guard guard(lock_);
    while (first_ != nullptr) std::exchange(first_, first_->next_)->libraryEnds();
  }

  void add(Guest* guest) noexcept {
    const std::lock_guard guard(lock_);
    guest->next_ = std::exchange(first_, guest);
  }
  void remove(Guest* guest) noexcept {
    const std::lock_guard guard(lock_);
    Guest** link = &first_;
    while (*link != nullptr && *link != guest) link = &(*link)->next_;
    if (*link == guest) *link = guest->next_;
  }
  // In the child of a fork: the threads of the guests are not here, nor is one that held the lock.
  void forget() noexcept {
    first_ = nullptr;
    new (&lock_) std::mutex;
  }

 private:
  std::mutex lock_;
  Guest* first_ = nullptr;
};

namespace {

LastCall last_call; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

void beginChild() {
  run = makeRun();
  last_call.forget();
}

} // namespace

std::uint64_t currentRun() noexcept { return run.load(std::memory_order_relaxed); }

void watchForks() {
  static const bool WATCHED = [] {
    if (pthread_atfork(nullptr, nullptr, beginChild) != 0) throw std::bad_alloc();
    return true;
  }();
  static_cast<void>(WATCHED);
}

std::uint64_t BatchNumber::get() noexcept {
  std::uint64_t& number = current_batch.number;
  if (number == 0) number = batches.fetch_add(1, std::memory_order_relaxed) + 1;
  return number;
}

void Guest::enter() noexcept { last_call.add(this); }
void Guest::leave() noexcept { last_call.remove(this); }

} // namespace com::velanto::connectivity::recorder
