// The choice of messages for a recording. Directions, kinds and paths are looked at before anything
// is rendered.
#ifndef VLT_RECORDER_FILTER_HPP
#define VLT_RECORDER_FILTER_HPP

#include <cstdint>
#include <string>

#include "recorder/configuration.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::recorder {

// Calls no function of the host, allocates nothing.
class Filter {
 public:
  Filter(const configuration_t& configuration, std::uint64_t run);

  [[nodiscard]] bool takesDirection(Direction direction) const noexcept {
    return (directions_ & 1U << static_cast<unsigned>(direction)) != 0;
  }
  // Whether batches are sampled, so that their number decides.
  [[nodiscard]] bool samples() const noexcept { return one_in_ > 1; }
  // One batch in `oneIn`, chosen by a hash of run and number: all recorders of a chain choose the
  // same ones, whatever the rhythm of the traffic.
  [[nodiscard]] bool takesBatch(std::uint64_t number) const noexcept;
  [[nodiscard]] bool takesAllMessages() const noexcept {
    return kinds_ == 0 && path_prefix_.empty();
  }
  // By kind and path: before the codec by the metadata entry "pulsarPath", after it by "vlt.type".
  [[nodiscard]] bool takes(const Message& message) const noexcept;

 private:
  [[nodiscard]] bool takesPath(const char* path) const noexcept;
  [[nodiscard]] bool takesType(const char* type) const noexcept;

  unsigned directions_;
  unsigned kinds_;
  std::string path_prefix_;
  std::uint64_t one_in_;
  std::uint64_t run_;
};

} // namespace com::velanto::connectivity::recorder

#endif
