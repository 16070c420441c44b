#include "tools/report/changes.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

using tools::difference_t;
using tools::report::Changes;

TEST(Changes, FieldsAreRankedByTheirMessages) {
  Changes changes("changes-expect", "a.golden", "Golden run", "This run");
  changes.add("a:1", "b:1", {difference_t{"text", "1", "2"}});
  changes.add("a:2", "b:2", {difference_t{"id", "3", "4"}, difference_t{"text", "5", "6"}});
  const auto fields = changes.fields();
  ASSERT_EQ(fields.size(), 2u);
  EXPECT_EQ(fields[0]->path, "text");
  EXPECT_EQ(fields[0]->count, 2u);
  EXPECT_EQ(fields[0]->first.before, "1");
  EXPECT_EQ(fields[1]->path, "id");
  ASSERT_EQ(changes.messages().size(), 2u);
  EXPECT_EQ(changes.messages()[1].after, "b:2");
  EXPECT_EQ(changes.messages()[1].fields.size(), 2u);
}

TEST(Changes, MemoryIsBoundedAndTheRestCounted) {
  Changes changes("changes-expect", "a.golden", "Golden run", "This run");
  for (std::size_t i = 0; i < Changes::MOST_PATHS + 5; ++i) {
    changes.add("a", "b", {difference_t{"p" + std::to_string(i), "1", "2"}});
  }
  EXPECT_EQ(changes.fields().size(), Changes::MOST_PATHS);
  EXPECT_EQ(changes.otherFields(), 5u);
  EXPECT_EQ(changes.messages().size(), Changes::MOST_MESSAGES);
}

TEST(Changes, FurtherFieldsOfAMessageAreCounted) {
  Changes changes("changes-expect", "a.golden", "Golden run", "This run");
  std::vector<difference_t> differences;
  differences.reserve(12);
  for (int i = 0; i < 12; ++i) differences.push_back({std::to_string(i), "1", "2"});
  changes.add("a", "b", differences);
  EXPECT_EQ(changes.messages().front().fields.size(), Changes::MOST_FIELDS);
  EXPECT_EQ(changes.messages().front().other_fields, 2u);
}

TEST(Changes, LongValuesAreCutAroundTheirDifference) {
  Changes changes("changes-expect", "a.golden", "Golden run", "This run");
  const std::string same(5000, 's');
  changes.add("a", "b", {difference_t{"text", same + "1" + same, same + "ü"}});
  const difference_t& first = changes.fields().front()->first;
  EXPECT_EQ(*first.before, "…" + std::string(60, 's') + "1" + std::string(939, 's') + "…");
  EXPECT_EQ(*first.after, "…" + std::string(60, 's') + "ü");
}

TEST(Changes, CutsKeepCharactersWhole) {
  Changes changes("changes-expect", "a.golden", "Golden run", "This run");
  std::string long_text;
  for (int i = 0; i < 1000; ++i) long_text += "ü";
  changes.add("a", "b", {difference_t{"text", long_text + "ü", long_text + "ö"}});
  EXPECT_TRUE(changes.fields().front()->first.before->starts_with("…ü"));
  changes.add("a", "b", {difference_t{"id", "a" + long_text, "c"}});
  EXPECT_TRUE(changes.fields().back()->first.before->ends_with("ü…"));
}

} // namespace com::velanto::connectivity::test
