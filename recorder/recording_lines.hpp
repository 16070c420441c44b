// The lines of a recording besides the messages themselves, and what a reader of them must know:
//
//   {"recording":{"head":{…}}}                          first line of each file
//   {"recorded":{"time":…,"number":…,…},MESSAGE}        one message, after the remark about it
//   {"recording":{"gap":{"first":…,"last":…,…}}}        messages lost since the line before
//   {"recording":{"foot":{"ended":…,"seen":…,…}}}       last line of a file that ended orderly
//
// docs/recording.md explains the members.
#ifndef VLT_RECORDER_RECORDING_LINES_HPP
#define VLT_RECORDER_RECORDING_LINES_HPP

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "recorder/configuration.hpp"

namespace com::velanto::connectivity::recorder {

struct remark_t {
  std::uint64_t time; // ns since the epoch
  std::uint64_t number;
  std::uint64_t batch;
  std::uint64_t place; // in the batch, from 0
  std::uint64_t of;    // messages in the batch
  Direction direction;
};

// Messages `first` to `last` have no line; `lost` of them are lost, the others filtered.
struct gap_t {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  std::uint64_t lost = 0;
  const char* reason = ""; // "buffer", "message", "disk" or "stopped"

  // Lengthens the gap by messages that come after it; the first ones decide its reason.
  void add(const gap_t& more) noexcept {
    if (lost == 0) {
      *this = more;
    } else {
      last = more.last;
      lost += more.lost;
    }
  }
};

// seen = recorded + filtered + lost
struct counts_t {
  std::uint64_t seen = 0;
  std::uint64_t recorded = 0;
  std::uint64_t filtered = 0;
  std::uint64_t lost = 0;
  bool operator==(const counts_t&) const = default;
};

// The longest of each, in bytes.
inline constexpr std::size_t REMARK_SIZE = 200;
inline constexpr std::size_t GAP_SIZE = 160;
inline constexpr std::size_t FOOT_SIZE = 256;

// Write at `at`, where that many bytes must be free, and return the end. The remark comes with the
// opening brace of its line, and a comma after it; the others are whole lines.
char* writeRemark(char* at, const remark_t& remark) noexcept;
char* writeGap(char* at, const gap_t& gap) noexcept;
char* writeFoot(char* at, std::uint64_t ended, const counts_t& counts, bool has_next) noexcept;

// The messages of whole lines: those in the range of a gap count as in the gap.
struct passage_t {
  std::uint64_t first = 0; // numbers of the first and last message; 0: lines without any
  std::uint64_t last = 0;
  std::uint64_t recorded = 0;
  std::uint64_t lost = 0;
};
[[nodiscard]] passage_t readPassage(std::string_view lines) noexcept;

// Nanoseconds since the epoch.
[[nodiscard]] std::uint64_t timeNow() noexcept;

} // namespace com::velanto::connectivity::recorder

#endif
