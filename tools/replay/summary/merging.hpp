// One summary of the summaries of parts: the one that a single run over all parts would have had.
//
//   counts        add up
//   reasons       add up by code and key; the first is the first of the first part that has it
//   batches       the classes of their times add up, and the quantiles come from the sum
//   recordings    add up by name, plug-in, chain and run; files missing between two parts are deleted
//   seconds       add up: the time that one chain after the other takes
//   builds        must be the same in all parts
#ifndef VLT_TOOLS_REPLAY_SUMMARY_MERGING_HPP
#define VLT_TOOLS_REPLAY_SUMMARY_MERGING_HPP

#include <string>
#include <vector>

#include "tools/replay/input/inputs.hpp"

namespace com::velanto::connectivity::tools {

// The line that summaryJson() makes of all summaries in `inputs`, in their order. A line that begins
// as a summary is one; other lines, such as those of a log, mean nothing. Throws ReplayError: with
// EXIT_USAGE for an input without a summary, a damaged one, and one of another form or build; with
// EXIT_IO for an input that is not readable.
[[nodiscard]] std::string mergedSummaries(const std::vector<input_t>& inputs);

} // namespace com::velanto::connectivity::tools

#endif
