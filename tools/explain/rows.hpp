// From links to fates: a row for each value that went in and each that came out.
#ifndef VLT_TOOLS_EXPLAIN_ROWS_HPP
#define VLT_TOOLS_EXPLAIN_ROWS_HPP

#include <vector>

#include "tools/explain/fates.hpp"
#include "tools/explain/links.hpp"

namespace com::velanto::connectivity::tools {

// Sorted by fates in the order of Fate, then by paths.
[[nodiscard]] std::vector<row_t> rowsOf(const answer_t& base, const links_t& links);

// The rows of a dropped message: its fields are lost one and all.
[[nodiscard]] std::vector<row_t> lostRowsOf(const Trace& before);

} // namespace com::velanto::connectivity::tools

#endif
