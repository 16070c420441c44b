#include "tests/docs/test_names.hpp"

#include <filesystem>
#include <regex>

#include "tests/docs/markdown.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr const char* ROOT = VLT_PROJECT_ROOT "/";

std::string textOf(const std::filesystem::path& file) {
  std::string text;
  for (const std::string& line : readDocument(std::filesystem::relative(file, ROOT)).lines) {
    text += line + "\n";
  }
  return text;
}

// Calls `found` with each match of `pattern` in `text`.
template <class Found>
void search(const std::string& text, const char* pattern, const Found& found) {
  const std::regex expression(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
       ++match) {
    found(*match);
  }
}

void appendProgram(std::vector<std::string>& names, const std::filesystem::path& folder,
                   const std::string& program, const std::string& sources) {
  search(sources, R"([\w./]+_test\.cpp)", [&](const std::smatch& source) {
    search(textOf(folder / source.str()), R"(\n(?:TYPED_)?TEST(?:_[FP])?\((\w+),\s*(\w+)\))",
           [&](const std::smatch& test) {
             names.push_back(program + "." + test.str(1) + "." + test.str(2));
           });
  });
}

} // namespace

std::vector<std::string> testNames() {
  std::vector<std::string> names;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(VLT_PROJECT_ROOT "/tests")) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    const std::string text = textOf(entry.path());
    const std::filesystem::path folder = entry.path().parent_path();
    search(text, R"(\n *add_test\(NAME ([\w.]+))",
           [&](const std::smatch& test) { names.push_back(test.str(1)); });
    search(text, R"(\nvlt_add_tests\(\s*(\w+)\s([^)]*)\))", [&](const std::smatch& program) {
      appendProgram(names, folder, program.str(1), program.str(2));
    });
  }
  return names;
}

} // namespace com::velanto::connectivity::test
