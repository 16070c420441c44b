// What all recorders of the loaded library share: the identity of its run, the number of the batch
// on its way, and a last call before the library goes.
#ifndef VLT_RECORDER_LIBRARY_LIFE_HPP
#define VLT_RECORDER_LIBRARY_LIFE_HPP

#include <cstdint>

namespace com::velanto::connectivity::recorder {

// The run of this library in this process, never 0. A fork gives the child another one, by which a
// recorder from before it knows that it is a copy, without its writer thread.
[[nodiscard]] std::uint64_t currentRun() noexcept;
// Must have returned once before the first fork. Throws std::bad_alloc.
void watchForks();

// The batch that is on its way on this thread.
struct batch_on_its_way_t {
  std::uint64_t number; // 0: not taken yet
  std::uint64_t way;    // chain and direction
};
// In the library's own part of each thread's storage: the other kind allocates at first use, and
// ends the process without memory.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): each thread has its own
inline thread_local constinit batch_on_its_way_t current_batch
    [[gnu::tls_model("initial-exec")]] = {0, 0};

// The number of a batch for the length of its call. The outermost recorder on a thread takes the next
// number of the library; recorders further along the way, which get the batch within that call, use
// the same one. So messages and the events made from them are found by it. A batch that goes another
// way within that call has a number of its own.
class BatchNumber {
 public:
  // `way` is the same for the recorders of a chain in one direction, and not 0.
  explicit BatchNumber(std::uint64_t way) noexcept : outer_(current_batch) {
    if (outer_.way != way) current_batch = {0, way};
  }
  BatchNumber(const BatchNumber&) = delete;
  BatchNumber& operator=(const BatchNumber&) = delete;
  ~BatchNumber() { current_batch = outer_; }

  // Takes one at the first call, if no recorder before this one has.
  [[nodiscard]] std::uint64_t get() noexcept;

 private:
  batch_on_its_way_t outer_;
};

// Something with a thread, which must end before the library is unloaded: when a host unloads it
// without destroying its plug-ins, and when the process ends.
class Guest {
 public:
  Guest() = default;
  Guest(const Guest&) = delete;
  Guest& operator=(const Guest&) = delete;

 protected:
  ~Guest() = default;
  // On the list of those to call. `leave` waits for a call that is running.
  void enter() noexcept;
  void leave() noexcept;

 private:
  friend class LastCall;
  virtual void libraryEnds() noexcept = 0;
  Guest* next_ = nullptr;
};

} // namespace com::velanto::connectivity::recorder

#endif
