// Nothing is timed before it was seen to do the same: each contender's messages and log lines are
// compared with the plug-in's, whatever the order of the members of an object and however a number
// is written.
#ifndef VLT_BENCH_COMPARISON_HPP
#define VLT_BENCH_COMPARISON_HPP

#include <string>

#include "bench/contender.hpp"

namespace com::velanto::connectivity::bench {

// Which of a contender's results have to be the reference's.
enum class sameness_t {
  content, // the messages as JSON values, and the log
  slots,   // besides, the order of the entries in every table
};

// Throws std::runtime_error that names `what`, `name` and the first difference.
void requireSame(const std::string& what, Contender& reference, const std::string& name,
                 Contender& other, sameness_t sameness);

} // namespace com::velanto::connectivity::bench

#endif
