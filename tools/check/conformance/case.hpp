// The conformance files, read and checked: for each line the input of the codec and the expected
// result. README.md explains the members of a line.
#ifndef VLT_TOOLS_CHECK_CONFORMANCE_CASE_HPP
#define VLT_TOOLS_CHECK_CONFORMANCE_CASE_HPP

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/logging.h"
#include "tools/check/conformance/value_decoder.hpp"
#include "tools/check/trial.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// A line of the file NAME.ndjson beside this source, as it was when the program was built.
struct embedded_t {
  const char* file;
  const char* text;
};

// File by file, in their order.
[[nodiscard]] std::span<const embedded_t> embeddedLines() noexcept;

struct line_t {
  std::string file;
  int number; // from 1
  std::string name;
  data_t json;

  // "FILE.ndjson:NUMBER NAME"
  [[nodiscard]] std::string place() const;
};

// The lines of one file. Throws BadCase, which names the place, for a line that is no case, a
// repeated name and a file that does not exist.
[[nodiscard]] std::vector<line_t> readLines(std::string_view file);

struct case_t {
  ValueDecoder decoder; // owns the bytes of borrowed strings below
  std::string name;
  bool advised = false;
  bool null_configuration = false; // create gets a null pointer
  data_t configuration;
  bool created = true;
  bool towards_transport = false;
  vlt_log_level_t log_level = 3;
  std::vector<Message> in;
  std::vector<Message> out;
  bool passes = false;                         // `out` has the form of `in`
  std::optional<std::vector<Message>> dropped; // in any order; unset: not compared
  lines_t log;                                 // as check::line makes them
  lines_t standard_error;
};

// Reads a line. Throws BadCase, in particular for a member that the format does not know.
[[nodiscard]] case_t readCase(const data_t& line);

} // namespace com::velanto::connectivity::tools::check

#endif
