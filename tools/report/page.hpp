// A page of HTML about a run: one file that needs nothing else, without scripts. Its policy forbids
// all but its own style sheet, so a browser runs nothing and asks no network, whatever the texts of
// the messages are. The same contents give the same bytes.
#ifndef VLT_TOOLS_REPORT_PAGE_HPP
#define VLT_TOOLS_REPORT_PAGE_HPP

#include <string>

#include "tools/report/contents.hpp"

namespace com::velanto::connectivity::tools::report {

[[nodiscard]] std::string pageOf(contents_t& contents);

} // namespace com::velanto::connectivity::tools::report

#endif
