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

// In the library's own part of each thread's storage: the other kind allocates at first use, and
// ends the process without memory.
inline thread_local constinit std::uint64_t current_batch [[gnu::tls_model("initial-exec")]] =
    0; // 0: none

// The number of a batch for the length of its call. The outermost recorder on a thread takes the next
// number of the library; recorders further along the chain, which get the batch within that call,
// use the same one. So messages and the events made from them are found by it.
class BatchNumber {
 public:
  BatchNumber() noexcept : outer_(current_batch) {}
  BatchNumber(const BatchNumber&) = delete;
  BatchNumber& operator=(const BatchNumber&) = delete;
  ~BatchNumber() { current_batch = outer_; }

  // Takes one at the first call, if no recorder before this one has.
  [[nodiscard]] std::uint64_t get() noexcept;

 private:
  std::uint64_t outer_;
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
