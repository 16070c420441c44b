// Creation through the C interface: borrowed arguments, nulls, and every way to fail.
#include "plugin/entry_points.hpp"

#include <cstring>

#include "tests/plugin/failing_library.hpp"
#include "tests/support/allocations.hpp"
#include "tests/support/stderr_capture.hpp"

namespace com::velanto::connectivity::test {
namespace {

class CreationTest : public FailingLibrary {};

TEST_F(CreationTest, VersionsNeedNoPlugin) {
  EXPECT_EQ(library_.apiVersion(), 4U);
  EXPECT_STREQ(library_.productVersion(), "10.15.4.1");
  EXPECT_EQ(library_.productVersion(), library_.productVersion()) << "the text is static";
  library_.checkIsCodec();
}

TEST_F(CreationTest, CreatedPluginIsDestroyedWithAllItsMemory) {
  const data_t settings = mapOf("unused", text("a text that is longer than a short string"));
  const std::int64_t before = allocationsHeld();
  void* const plugin = create(settings);
  ASSERT_NE(plugin, nullptr);
  EXPECT_GT(allocationsHeld(), before) << "the library's memory is counted, too";
  EXPECT_EQ(library_.destroy(plugin), 0);
  EXPECT_EQ(allocationsHeld(), before);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(CreationTest, MapWithoutATableIsAConfiguration) {
  void* const plugin = create(map_t());
  EXPECT_NE(plugin, nullptr);
  library_.destroy(plugin);
}

struct failure_t {
  const char* name;
  const char* line;
};
void PrintTo(const failure_t& row, std::ostream* out) { *out << row.name; }

class CreationFailureTest : public FailingLibrary,
                            public ::testing::WithParamInterface<failure_t> {};

TEST_P(CreationFailureTest, IsLoggedAtLevelTwoAndGivesNull) {
  const data_t settings = mapOf("create", text(GetParam().name));
  const std::int64_t before = allocationsHeld();
  EXPECT_EQ(create(settings), nullptr);
  EXPECT_EQ(takeLog(), (lines_t{line(2, GetParam().line)}));
  EXPECT_EQ(allocationsHeld(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Throwing, CreationFailureTest,
    ::testing::Values(failure_t{"runtime_error", "Exception from create: boom"},
                      failure_t{"integer", "Unknown exception from create"},
                      failure_t{"bad_alloc", "Exception from create: std::bad_alloc"}),
    [](const auto& row) { return row.param.name; });

TEST_F(CreationTest, FailureBelowTheLevelIsSilent) {
  standin_set_log_level("connectivity.codec.chain", 1);
  EXPECT_EQ(create(mapOf("create", text("integer"))), nullptr);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(CreationTest, ConfigurationMustBeAMap) {
  struct row_t {
    data_t value;
    const char* kind;
  };
  row_t rows[] = {{truth(true), "boolean"}, {real(1), "double"},       {whole(1), "integer"},
                  {decimal(1), "decimal"},  {text("t"), "string"},     {listOf(), "list"},
                  {bytes("b"), "buffer"},   {borrowed("b"), "string"}, {custom(), "custom"}};
  const std::string why =
      "Exception from create: Incorrect type in get (you asked for map but it's ";
  for (const row_t& row : rows) {
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(create(row.value), nullptr); }), wrongKindLine<map_t>());
    const std::string actual = std::string("actually ").append(row.kind).append(")");
    EXPECT_EQ(takeLog(), (lines_t{line(2, why + actual)}));
  }
}

TEST_F(CreationTest, EmptyConfigurationIsRefusedWithoutAStderrLine) {
  EXPECT_EQ(stderrOf([&] {
              EXPECT_EQ(create(data_t()), nullptr);
              EXPECT_EQ(create(tagged(11)), nullptr);
              EXPECT_EQ(library_.create("codec", "chain", nullptr, nullptr, nullptr), nullptr);
            }),
            "");
  const log_line_t refused = line(2, "Exception from create: Get from empty");
  EXPECT_EQ(takeLog(), (lines_t{refused, refused, refused}));
}

TEST_F(CreationTest, NullNamesReadAsEmptyOnes) {
  const data_t settings = mapOf("start", text("runtime_error"));
  void* const plugin = library_.create(nullptr, nullptr, settings.underlying(), nullptr, nullptr);
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(library_.start(plugin), 1);
  EXPECT_EQ(takeLog(),
            (lines_t{{"connectivity..", 2, "<connectivity..> Exception from start: boom"}}));
  library_.destroy(plugin);
}

TEST_F(CreationTest, NullNamesAreLoggedAsEmptyOnes) {
  EXPECT_EQ(library_.create(nullptr, "chain", nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(library_.create("codec", nullptr, nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(takeLog(), (lines_t{{"connectivity..chain", 2,
                                 "<connectivity..chain> Exception from create: Get from empty"},
                                {"connectivity.codec.", 2,
                                 "<connectivity.codec.> Exception from create: Get from empty"}}));
}

TEST_F(CreationTest, NamesAndConfigurationMayVanishAfterTheCall) {
  std::string name = "codec";
  std::string chain = "chain";
  auto settings = std::make_unique<data_t>(mapOf("start", text("runtime_error")));
  void* const plugin =
      library_.create(name.c_str(), chain.c_str(), settings->underlying(), nullptr, nullptr);
  settings.reset();
  name = "-----";
  chain = "-----";
  EXPECT_EQ(library_.start(plugin), 1);
  EXPECT_EQ(takeLog(), (lines_t{line(2, "Exception from start: boom")}));
  library_.destroy(plugin);
}

TEST_F(CreationTest, HandlesAreNotDereferenced) {
  const data_t settings = map_t();
  void* const plugin =
      library_.create("codec", "chain", settings.underlying(), unreadable(1), unreadable(2));
  EXPECT_NE(plugin, nullptr);
  EXPECT_EQ(library_.destroy(plugin), 0);
}

TEST_F(CreationTest, ExhaustedHostMemoryIsReportedAndLeavesNothing) {
  const data_t settings = mapOf("unused", text("x"), "other", text("y"));
  const std::int64_t before = allocationsHeld();
  std::uint64_t n = 0;
  void* plugin = nullptr;
  while (plugin == nullptr) {
    standin_fail_allocation(++n);
    plugin = create(settings);
    if (plugin != nullptr) break;
    EXPECT_EQ(takeLog(), (lines_t{line(2, "Exception from create: std::bad_alloc")})) << n;
    EXPECT_EQ(allocationsHeld(), before) << n;
  }
  EXPECT_EQ(n, 6U) << "a table, two keys and two values, then success";
  library_.destroy(plugin);
}

TEST_F(CreationTest, WithoutMemoryForTheReportGivesNull) {
  const data_t settings = map_t();
  const auto create_without_memory = [&] {
    const NoMemory memory;
    return create(settings);
  };
  EXPECT_EQ(create_without_memory(), nullptr);
  EXPECT_EQ(takeLog(), lines_t{});
}

} // namespace
} // namespace com::velanto::connectivity::test
