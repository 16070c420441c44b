// The figures of a round of traffic: two rounds over the same messages must have equal ones.
#ifndef VLT_TESTS_SOAK_FIGURES_HPP
#define VLT_TESTS_SOAK_FIGURES_HPP

#include <cstdint>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::soak {

struct figures_t {
  std::int64_t sent_towards_host = 0;
  std::int64_t sent_towards_transport = 0;
  std::int64_t reached_host = 0;
  std::int64_t reached_transport = 0;
  std::int64_t dropped = 0; // lines about dropped messages
  std::int64_t traced = 0;  // lines of the trace level
  std::uint64_t digest = 0; // of all that reached a link and of the lines about dropped messages

  bool operator==(const figures_t&) const = default;

  // The first contradiction within the figures; empty when they add up.
  [[nodiscard]] std::string imbalance() const;
};

[[nodiscard]] std::string describe(const figures_t& figures);

// Mixes `text` into a digest; the order of the strings counts.
[[nodiscard]] std::uint64_t mixed(std::uint64_t digest, std::string_view text) noexcept;

} // namespace com::velanto::connectivity::soak

#endif
