#include "tests/docs/test_names.hpp"

#include <filesystem>

#include "tests/docs/markdown.hpp"
#include "tests/support/pattern.hpp"

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
  static const Pattern SOURCE(R"([\w./]+_test\.cpp)");
  for (const Pattern::match_t& source : SOURCE.allIn(sources)) {
    const document_t file = readDocument(std::filesystem::relative(folder / source[0], ROOT));
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
      if (!file.lines[i].starts_with("TEST") && !file.lines[i].starts_with("TYPED_TEST(")) continue;
      const bool is_broken = file.lines[i].ends_with(",");
      names.push_back(program + "." + nameIn(file.lines[i] + (is_broken ? file.lines[i + 1] : "")));
    }
  }
}

} // namespace

std::vector<std::string> testNames() {
  const Pattern test(R"(\n *add_test\(NAME ([\w.]+))");
  const Pattern program(R"(\nvlt_add_tests\(\s*(\w+)\s([^)]*)\))");
  std::vector<std::string> names;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(VLT_PROJECT_ROOT "/tests")) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    const std::string text = textOf(entry.path());
    const std::filesystem::path folder = entry.path().parent_path();
    for (const Pattern::match_t& found : test.allIn(text)) names.push_back(found[1]);
    for (const Pattern::match_t& found : program.allIn(text)) {
      appendProgram(names, folder, found[1], found[2]);
    }
  }
  return names;
}

} // namespace com::velanto::connectivity::test
