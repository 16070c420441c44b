// In which fields two values differ. The order of a map's entries does not matter, that of a list's
// elements does.
#ifndef VLT_TOOLS_REPLAY_COMPARING_DIFFERENCE_HPP
#define VLT_TOOLS_REPLAY_COMPARING_DIFFERENCE_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "value/data_t.hpp"

namespace com::velanto::connectivity::tools {

struct difference_t {
  std::string path;                  // such as event.payload.site_Crew[2]."shift leader"
  std::optional<std::string> before; // as JSON; nothing: not there
  std::optional<std::string> after;
  bool is_whole = false; // the fields that differ are within the value, too deep to enter
};

// What a reader of such a value needs to know.
inline constexpr const char* TOO_DEEP = "too deep for paths: the value as a whole";

// The fields in the order of `before`'s entries, then the fields that only `after` has. Enters
// values that are both maps or both lists, up to 30 of them within each other.
[[nodiscard]] std::vector<difference_t> differencesOf(const data_t& before, const data_t& after);

// A difference as a unified diff, each line at most 79 columns wide and with its end. Of a value
// that takes more than four of them, only the part around the first byte that differs.
[[nodiscard]] std::string unified(const difference_t& difference);

} // namespace com::velanto::connectivity::tools

#endif
