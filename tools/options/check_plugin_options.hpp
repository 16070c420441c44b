// What can be asked of ostrovia-check-plugin, and the tables of its options, examples and exit
// statuses: the command line, its help, the man page and the completion are made from them.
#ifndef VLT_TOOLS_OPTIONS_CHECK_PLUGIN_OPTIONS_HPP
#define VLT_TOOLS_OPTIONS_CHECK_PLUGIN_OPTIONS_HPP

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace com::velanto::connectivity::tools::check {

inline constexpr const char* PROGRAM_NAME = "ostrovia-check-plugin";

struct command_t {
  std::string path; // of the library
  std::vector<std::string> only;
  std::vector<std::string> skip;
  double timeout_seconds = 10;
  std::optional<std::uint64_t> seed;
  bool list = false;
  bool json = false;
};

// What an option sets.
using target_t = std::variant<bool command_t::*, std::vector<std::string> command_t::*,
                              double command_t::*, std::optional<std::uint64_t> command_t::*>;

struct option_row_t {
  const char* name;     // with its dashes
  const char* argument; // as help shows it; empty: none is taken
  const char* help;
  target_t target;
};

[[nodiscard]] std::span<const option_row_t> optionTable() noexcept;

struct example_row_t {
  const char* command; // as typed into a shell
  const char* purpose;
};

// What --help begins with.
[[nodiscard]] std::span<const example_row_t> exampleTable() noexcept;

enum Status : int {
  STATUS_ALL_PASSED = 0,
  STATUS_SOME_FAILED = 1, // or crashed, or hung
  STATUS_NOT_CHECKED = 2, // wrong use, or a library that cannot be loaded
};

struct status_row_t {
  Status status;
  const char* meaning;
};

[[nodiscard]] std::span<const status_row_t> statusTable() noexcept;

} // namespace com::velanto::connectivity::tools::check

#endif
