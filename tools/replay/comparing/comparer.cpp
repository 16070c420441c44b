#include "tools/replay/comparing/comparer.hpp"

#include <algorithm>
#include <vector>

#include "ndjson/json_writer.hpp"
#include "tools/options/replay_options.hpp"
#include "tools/record/columns.hpp"
#include "tools/replay/writing/golden.hpp"

namespace com::velanto::connectivity::tools {

void Comparer::compare(const side_t& before, const side_t& after) {
  ++compared_;
  if (before.line && after.line && contentOf(*before.line) == contentOf(*after.line)) return;
  std::vector<difference_t> differences;
  if (before.line && after.line) differences = fieldsOf(*before.line, *after.line);
  if (before.line && after.line && differences.empty()) return; // in the order of entries alone
  show(before, after, differences);
}

void Comparer::compare(const value_side_t& before, const value_side_t& after,
                       const std::vector<difference_t>& differences) {
  ++compared_;
  const bool both = before.value != nullptr && after.value != nullptr;
  if (both && differences.empty()) return;
  const auto side_of = [both](const value_side_t& side) -> side_t {
    if (side.value == nullptr) return {side.place, {}};
    return {side.place, both ? "" : toJson(*side.value)};
  };
  show(side_of(before), side_of(after), differences);
}

void Comparer::show(const side_t& before, const side_t& after,
                    const std::vector<difference_t>& differences) {
  if (listener_) listener_(before, after, differences);
  if (different_++ >= SHOWN) return;
  std::string text;
  const auto append_place = [&text](const char* sign, const side_t& side) {
    text += sign;
    text += side.line ? cutBefore(side.place, 75) : "nothing";
    text += '\n';
  };
  append_place("--- ", before);
  append_place("+++ ", after);
  if (!before.line) text.append("+ ").append(cutBehind(*after.line, 77)).append("\n");
  if (!after.line) text.append("- ").append(cutBehind(*before.line, 77)).append("\n");
  for (const difference_t& difference : differences) text += unified(difference);
  out_ << text;
}

exit_status_t Comparer::report() const {
  if (different_ == 0) return EXIT_FINE;
  std::string text = std::to_string(different_) + " of " + std::to_string(compared_) +
                     " messages differ from " + from_;
  if (different_ > SHOWN) text += ", the first " + std::to_string(SHOWN) + " are shown";
  out_ << REPLAY_NAME << ": " << text + "\n";
  return EXIT_DIFFERENT;
}

// The differing fields.
std::vector<difference_t> Comparer::fieldsOf(const std::string& before, const std::string& after) {
  // The content alone is an object again with a brace for its first comma.
  const auto value_of = [this](const std::string& line) {
    std::string object(contentOf(line));
    if (object.starts_with(',')) object.front() = '{';
    return reader_.parseValue(object);
  };
  std::vector<difference_t> differences;
  try {
    differences = differencesOf(value_of(before), value_of(after));
    // A difference in the outcome explains the rest.
    std::stable_partition(differences.begin(), differences.end(),
                          [](const difference_t& d) { return d.path == "outcome"; });
  } catch (const MalformedJson&) { // names that occur twice, or no golden line at all
    differences = {{"", before, after}};
  }
  return differences;
}

} // namespace com::velanto::connectivity::tools
