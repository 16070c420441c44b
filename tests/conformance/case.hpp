// One case of the data files, read and checked: what the codec is given and what must come of it.
// README.md explains the members of a line.
#ifndef VLT_TESTS_CONFORMANCE_CASE_HPP
#define VLT_TESTS_CONFORMANCE_CASE_HPP

#include <optional>
#include <string>
#include <vector>

#include "tests/conformance/value_decoder.hpp"
#include "tests/support/host_fixture.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::test {

// The names under which cases create the plug-in; every expected log line begins with them.
inline constexpr const char* CASE_PLUGIN = "codec";
inline constexpr const char* CASE_CHAIN = "conformance";

struct case_t {
  ValueDecoder decoder; // owns the texts of borrowed strings below
  std::string name;
  bool null_configuration = false; // create is given a null pointer
  data_t configuration;
  bool created = true;
  bool towards_transport = false;
  vlt_log_level_t log_level = 3;
  std::vector<Message> in;
  std::vector<Message> out;
  std::optional<std::vector<Message>> dropped; // in any order; unset: not looked at
  std::vector<log_line_t> log;
  std::string standard_error;
};

// Reads a line of a data file, already parsed. Throws BadCase, in particular for a member that the
// format does not know.
[[nodiscard]] case_t readCase(const data_t& line);

} // namespace com::velanto::connectivity::test

#endif
