# Writes OUTPUT, a source with the lines of FILES. A literal a line, since clang takes a single one of
# no more than 65536 characters for an extension.
set(rows "")
foreach(file IN LISTS FILES)
  cmake_path(GET file STEM name)
  file(READ ${file} text)
  string(FIND "${text}" ")~\"" mark)
  if(NOT mark EQUAL -1)
    message(FATAL_ERROR "${file}: has the mark that ends a literal, )~\"")
  endif()
  string(REGEX REPLACE "\n$" "" text "${text}")
  string(REPLACE "\n" ")~\"},\n    {\"${name}\", R\"~(" text "${text}")
  string(APPEND rows "    {\"${name}\", R\"~(${text})~\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"tools/check/conformance/case.hpp\"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr embedded_t LINES[] = {
${rows}};

} // namespace

std::span<const embedded_t> embeddedLines() noexcept { return LINES; }

} // namespace com::velanto::connectivity::tools::check
")
