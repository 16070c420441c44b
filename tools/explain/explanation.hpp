// What there is to be told of one message: derived here, written by explanation_text.cpp for people
// and by explanation_json.cpp for programs.
#ifndef VLT_TOOLS_EXPLAIN_EXPLANATION_HPP
#define VLT_TOOLS_EXPLAIN_EXPLANATION_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "tools/explain/fates.hpp"
#include "tools/explain/faults.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

struct explanation_t {
  bool stable = true;        // the plug-in gave the same as in the run when it was asked again;
                             // otherwise nothing is derived
  bool passed = false;       // one message came out, the same as went in
  bool limited = false;      // the message is too large for all that should have been tried
  std::size_t runs = 0;      // of the message with something changed
  std::vector<row_t> rows{}; // what became of each field
  blame_t blame{};           // when nothing came out
};

// `record` tells what came of the message in the run, `probe` asks for it again.
[[nodiscard]] explanation_t explain(const record_t& record, Probe& probe);

// Lines of at most 79 columns with their ends; texts may be cut, numbers and names of other kinds
// never are. `colour`: fates in colours of a terminal.
[[nodiscard]] std::string explanationText(const record_t& record, const explanation_t& explanation,
                                          bool colour);

// One line with an object.
[[nodiscard]] std::string explanationJson(const record_t& record, const explanation_t& explanation);

} // namespace com::velanto::connectivity::tools

#endif
