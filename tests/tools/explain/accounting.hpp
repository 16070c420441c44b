// The law of every explanation: it has each leaf that went in and each that came out once.
#ifndef VLT_TESTS_TOOLS_EXPLAIN_ACCOUNTING_HPP
#define VLT_TESTS_TOOLS_EXPLAIN_ACCOUNTING_HPP

#include <string>
#include <vector>

#include "tools/explain/fates.hpp"
#include "tools/explain/trace.hpp"

namespace com::velanto::connectivity::test {

// Nothing, or the first leaf that it has more or less than once.
std::string unaccounted(const tools::Trace& before, const tools::Trace& after,
                        const std::vector<tools::row_t>& rows);

} // namespace com::velanto::connectivity::test

#endif
