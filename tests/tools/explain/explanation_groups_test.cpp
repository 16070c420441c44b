#include "tools/explain/explanation_groups.hpp"

#include <gtest/gtest.h>

#include "tools/record/columns.hpp"

namespace com::velanto::connectivity::test {

namespace {

const std::string FILE_NAME = "in"; // records point at it

tools::record_t record(std::uint64_t number, tools::Outcome outcome = tools::Outcome::PASSED,
                       const std::string& file = FILE_NAME) {
  tools::record_t record;
  record.number = number;
  record.file = &file;
  record.line_number = number;
  record.outcome = outcome;
  return record;
}

tools::explanation_t losing(const std::string& name, const std::string& json) {
  tools::explanation_t explanation;
  explanation.rows = {{tools::Fate::LOST, {{{{"payload"}, {name}}, json}}, {}, {}}};
  return explanation;
}

} // namespace

TEST(ExplanationGroupsTest, FatesAndPathsCountValuesDoNot) {
  tools::ExplanationGroups alike;
  alike.add(record(1), losing("a", "1"));
  alike.add(record(2), losing("b", "1"));
  alike.add(record(3), losing("b", "2"));
  alike.add(record(4, tools::Outcome::CONVERTED), losing("b", "2"));
  EXPECT_EQ(alike.text(),
            "\n"
            "    messages  explained alike           first in\n"
            "           2  no path, passed           in:2\n"
            "           1  no path, passed           in:1\n"
            "           1  no path, converted        in:4\n");
}

TEST(ExplanationGroupsTest, FaultsTellDroppedMessagesApart) {
  tools::ExplanationGroups alike;
  tools::explanation_t explanation;
  explanation.blame.faults = {{{{"payload"}, {"a"}}, "1", false, "2"}};
  alike.add(record(1, tools::Outcome::DROPPED), explanation);
  explanation.blame.faults = {{{{"payload"}, {"b"}}, "1", false, "2"}};
  alike.add(record(2, tools::Outcome::DROPPED), explanation);
  std::swap(explanation.blame.faults, explanation.blame.suspects);
  alike.add(record(3, tools::Outcome::DROPPED), explanation);
  EXPECT_EQ(alike.text(),
            "\n"
            "    messages  explained alike           first in\n"
            "           1  no path, dropped          in:1\n"
            "           1  no path, dropped          in:2\n"
            "           1  no path, dropped          in:3\n");
}

TEST(ExplanationGroupsTest, NothingIsNoTable) { EXPECT_EQ(tools::ExplanationGroups().text(), ""); }

TEST(ExplanationGroupsTest, TheRestIsCounted) {
  tools::ExplanationGroups alike;
  const std::string file(100, 'f');
  for (std::uint64_t i = 1; i <= tools::ExplanationGroups::MOST + 5; ++i) {
    alike.add(record(i, tools::Outcome::PASSED, file), losing(std::to_string(i), "1"));
  }
  const std::string text = alike.text();
  EXPECT_TRUE(text.ends_with("         993  in other ways\n")) << text;
  for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos;
       begin = end + 1) {
    EXPECT_LE(tools::widthOf(text.substr(begin, end - begin)), 40 + file.size() + 5);
  }
}

} // namespace com::velanto::connectivity::test
