#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/support/pattern.hpp"
#include "tests/support/values.hpp"
#include "tools/check/selection.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::check::check_t;

void nothing(tools::check::Trial&) {}

const check_t CHECKS[] = {
    {"a.one", "", "A", nothing}, {"a.two", "", "A", nothing}, {"b.one", "", "A", nothing}};

using patterns_t = std::vector<std::string>;

std::string selected(const patterns_t& only, const patterns_t& skip) {
  std::string names;
  for (const check_t& check : tools::check::select(CHECKS, only, skip)) {
    names += check.name;
    names += ' ';
  }
  return names;
}

} // namespace

TEST(SelectionTest, PatternsAddUpAndSkippingWins) {
  EXPECT_EQ(selected({}, {}), "a.one a.two b.one ");
  EXPECT_EQ(selected({"*.one"}, {}), "a.one b.one ");
  EXPECT_EQ(selected({"b.*", "a.t??"}, {}), "a.two b.one ") << "in the order of the checks";
  EXPECT_EQ(selected({}, {"a.*"}), "b.one ");
  EXPECT_EQ(selected({"a.*"}, {"a.one"}), "a.two ");
}

TEST(SelectionTest, PatternThatMatchesNothingIsAnError) {
  EXPECT_EQ(errorOf([] { selected({"a"}, {}); }), "no check is named 'a'; see --list");
  EXPECT_EQ(errorOf([] { selected({}, {"c.*"}); }), "no check is named 'c.*'; see --list");
  EXPECT_EQ(errorOf([] { selected({"a.*"}, {"a.*"}); }), "no check is left to run");
}

TEST(SelectionTest, ChecksHaveDifferentNamesAndClaims) {
  std::set<std::string> names;
  for (const check_t& check : tools::check::allChecks()) {
    EXPECT_TRUE(Pattern("[a-z]+\\.[a-z0-9-]+").isAllOf(check.name)) << check.name;
    EXPECT_TRUE(names.insert(check.name).second) << check.name;
    EXPECT_GT(std::string(check.claim).size(), 10U) << check.name;
  }
  EXPECT_GE(names.size(), 60U);
}

} // namespace com::velanto::connectivity::test
