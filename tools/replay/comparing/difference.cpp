#include "tools/replay/comparing/difference.hpp"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "ndjson/json_writer.hpp"
#include "tools/record/columns.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t WIDTH = 77; // columns of a value, after its sign
// Each level entered takes stack and compares all that is below it once more.
constexpr int DEEPEST = 30;

// Plain names as they are, all others in quotes.
std::string plainOrQuoted(const data_t& key) {
  const std::string_view text = key.is_string() ? text_or_empty(key.get<const char*>()) : "";
  const bool plain = !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
  });
  return plain ? std::string(text) : toJson(key);
}

// Values that equal nothing, not even themselves: NaN, and tags of a newer host.
bool haveSameBits(const data_t& one, const data_t& other) {
  const bool equals_nothing =
      one.type_tag() == VLT_TAG_DOUBLE || one.type_tag() > VLT_TAG_BORROWED_STRING;
  return equals_nothing && one.type_tag() == other.type_tag() &&
         std::memcmp(one.underlying(), other.underlying(), sizeof(std::uint64_t)) == 0;
}

class Comparison {
 public:
  void compare(const std::string& path, const data_t* before, const data_t* after) {
    if (before == nullptr || after == nullptr) return note(path, before, after);
    if (*before == *after || haveSameBits(*before, *after)) return;
    const bool are_maps = areBoth(VLT_TAG_MAP, *before, *after);
    if (!are_maps && !areBoth(VLT_TAG_LIST, *before, *after)) return note(path, before, after);
    if (depth_ == DEEPEST) {
      note(path, before, after);
      found_.back().is_whole = true;
      return;
    }
    ++depth_;
    are_maps ? compareMaps(path, before->get<map_t>(), after->get<map_t>())
             : compareLists(path, before->get<list_t>(), after->get<list_t>());
    --depth_;
  }

  [[nodiscard]] std::vector<difference_t> take() && { return std::move(found_); }

 private:
  static bool areBoth(std::uint32_t tag, const data_t& before, const data_t& after) noexcept {
    return before.type_tag() == tag && after.type_tag() == tag;
  }
  void note(const std::string& path, const data_t* before, const data_t* after) {
    difference_t difference{path, {}, {}};
    if (before != nullptr) difference.before = toJson(*before);
    if (after != nullptr) difference.after = toJson(*after);
    found_.push_back(std::move(difference));
  }
  void compareMaps(const std::string& path, const map_t& before, const map_t& after) {
    const std::string prefix = path.empty() ? "" : path + ".";
    for (const auto& [key, value] : before) {
      compare(prefix + plainOrQuoted(key), &value, after.find_value(key));
    }
    for (const auto& [key, value] : after) {
      if (before.find_value(key) == nullptr) compare(prefix + plainOrQuoted(key), nullptr, &value);
    }
  }
  void compareLists(const std::string& path, const list_t& before, const list_t& after) {
    for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
      compare(path + "[" + std::to_string(i) + "]", i < before.size() ? &before[i] : nullptr,
              i < after.size() ? &after[i] : nullptr);
    }
  }

  std::vector<difference_t> found_;
  int depth_ = 0; // values that are entered
};

// `text` after `sign` in lines of WIDTH columns; from shortly before byte `at` on, if the whole
// takes too many lines.
std::string inLines(const char* sign, std::string_view text, std::size_t at) {
  constexpr std::size_t LEAD = 24; // bytes
  constexpr int LINES = 4;
  std::string rest(text);
  if (widthOf(text) > WIDTH * LINES && at > LEAD) {
    rest = cutBefore(text, widthOf(text.substr(at - LEAD)) + 1);
  }
  rest = cutBehind(rest, WIDTH * LINES);
  std::string out;
  while (!rest.empty() || out.empty()) {
    const std::size_t end = bytesOf(rest, WIDTH);
    out.append(out.empty() ? sign : "  ").append(rest, 0, end).append("\n");
    rest.erase(0, end);
  }
  return out;
}

} // namespace

std::vector<difference_t> differencesOf(const data_t& before, const data_t& after) {
  Comparison comparison;
  comparison.compare("", &before, &after);
  return std::move(comparison).take();
}

std::string unified(const difference_t& difference) {
  const std::string_view before = difference.before ? *difference.before : std::string_view();
  const std::string_view after = difference.after ? *difference.after : std::string_view();
  const auto differing = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto at = static_cast<std::size_t>(differing.first - before.begin());
  std::string text = "@ ";
  text += cutBefore(difference.path, WIDTH);
  text += '\n';
  if (difference.is_whole) text.append("  ").append(TOO_DEEP).append("\n");
  if (difference.before) text += inLines("- ", before, at);
  if (difference.after) text += inLines("+ ", after, at);
  return text;
}

} // namespace com::velanto::connectivity::tools
