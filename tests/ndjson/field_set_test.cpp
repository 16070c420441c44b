#include "ndjson/field_set.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

FieldSet setOf(std::initializer_list<const char*> paths) {
  FieldSet set;
  for (const char* const path : paths) set.add(path);
  return set;
}

// Whether the set has the place of these names, from the payload down.
bool covers(const FieldSet& set, std::initializer_list<const char*> names) {
  FieldSet::place_t place = set.payload();
  for (const char* const name : names) place = FieldSet::below(place, name);
  return FieldSet::covers(place);
}

} // namespace

TEST(FieldSetTest, PathCoversAllBelowIt) {
  const FieldSet set = setOf({"payload.source.name", "payload.text"});
  EXPECT_TRUE(covers(set, {"text"}));
  EXPECT_TRUE(covers(set, {"source", "name"}));
  EXPECT_TRUE(covers(set, {"source", "name", "first"}));
  EXPECT_FALSE(covers(set, {}));
  EXPECT_FALSE(covers(set, {"source"}));
  EXPECT_FALSE(covers(set, {"source", "id"}));
  EXPECT_FALSE(covers(set, {"name"}));
  EXPECT_FALSE(FieldSet::covers(FieldSet::below(set.metadata(), "text")));
}

TEST(FieldSetTest, PathsWithoutRootAreInThePayload) {
  EXPECT_TRUE(covers(setOf({"source.name"}), {"source", "name"}));
  EXPECT_TRUE(covers(setOf({R"("odd name")"}), {"odd name"}));
  EXPECT_TRUE(covers(setOf({R"("payload".a)"}), {"payload", "a"}));
  EXPECT_TRUE(covers(setOf({R"("metadata")"}), {"metadata"}));
  EXPECT_FALSE(covers(setOf({"metadata.a"}), {"metadata", "a"}));
}

TEST(FieldSetTest, RootAloneCoversEverything) {
  const FieldSet set = setOf({"metadata"});
  EXPECT_TRUE(FieldSet::covers(set.metadata()));
  EXPECT_FALSE(FieldSet::covers(set.payload()));
}

TEST(FieldSetTest, PathLeadsToThePlaceThatCoversIt) {
  const FieldSet set = setOf({"source.id", "text", "source"});
  EXPECT_EQ(set.at("text"), FieldSet::below(set.payload(), "text"));
  EXPECT_EQ(set.at("source.id"), set.at("payload.source"));
  EXPECT_EQ(set.at("metadata.text"), nullptr);
}

TEST(FieldSetTest, NamesInQuotesMayHoldAnything) {
  EXPECT_TRUE(covers(setOf({R"(payload."a.b"."")"}), {"a.b", ""}));
  EXPECT_TRUE(
      covers(setOf({R"(payload."\"\\\/\b\f\n\r\t\u0041\u001fé")"}), {"\"\\/\b\f\n\r\tA\x1fé"}));
}

TEST(FieldSetTest, MalformedPathsAreRefusedWithTheirReason) {
  const std::vector<std::pair<const char*, const char*>> rows = {
      {"", "path '': expected a name at byte 1, or one in quotes"},
      {"payload.", "path 'payload.': expected a name at byte 9, or one in quotes"},
      {"payload..a", "path 'payload..a': expected a name at byte 9, or one in quotes"},
      {"payload.ä", "path 'payload.ä': expected a name at byte 9, or one in quotes"},
      {"payload.a b", "path 'payload.a b': expected a dot at byte 10"},
      {"payload.a[0]", "path 'payload.a[0]': a list has no index here, all its elements count"},
      {R"(payload."a)", R"(path 'payload."a': expected a quote at its end)"},
      {R"(payload."a"b)", R"(path 'payload."a"b': expected a dot at byte 12)"},
      {R"(payload."\x")", R"(path 'payload."\x"': bad escape at byte 10)"},
      {R"(payload."\u00e9")", R"(path 'payload."\u00e9"': bad escape at byte 10)"},
      {R"(payload."\u00-1")", R"(path 'payload."\u00-1"': bad escape at byte 10)"},
      {R"(payload."\u00)", R"(path 'payload."\u00': bad escape at byte 10)"}};
  for (const auto& [path, error] : rows) {
    FieldSet set;
    EXPECT_EQ(errorOf([&, text = path] { set.add(text); }), error);
  }
}

} // namespace com::velanto::connectivity::test
