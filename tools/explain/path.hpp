// The place of a value in a message, from "metadata" or "payload" down:
//
//   for people      source.id   list[2].x   "odd name"   metadata."vlt.type"
//                   Without the payload's own name, except for the payload as a whole or a list. In
//                   quotes, a field of the payload with one of the two names
//   for programs    ["payload","source","id"], as jq's getpath takes it
#ifndef VLT_TOOLS_EXPLAIN_PATH_HPP
#define VLT_TOOLS_EXPLAIN_PATH_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace com::velanto::connectivity::tools {

inline constexpr const char* METADATA = "metadata";
inline constexpr const char* PAYLOAD = "payload";

struct step_t {
  std::string key;       // of a map's entry, as JSON names it
  std::size_t index = 0; // of a list's element,
  bool in_list = false;  // which this tells

  bool operator==(const step_t&) const = default;
  bool operator<(const step_t& other) const {
    return std::tie(key, index, in_list) < std::tie(other.key, other.index, other.in_list);
  }
};

using path_t = std::vector<step_t>;

[[nodiscard]] std::string textOf(const path_t& path);
// One step below another, without punctuation: name or "quoted name".
[[nodiscard]] std::string nameOf(std::string_view key);

void appendJson(std::string& out, const path_t& path);

[[nodiscard]] path_t parentOf(const path_t& path);
// Whether `path` is `ancestor` or a place within it.
[[nodiscard]] bool isWithin(const path_t& path, const path_t& ancestor) noexcept;

} // namespace com::velanto::connectivity::tools

#endif
