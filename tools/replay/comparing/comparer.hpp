// Compares golden lines two by two and shows on a stream where they differ, message by message.
#ifndef VLT_TOOLS_REPLAY_COMPARING_COMPARER_HPP
#define VLT_TOOLS_REPLAY_COMPARING_COMPARER_HPP

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "ndjson/json_reader.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

// One side of a pair: a golden line and where it comes from; without a line there is nothing on
// this side.
struct side_t {
  std::string place;
  std::optional<std::string> line;
};

class Comparer {
 public:
  // It shows so many messages that differ, and only counts the rest.
  static constexpr std::uint64_t SHOWN = 50;

  // `from` is the source of the lines before: the name of a file.
  Comparer(std::ostream& out, std::string from) : out_(out), from_(std::move(from)) {}

  // At least one side has a line.
  void compare(const side_t& before, const side_t& after);

  // Says how many pairs differ, if any do; the status is then EXIT_DIFFERENT.
  [[nodiscard]] exit_status_t report() const;

 private:
  [[nodiscard]] std::string fieldsOf(const std::string& before, const std::string& after);

  std::ostream& out_;
  std::string from_;
  JsonReader reader_;
  std::uint64_t compared_ = 0;
  std::uint64_t different_ = 0;
};

} // namespace com::velanto::connectivity::tools

#endif
