// Settings by key: the result for each kind, and every error message.
#include "plugin/map_extractor.hpp"

#include <memory>

#include "tests/support/allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/stderr_capture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

class MapExtractorTest : public HostFixture {
 protected:
  map_t settings_ = mapOf("name", text("n"), "nothing", data_t(), whole(7), text("by number"));
  MapExtractor extractor_{settings_, "Section"};
};

TEST_F(MapExtractorTest, DisplayNameMustNotBeEmpty) {
  EXPECT_EQ(errorOf([&] { const MapExtractor extractor(settings_, ""); }),
            "displayName cannot be empty");
}

TEST_F(MapExtractorTest, ConstructionDoesNotCallTheHost) {
  standin_reset_calls();
  { const MapExtractor extractor(settings_, "Section"); }
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(MapExtractorTest, ValueIsReturnedInPlace) {
  EXPECT_EQ(&extractor_.doGet(text("name")), &at(settings_, "name"));
  EXPECT_EQ(extractor_.doGet(whole(7)), text("by number"));
}

TEST_F(MapExtractorTest, MapIsReferredTo) {
  settings_[text("late")] = text("seen");
  EXPECT_EQ(extractor_.doGet(text("late")), text("seen"));
}

TEST_F(MapExtractorTest, DisplayNameIsCopied) {
  std::string name = "a section name that is longer than a short string";
  const MapExtractor extractor(settings_, name);
  name.assign(name.size(), 'x');
  EXPECT_EQ(errorOf([&] { static_cast<void>(extractor.doGet(text("k"))); }),
            "Key '\"k\"' not found in a section name that is longer than a short string");
}

TEST_F(MapExtractorTest, AbsentKeyIsNamedWithItsSection) {
  EXPECT_EQ(errorOf([&] { static_cast<void>(extractor_.doGet(text("absent"))); }),
            "Key '\"absent\"' not found in Section");
  EXPECT_EQ(errorOf([&] { static_cast<void>(extractor_.doGet(whole(8))); }),
            "Key '8' not found in Section");
}

TEST_F(MapExtractorTest, AbsentKeyWithoutATableIsNamedToo) {
  const map_t none;
  const MapExtractor extractor(none, "Section");
  EXPECT_EQ(errorOf([&] { static_cast<void>(extractor.doGet(text("k"))); }),
            "Key '\"k\"' not found in Section");
}

TEST_F(MapExtractorTest, EmptyValueIsNamedWithItsSection) {
  EXPECT_EQ(errorOf([&] { static_cast<void>(extractor_.doGet(text("nothing"))); }),
            "Key '\"nothing\"' has an empty value in Section");
}

TEST_F(MapExtractorTest, BorrowedKeyDoesNotFindAnOwnedOne) {
  EXPECT_EQ(errorOf([&] { static_cast<void>(extractor_.doGet(borrowed("name"))); }),
            "Key '\"name\"' not found in Section");
}

TEST_F(MapExtractorTest, CustomKeyCannotBeLookedUp) {
  EXPECT_EQ(errorOf([&] { static_cast<void>(extractor_.doGet(custom())); }),
            "Cannot use custom values as a key");
  EXPECT_EQ(extractor_.get<std::string>(custom(), "default"), "default");
}

TEST_F(MapExtractorTest, ValueOfAnUnknownKindIsNotEmpty) {
  settings_[text("new")] = tagged(11, 5);
  EXPECT_EQ(extractor_.doGet(text("new")).type_tag(), 11U);
}

TEST_F(MapExtractorTest, AbsentAndEmptyGiveTheDefault) {
  EXPECT_EQ(extractor_.get<std::string>(text("absent"), "default"), "default");
  EXPECT_EQ(extractor_.get<std::string>(text("nothing"), "default"), "default");
  EXPECT_EQ(extractor_.get<std::string>(text("absent"), ""), "");
}

TEST_F(MapExtractorTest, EachKindConvertsOrSilentlyGivesTheDefault) {
  struct row_t {
    const char* name;
    data_t value;
    const char* expected;
  };
  row_t rows[] = {{"string", text("t"), "t"},
                  {"empty string", text(""), ""},
                  {"borrowed string", borrowed("b"), "b"},
                  {"null text", nullText(), ""},
                  {"integer", whole(-5), "-5"},
                  {"largest integer", whole(INT64_MAX), "9223372036854775807"},
                  {"double", real(0.5), "0.5"},
                  {"large double", real(1e20), "1e+20"},
                  {"true", truth(true), "true"},
                  {"false", truth(false), "false"},
                  {"decimal", decimal(1), "default"},
                  {"list", listOf(text("a")), "default"},
                  {"map", mapOf("a", text("b")), "default"},
                  {"buffer", bytes("abc"), "default"},
                  {"custom", custom(), "default"},
                  {"unknown kind", tagged(11), "default"}};
  for (row_t& row : rows) {
    settings_[text("k")] = std::move(row.value);
    std::string got;
    EXPECT_EQ(stderrOf([&] { got = extractor_.get<std::string>(text("k"), "default"); }), "");
    EXPECT_EQ(got, row.expected) << row.name;
  }
  EXPECT_TRUE(takeLog().empty());
}

TEST_F(MapExtractorTest, KeyTextIsTheHostsRendering) {
  EXPECT_EQ(MapExtractor::stringifyKey(text("k")), "\"k\"");
  EXPECT_EQ(MapExtractor::stringifyKey(whole(3)), "3");
  EXPECT_EQ(MapExtractor::stringifyKey(data_t()), "null");
}

TEST_F(MapExtractorTest, StringWithoutMemoryGivesTheDefault) {
  settings_[text("long")] = text("longer than a std::string keeps inside");
  const data_t key = text("long");
  const std::string short_default = "d";
  failAllocation(1, false);
  const std::string read = extractor_.get<std::string>(key, short_default);
  const std::uint64_t refused = refusedAllocations();
  failAllocation(0, false);
  EXPECT_EQ(read, "d");
  EXPECT_EQ(refused, 1U);
}

TEST_F(MapExtractorTest, KeyThatCannotBeRenderedGivesTheDefault) {
  const data_t key = text("absent");
  standin_fail_allocation(1);
  EXPECT_EQ(extractor_.get<std::string>(key, "default"), "default");
  EXPECT_EQ(standin_failed_allocations(), 1U);
}

} // namespace
} // namespace com::velanto::connectivity::test
