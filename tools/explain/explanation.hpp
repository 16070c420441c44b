// The explanation of one message: derived here, written by explanation_text.cpp for people and by
// explanation_json.cpp for programs.
#ifndef VLT_TOOLS_EXPLAIN_EXPLANATION_HPP
#define VLT_TOOLS_EXPLAIN_EXPLANATION_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/explain/fates.hpp"
#include "tools/explain/faults.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

struct explanation_t {
  bool stable = true;        // asked again, the plug-in gave the same as in the run;
                             // otherwise there are no fates
  bool passed = false;       // one message came out, the same as went in
  bool limited = false;      // the message is too large to try everything
  std::size_t runs = 0;      // of the message with something changed
  std::vector<row_t> rows{}; // the fate of each field
  blame_t blame{};           // when nothing came out
  std::string stopped{};     // why there is nothing else, for a message too large for any run
};

// Why a line has a message that is too large to run again; empty: it is not. Four traces of the
// message then take up to 200 MB.
[[nodiscard]] std::string whyTooLarge(std::string_view line);

// `record` has the result of the message in the run, `probe` asks for it again.
[[nodiscard]] explanation_t explain(const record_t& record, Probe& probe);

// Lines of at most 79 columns with their ends. Cuts long strings, never numbers and names of other
// kinds. `colour`: fates in colours of a terminal.
[[nodiscard]] std::string explanationText(const record_t& record, const explanation_t& explanation,
                                          bool colour);

// One line with an object.
[[nodiscard]] std::string explanationJson(const record_t& record, const explanation_t& explanation);

} // namespace com::velanto::connectivity::tools

#endif
