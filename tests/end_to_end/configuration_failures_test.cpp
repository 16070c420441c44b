// Every configuration that a codec cannot be made from, with the whole line that says so.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class ConfigurationFailuresTest : public EndToEnd {
 protected:
  // The text behind "Exception from create: " that creation with `settings` logs at level 2.
  void expectRefusal(const data_t& settings, const std::string& why, const char* row) {
    EXPECT_EQ(library_.create("codec", "chain", settings.underlying(), nullptr, nullptr), nullptr)
        << row;
    EXPECT_EQ(takeLog(), (lines_t{line(2, std::string("Exception from create: ") + why)})) << row;
  }
};

TEST_F(ConfigurationFailuresTest, TenantIsRequired) {
  const char* const missing = R"(Key '"tenantId"' not found in Notifications2Codec)";
  expectRefusal(map_t(), missing, "no table");
  expectRefusal(map_of("towardsHostChannelPrefix", text("p.")), missing, "another key");
  expectRefusal(map_of("tenantId", data_t()),
                R"(Key '"tenantId"' has an empty value in Notifications2Codec)", "empty value");
}

struct named_value_t {
  const char* name;
  data_t value;
};

std::vector<named_value_t> kindsBeside(std::initializer_list<std::uint32_t> leftOut) {
  std::vector<named_value_t> kinds;
  const auto add = [&](const char* name, data_t&& value) {
    for (const std::uint32_t tag : leftOut) {
      if (value.type_tag() == tag) return;
    }
    kinds.push_back({name, std::move(value)});
  };
  add("boolean", truth(true));
  add("double", real(1));
  add("integer", whole(1));
  add("decimal", decimal(1));
  add("string", text("t"));
  add("list", list_of());
  add("map", map_t());
  add("buffer", bytes("b"));
  add("custom", custom());
  add("string", borrowed("b"));
  return kinds;
}

TEST_F(ConfigurationFailuresTest, TenantMustBeAString) {
  for (named_value_t& kind : kindsBeside({VLT_TAG_STRING, VLT_TAG_BORROWED_STRING})) {
    const data_t settings = map_of("tenantId", std::move(kind.value));
    const std::string why =
        std::string("Incorrect type in get (you asked for string but it's actually ") + kind.name +
        ")";
    EXPECT_EQ(stderr_of([&] { expectRefusal(settings, why, kind.name); }),
              wrong_kind_line<const char*>());
  }
}

TEST_F(ConfigurationFailuresTest, TenantOfAnUnknownKindReadsAsEmpty) {
  EXPECT_EQ(
      stderr_of([&] { expectRefusal(map_of("tenantId", tagged(11)), "Get from empty", "tag 11"); }),
      "");
}

TEST_F(ConfigurationFailuresTest, NullTextOfTheMeasurementChannelIsRefused) {
  const char* const why =
      "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)";
  expectRefusal(map_of("tenantId", text(""), "measurementSplittingChannel", null_text()), why,
                "owned");
  expectRefusal(
      map_of("tenantId", text(""), "measurementSplittingChannel", tagged(VLT_TAG_BORROWED_STRING)),
      why, "borrowed");
}

TEST_F(ConfigurationFailuresTest, MeasurementChannelIsReadBeforeTheTenant) {
  expectRefusal(map_of("measurementSplittingChannel", null_text()),
                "Cannot use a null char* as a data_t value (consider using an empty data_t() "
                "instead)",
                "both faults");
}

TEST_F(ConfigurationFailuresTest, ConfigurationMustBeAMap) {
  for (const named_value_t& kind : kindsBeside({VLT_TAG_MAP})) {
    const std::string why =
        std::string("Incorrect type in get (you asked for map but it's actually ") + kind.name +
        ")";
    EXPECT_EQ(stderr_of([&] { expectRefusal(kind.value, why, kind.name); }),
              wrong_kind_line<map_t>());
  }
}

TEST_F(ConfigurationFailuresTest, ConfigurationWithNothingToReadIsRefused) {
  EXPECT_EQ(stderr_of([&] {
              expectRefusal(data_t(), "Get from empty", "empty value");
              expectRefusal(tagged(11), "Get from empty", "unknown kind");
            }),
            "");
  EXPECT_EQ(library_.create("codec", "chain", nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(takeLog(), (lines_t{line(2, "Exception from create: Get from empty")}));
}

TEST_F(ConfigurationFailuresTest, RefusalBelowTheLevelIsSilent) {
  standin_set_log_level("connectivity.codec.chain", 1);
  const data_t settings = map_t();
  EXPECT_EQ(library_.create("codec", "chain", settings.underlying(), nullptr, nullptr), nullptr);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(ConfigurationFailuresTest, NextCreationSucceeds) {
  expectRefusal(map_t(), R"(Key '"tenantId"' not found in Notifications2Codec)", "first");
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  static_cast<void>(codec.converted(notification(EVENT_PATH, eventPayload())));
}

} // namespace
} // namespace com::velanto::connectivity::test
