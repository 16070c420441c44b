// Static probes, at which a tracer listens while the host runs: bpftrace, SystemTap or gdb finds them
// by name in the built plug-in. docs/operating.md shows their use.
//
//   ostrovia:batch    messages, kept, dropped, ns    a batch towards the host went through the codec,
//                                                    before it goes on to the next link
//   ostrovia:dropped  reason, id                     a message was dropped; strings as in the log,
//                                                    empty for none
//
// A tracer counts itself in the semaphore of a probe. Without one a probe costs the look at that.
#ifndef VLT_PLUGIN_PROBES_HPP
#define VLT_PLUGIN_PROBES_HPP

#include <cstddef>
#include <cstdint>

// How many tracers listen. They write here from outside; the notes of the probes have the names.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): const ones may be read-only
extern "C" {
[[gnu::visibility("hidden")]] extern volatile unsigned short ostrovia_batch_semaphore;
[[gnu::visibility("hidden")]] extern volatile unsigned short ostrovia_dropped_semaphore;
}
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

namespace com::velanto::connectivity::probes {

// One batch, from construction on. Reads the clock only while somebody listens.
class Batch {
 public:
  Batch() noexcept : began_(ostrovia_batch_semaphore == 0 ? 0 : nanoseconds()) {}

  // The end of the batch. Nobody hears of a batch that began while nobody listened.
  void end(std::ptrdiff_t messages, std::ptrdiff_t kept) const noexcept {
    if (began_ != 0) fire(messages, kept);
  }

  // Of std::chrono::steady_clock.
  static std::int64_t nanoseconds() noexcept;

 private:
  [[gnu::cold, gnu::noinline]] void fire(std::ptrdiff_t messages,
                                         std::ptrdiff_t kept) const noexcept;

  std::int64_t began_;
};

// A dropped message. Both strings may be null. Its callers report the message, too: inside of the
// report, the call would change what the compiler inlines into conversions.
[[gnu::cold, gnu::noinline]] void dropped(const char* reason, const char* id) noexcept;

} // namespace com::velanto::connectivity::probes

#endif
