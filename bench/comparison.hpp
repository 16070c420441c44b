// Compares before anything is timed: each contender's messages and log lines with the plug-in's.
// The order of an object's members and the form of a number do not matter.
#ifndef VLT_BENCH_COMPARISON_HPP
#define VLT_BENCH_COMPARISON_HPP

#include <string>

#include "bench/contender.hpp"

namespace com::velanto::connectivity::bench {

// Which of a contender's results have to be the reference's.
enum class sameness_t {
  CONTENT, // the messages as JSON values, and the log
  SLOTS,   // in addition, the order of the entries in every table
};

// Throws std::runtime_error with `what`, `name` and the first difference.
void requireSame(const std::string& what, Contender& reference, const std::string& name,
                 Contender& other, sameness_t sameness);

} // namespace com::velanto::connectivity::bench

#endif
