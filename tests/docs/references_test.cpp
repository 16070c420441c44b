// Keeps the references of the documents true: (1) each link leads to a file, and to a heading in
// it; (2) each named test and file exists; (3) tables of the same things say the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>

#include "tests/docs/markdown.hpp"
#include "tests/docs/test_names.hpp"
#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {

namespace {

using strings_t = std::vector<std::string>;

strings_t groupsIn(const std::string& text, const char* pattern) {
  strings_t groups;
  for (const Pattern::match_t& found : Pattern(pattern).allIn(text)) groups.push_back(found[1]);
  return groups;
}

// The anchor of a heading in links.
std::string anchorOf(const std::string& heading) {
  std::string anchor;
  for (const char c : heading.substr(heading.find_first_not_of("# "))) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == ' ' || c == '-') anchor += '-';
    if (std::isalnum(byte) != 0 || c == '_' || byte >= 0x80) {
      anchor += static_cast<char>(std::tolower(byte));
    }
  }
  return anchor;
}

std::set<std::string> anchorsOf(const std::string& name) {
  std::set<std::string> anchors;
  bool in_block = false;
  for (const std::string& line : readDocument(name).lines) {
    if (line.starts_with("```")) in_block = !in_block;
    if (!in_block && line.starts_with("#")) anchors.insert(anchorOf(line));
  }
  return anchors;
}

// Empty when `link`, in the document `name`, leads somewhere.
std::string complaintAbout(const std::string& link, const std::string& name) {
  const std::size_t hash = link.find('#');
  const std::string file = link.substr(0, hash);
  const std::filesystem::path target =
      file.empty() ? std::filesystem::path(name)
                   : (std::filesystem::path(name).parent_path() / file).lexically_normal();
  if (!std::filesystem::exists(VLT_PROJECT_ROOT / target)) return "there is no " + target.string();
  if (hash == std::string::npos) return "";
  const std::string anchor = link.substr(hash + 1);
  return anchorsOf(target).contains(anchor) ? "" : "there is no heading " + anchor;
}

// As ctest -R takes it.
bool isTest(const std::string& pattern) {
  static const strings_t NAMES = testNames();
  const bool is_plain = pattern.find_first_of("[^$\\*+") == std::string::npos;
  const Pattern expression(is_plain ? "" : pattern);
  return std::any_of(NAMES.begin(), NAMES.end(), [&](const std::string& name) {
    return is_plain ? name.find(pattern) != std::string::npos : expression.isIn(name);
  });
}

// The code spans, line by line.
strings_t spansOf(const document_t& document) {
  strings_t spans;
  for (const std::string& line : document.lines) {
    for (std::size_t open = line.find('`'); open != std::string::npos;) {
      const std::size_t close = line.find('`', open + 1);
      if (close == std::string::npos) break;
      spans.push_back(line.substr(open + 1, close - open - 1));
      open = line.find('`', close + 1);
    }
  }
  return spans;
}

// The code spans in a cell of a table, which has no marks when it is a single one.
strings_t spansIn(const std::string& cell) {
  return cell.find('`') == std::string::npos ? strings_t{cell} : spansOf(documentOf(cell));
}

// For tables whose last column has the tests of a row.
void expectTestsOf(const char* document, const char* head) {
  for (const auto& row : readTable(readDocument(document), head)) {
    for (const std::string& span : spansIn(row.back())) {
      if (span.starts_with("./dev") || span.starts_with("ctest")) continue;
      EXPECT_TRUE(isTest(span)) << document << ": " << row[0] << ": " << span;
    }
  }
}

} // namespace

TEST(References, EveryLinkLeadsSomewhere) {
  std::size_t links = 0;
  for (const std::string& name : documentNames()) {
    const document_t document = readDocument(name);
    for (std::size_t i = 0; i < document.lines.size(); ++i) {
      for (const std::string& link : groupsIn(document.lines[i], R"(\]\(([^)\s]+)\))")) {
        EXPECT_EQ(complaintAbout(link, name), "") << placeOf(document, i + 1);
        ++links;
      }
    }
  }
  EXPECT_GT(links, 50U);
}

TEST(References, EveryNamedTestExists) {
  expectTestsOf("docs/reliability.md", "Promise");
  expectTestsOf("docs/scaling.md", "Claim");
  // In running text, a test is a name with its program, or a name of several words.
  const Pattern test("(?!vlt_)[a-z_]+_tests(\\.\\w+)*|([A-Z][a-z]+[0-9]*){4,}");
  std::size_t named = 0;
  for (const std::string& name : documentNames()) {
    for (const std::string& span : spansOf(readDocument(name))) {
      if (!test.isAllOf(span)) continue;
      EXPECT_TRUE(isTest(span)) << name << ": " << span;
      ++named;
    }
  }
  EXPECT_GT(named, 5U);
}

// A path from the project's root; a name with an ellipsis or a capitalised part is a pattern.
TEST(References, EveryNamedFileExists) {
  const Pattern path(
      "(\\.ci|bench|cmake|codec|docs|fuzz|host|plugin|samples|scripts|standin|tests|tools|value)/"
      "[a-z0-9_./-]*");
  std::size_t named = 0;
  for (const std::string& name : documentNames()) {
    for (const std::string& span : spansOf(readDocument(name))) {
      if (!path.isAllOf(span)) continue;
      EXPECT_TRUE(std::filesystem::exists(VLT_PROJECT_ROOT + std::string("/") + span))
          << name << ": " << span;
      ++named;
    }
  }
  EXPECT_GT(named, 50U);
}

TEST(References, TablesOfTheSettingsAgree) {
  std::map<std::string, std::string> defaults; // by keys, as the tested one has them
  for (const auto& row : readTable(readDocument("docs/operating.md"), "Key")) {
    defaults[row[0]] = row[1].starts_with("none") ? "" : row[1];
  }
  const auto readme = readTable(readDocument("README.md"), "Key");
  const auto fields = readTable(readDocument("docs/fields.md"), "Key");
  EXPECT_EQ(readme.size(), defaults.size());
  EXPECT_EQ(fields.size(), defaults.size());
  for (const auto& row : readme) {
    ASSERT_TRUE(defaults.contains(row[0])) << row[0];
    EXPECT_EQ(row[1], defaults[row[0]].empty() ? "yes" : "no") << row[0];
    EXPECT_EQ(row[2], defaults[row[0]]) << row[0];
  }
  for (const auto& row : fields) {
    ASSERT_TRUE(defaults.contains(row[0])) << row[0];
    EXPECT_EQ(row[1].starts_with("yes"), defaults[row[0]].empty()) << row[0];
  }
}

TEST(References, TableOfFuzzTargetsHasAllTargets) {
  std::set<std::string> listed;
  for (const auto& row : readTable(readDocument("CONTRIBUTING.md"), "Target")) {
    listed.insert(row[0]);
  }
  std::string build;
  for (const std::string& line : readDocument("fuzz/CMakeLists.txt").lines) build += line + "\n";
  const strings_t built = groupsIn(build, R"(\nvlt_add_fuzz_target\(\s*(\w+))");
  EXPECT_EQ(listed, std::set<std::string>(built.begin(), built.end()));
}

TEST(References, NamesOfTestsComeFromTheirPrograms) {
  EXPECT_TRUE(isTest("^docs_tests\\.References\\.NamesOfTestsComeFromTheirPrograms$"));
  EXPECT_TRUE(isTest("^docs_tests\\.SiteDayComesFromItsScript$"));
  EXPECT_FALSE(isTest("^docs_tests\\.References\\.NoSuchTest$"));
}

} // namespace com::velanto::connectivity::test
