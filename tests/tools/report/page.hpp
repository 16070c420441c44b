// What every page keeps to, as text alone can show it.
#ifndef VLT_TESTS_TOOLS_REPORT_PAGE_HPP
#define VLT_TESTS_TOOLS_REPORT_PAGE_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

// Each element is closed in its turn, each id is there once, each link leads to an id of the page,
// and nothing runs or loads.
void expectSound(const std::string& page);

// The ids of sections, in their order.
std::vector<std::string> sectionsOf(const std::string& page);

// The text of the element with the id and of all within it, without markup; entities are characters
// and lines are joined with blanks.
std::string textOf(const std::string& page, const std::string& id);

} // namespace com::velanto::connectivity::test

#endif
