#include "ndjson/omission.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

Omission omissionOf(std::initializer_list<const char*> paths) {
  Omission omission;
  for (const char* const path : paths) omission.add(path);
  return omission;
}

// Whether the place of these names, from the payload down, is left out.
bool coversMember(const Omission& omission, std::initializer_list<const char*> names) {
  Omission::place_t place = omission.payload();
  for (const char* const name : names) place = Omission::below(place, name);
  return Omission::covers(place);
}

} // namespace

TEST(OmissionTest, CoversThePathAndAllBelowIt) {
  const Omission omission = omissionOf({"payload.source.name", "payload.text"});
  EXPECT_TRUE(coversMember(omission, {"text"}));
  EXPECT_TRUE(coversMember(omission, {"source", "name"}));
  EXPECT_TRUE(coversMember(omission, {"source", "name", "first"}));
  EXPECT_FALSE(coversMember(omission, {}));
  EXPECT_FALSE(coversMember(omission, {"source"}));
  EXPECT_FALSE(coversMember(omission, {"source", "id"}));
  EXPECT_FALSE(coversMember(omission, {"name"}));
  EXPECT_FALSE(Omission::covers(Omission::below(omission.metadata(), "text")));
}

TEST(OmissionTest, RootAloneCoversEverything) {
  const Omission omission = omissionOf({"metadata"});
  EXPECT_TRUE(Omission::covers(omission.metadata()));
  EXPECT_FALSE(Omission::covers(omission.payload()));
}

TEST(OmissionTest, NamesInQuotesMayHoldAnything) {
  EXPECT_TRUE(coversMember(omissionOf({R"(payload."a.b"."")"}), {"a.b", ""}));
  EXPECT_TRUE(coversMember(omissionOf({R"(payload."\"\\\/\b\f\n\r\t\u0041\u001fé")"}),
                           {"\"\\/\b\f\n\r\tA\x1fé"}));
}

TEST(OmissionTest, MalformedPathsAreRefusedWithTheirReason) {
  const std::vector<std::pair<const char*, const char*>> rows = {
      {"", "path '': expected a name at byte 1, or one in quotes"},
      {"text", "path 'text': expected payload or metadata at its beginning"},
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
    Omission omission;
    EXPECT_EQ(errorOf([&, text = path] { omission.add(text); }), error);
  }
}

} // namespace com::velanto::connectivity::test
