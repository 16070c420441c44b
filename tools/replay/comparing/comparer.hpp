// Compares golden lines or values two by two and shows on a stream where they differ, message by message.
#ifndef VLT_TOOLS_REPLAY_COMPARING_COMPARER_HPP
#define VLT_TOOLS_REPLAY_COMPARING_COMPARER_HPP

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/replay/comparing/difference.hpp"

namespace com::velanto::connectivity::tools {

// One side of a pair: a golden line and where it comes from; without a line there is nothing on
// this side.
struct side_t {
  std::string place;
  std::optional<std::string> line;
};

// The same for a value.
struct value_side_t {
  std::string place;
  const data_t* value; // null: nothing on this side
};

class Comparer {
 public:
  // It shows so many messages that differ, and only counts the rest.
  static constexpr std::uint64_t SHOWN = 50;

  // `from` is the source of the lines before: the name of a file.
  Comparer(std::ostream& out, std::string from) : out_(out), from_(std::move(from)) {}

  // At least one side has a line.
  void compare(const side_t& before, const side_t& after);

  // The same for values; `differences` are those between them, none when one side has nothing.
  void compare(const value_side_t& before, const value_side_t& after,
               const std::vector<difference_t>& differences);
  // A pair without a difference, which the caller has compared.
  void countSame() noexcept { ++compared_; }

  // Calls `listener` for each pair that differs from now on; `differences` are none when one side has
  // nothing, or when a line is no golden one.
  using listener_t = std::function<void(const side_t& before, const side_t& after,
                                        const std::vector<difference_t>& differences)>;
  void listen(listener_t listener) { listener_ = std::move(listener); }

  [[nodiscard]] std::uint64_t compared() const noexcept { return compared_; }
  [[nodiscard]] std::uint64_t different() const noexcept { return different_; }

  // Says how many pairs differ, if any do; the status is then EXIT_DIFFERENT.
  [[nodiscard]] exit_status_t report() const;

 private:
  void show(const side_t& before, const side_t& after,
            const std::vector<difference_t>& differences);
  [[nodiscard]] std::vector<difference_t> fieldsOf(const std::string& before,
                                                   const std::string& after);

  std::ostream& out_;
  std::string from_;
  JsonReader reader_;
  listener_t listener_;
  std::uint64_t compared_ = 0;
  std::uint64_t different_ = 0;
};

} // namespace com::velanto::connectivity::tools

#endif
