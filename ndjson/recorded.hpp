// The remark of a recorder at the begin of a message's line, by which a reader tells a recorded line
// from one that a person wrote:
//
//   {"recorded":{"time":1715659331482000000,"number":18,"batch":7,"place":0,"of":2,
//    "direction":"host"},"metadata":…
#ifndef VLT_NDJSON_RECORDED_HPP
#define VLT_NDJSON_RECORDED_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace com::velanto::connectivity {

struct recorded_t {
  enum class Direction { HOST, TRANSPORT }; // towards which the message was sent

  std::int64_t time = 0;    // nanoseconds since 1970
  std::uint64_t number = 0; // of the message among all that the recorder saw, from 1
  std::uint64_t batch = 0;
  std::uint64_t place = 0; // of the message in its batch, from 0,
  std::uint64_t of = 0;    // which had this many messages
  Direction direction = Direction::HOST;

  bool operator==(const recorded_t&) const = default;
};

// The remark of `line`, by a look at its begin alone; white space may be between its tokens. Nothing
// when the line begins with none, or with a damaged one, which parseMessage refuses.
[[nodiscard]] std::optional<recorded_t> recordedIn(std::string_view line);

} // namespace com::velanto::connectivity

#endif
