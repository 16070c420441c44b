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

// The name in `declaration`, "TEST_F(Suite, Test) …", as "Suite.Test".
std::string nameIn(const std::string& declaration) {
  const std::size_t open = declaration.find('(') + 1;
  const std::size_t comma = declaration.find(',', open);
  const std::size_t test = declaration.find_first_not_of(' ', comma + 1);
  return declaration.substr(open, comma - open) + "." +
         declaration.substr(test, declaration.find(')', test) - test);
}

void appendProgram(std::vector<std::string>& names, const std::filesystem::path& folder,
                   const std::string& program, const std::string& sources) {
  search(sources, R"([\w./]+_test\.cpp)", [&](const std::smatch& source) {
    const document_t file = readDocument(std::filesystem::relative(folder / source.str(), ROOT));
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
      if (!file.lines[i].starts_with("TEST") && !file.lines[i].starts_with("TYPED_TEST(")) continue;
      const bool is_broken = file.lines[i].ends_with(",");
      names.push_back(program + "." + nameIn(file.lines[i] + (is_broken ? file.lines[i + 1] : "")));
    }
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
