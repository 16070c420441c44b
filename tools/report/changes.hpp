// How a run differs from another one: which fields changed in how many messages, and the first
// messages side by side. Memory is bounded.
#ifndef VLT_TOOLS_REPORT_CHANGES_HPP
#define VLT_TOOLS_REPORT_CHANGES_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/replay/comparing/difference.hpp"

namespace com::velanto::connectivity::tools::report {

// A message that differs. A place is empty where the other run has nothing.
struct changed_message_t {
  std::string before;
  std::string after;
  std::vector<difference_t> fields; // the first ones, long values cut
  std::size_t other_fields = 0;
};

struct changed_field_t {
  std::string path;
  std::uint64_t count = 0;
  difference_t first{}; // of the first message, long values cut
};

class Changes {
 public:
  static constexpr std::size_t MOST_MESSAGES = 15;
  static constexpr std::size_t MOST_FIELDS = 10;     // of a message
  static constexpr std::size_t MOST_PATHS = 500;     // of different fields
  static constexpr std::size_t LONGEST_VALUE = 1000; // bytes

  // `anchor` is its place on the page, `title` names the runs compared; `before` and `after` head the
  // columns.
  Changes(const char* anchor, std::string title, const char* before, const char* after)
      : anchor_(anchor), title_(std::move(title)), before_(before), after_(after) {}

  void add(const std::string& place_before, const std::string& place_after,
           const std::vector<difference_t>& differences);
  // Messages that were compared and that differed, in all.
  void close(std::uint64_t compared, std::uint64_t different) noexcept {
    compared_ = compared;
    different_ = different;
  }

  [[nodiscard]] const char* anchor() const noexcept { return anchor_; }
  [[nodiscard]] const std::string& title() const noexcept { return title_; }
  [[nodiscard]] const char* before() const noexcept { return before_; }
  [[nodiscard]] const char* after() const noexcept { return after_; }
  [[nodiscard]] std::uint64_t compared() const noexcept { return compared_; }
  [[nodiscard]] std::uint64_t different() const noexcept { return different_; }
  [[nodiscard]] const std::vector<changed_message_t>& messages() const noexcept {
    return messages_;
  }
  // The most frequent first, among equals the earliest.
  [[nodiscard]] std::vector<const changed_field_t*> fields() const;
  [[nodiscard]] std::uint64_t otherFields() const noexcept { return other_fields_; }

 private:
  const char* anchor_;
  std::string title_;
  const char* before_;
  const char* after_;
  std::uint64_t compared_ = 0;
  std::uint64_t different_ = 0;
  std::vector<changed_message_t> messages_;
  std::vector<changed_field_t> fields_;                     // in the order of their first messages
  std::map<std::string, std::size_t, std::less<>> numbers_; // of the fields, by path
  std::uint64_t other_fields_ = 0;                          // changes of fields beyond MOST_PATHS
};

} // namespace com::velanto::connectivity::tools::report

#endif
