// Levels, the form of a line, and the report of the exception in flight.
#include "plugin/logger.hpp"

#include <new>
#include <stdexcept>

#include "tests/support/allocations.hpp"
#include "tests/support/host_fixture.hpp"

namespace com::velanto::connectivity::test {
namespace {

using lines_t = std::vector<log_line_t>;

class LoggerTest : public HostFixture {};

TEST_F(LoggerTest, LineCarriesCategoryAndPrefix) {
  const Logger logger("connectivity.a.b");
  logger.log(3, "%s", "text");
  EXPECT_EQ(takeLog(), (lines_t{{"connectivity.a.b", 3, "<connectivity.a.b> text"}}));
}

TEST_F(LoggerTest, NameIsCopied) {
  std::string name = "a category longer than what a string holds in place";
  const Logger logger(name);
  name.assign(name.size(), 'x');
  logger.log(2, "%s", "text");
  const std::string copied = "a category longer than what a string holds in place";
  EXPECT_EQ(takeLog(), (lines_t{{copied, 2, "<" + copied + "> text"}}));
}

TEST_F(LoggerTest, FormatTakesOneOrTwoStrings) {
  const Logger logger("c");
  logger.log(1, "one: %s.", "a");
  logger.log(2, "two: %s, %s.", "a", "b");
  EXPECT_EQ(takeLog(), (lines_t{{"c", 1, "<c> one: a."}, {"c", 2, "<c> two: a, b."}}));
}

TEST_F(LoggerTest, LevelMayBeATemplateArgument) {
  standin_set_default_log_level(6);
  const Logger logger("c");
  logger.log<3>("%s", "dropped");
  logger.log<6>("%s", "trace");
  EXPECT_EQ(takeLog(), (lines_t{{"c", 3, "<c> dropped"}, {"c", 6, "<c> trace"}}));
}

TEST_F(LoggerTest, StringsArePercentProof) {
  const Logger logger("c%s%n");
  logger.log(3, "%s at 100%%", "%s%n%d");
  EXPECT_EQ(takeLog(), (lines_t{{"c%s%n", 3, "<c%s%n> %s%n%d at 100%"}}));
}

TEST_F(LoggerTest, LevelThreePassesThreeAndStopsSix) {
  const Logger logger("c");
  logger.log(6, "%s", "trace");
  logger.log(4, "%s", "just above");
  logger.log(3, "%s", "dropped");
  EXPECT_EQ(takeLog(), (lines_t{{"c", 3, "<c> dropped"}}));
}

TEST_F(LoggerTest, EnabledUpToTheLevelOfItsCategory) {
  standin_set_default_log_level(6);
  standin_set_log_level("c", 2);
  const Logger logger("c");
  EXPECT_TRUE(logger.enabled(-1));
  EXPECT_TRUE(logger.enabled(2));
  EXPECT_FALSE(logger.enabled(3));
}

TEST_F(LoggerTest, NothingIsDoneBelowTheLevel) {
  standin_set_log_level("c", 2);
  const Logger logger("c");
  standin_reset_calls();
  logger.log(3, "%s", "a");
  logger.log(3, "%s %s", "a", "b");
  logger.log<3>("%s", "a");
  logger.log<6>("%s", "a");
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(LoggerTest, OneLineIsOneCallOfTheHost) {
  const Logger logger("c");
  standin_reset_calls();
  logger.log(3, "%s and %s", "a", "b");
  EXPECT_EQ(standin_calls(STANDIN_LOG_AT), 1);
  EXPECT_EQ(standin_calls_total(), 1);
}

TEST_F(LoggerTest, LevelIsReadOnceAtConstruction) {
  standin_reset_calls();
  const Logger logger("c");
  EXPECT_EQ(standin_calls(STANDIN_GET_LOG_LEVEL), 1);
  standin_set_default_log_level(6);
  logger.log(4, "%s", "raised later");
  standin_set_default_log_level(0);
  logger.log(3, "%s", "lowered later");
  EXPECT_EQ(takeLog(), (lines_t{{"c", 3, "<c> lowered later"}}));
  EXPECT_EQ(standin_calls(STANDIN_GET_LOG_LEVEL), 1);
}

TEST_F(LoggerTest, CategoryNamesPluginAndChain) {
  EXPECT_EQ(loggerCategory("codec", "chain"), "connectivity.codec.chain");
  EXPECT_EQ(loggerCategory("", ""), "connectivity..");
}

struct OwnError : std::exception {
  [[nodiscard]] const char* what() const noexcept override { return "an error of one's own"; }
};

struct thrown_t {
  const char* name;
  void (*raise)();
  const char* text;
};
void PrintTo(const thrown_t& row, std::ostream* out) { *out << row.name; }

class HandleExceptionTest : public HostFixture, public ::testing::WithParamInterface<thrown_t> {};

TEST_P(HandleExceptionTest, BecomesOneLine) {
  const Logger logger("c");
  try {
    GetParam().raise();
  } catch (...) {
    handleException(logger, 2, "start");
  }
  EXPECT_EQ(takeLog(), (lines_t{{"c", 2, GetParam().text}}));
}

constexpr thrown_t THROWN[] = {
    {"RuntimeError", [] { throw std::runtime_error("boom"); }, "<c> Exception from start: boom"},
    {"OwnClass", [] { throw OwnError(); }, "<c> Exception from start: an error of one's own"},
    {"BadAlloc", [] { throw std::bad_alloc(); }, "<c> Exception from start: std::bad_alloc"},
    {"PercentSigns", [] { throw std::runtime_error("%s%n"); }, "<c> Exception from start: %s%n"},
    {"EmptyText", [] { throw std::runtime_error(""); }, "<c> Exception from start: "},
    {"Integer", [] { throw 42; }, "<c> Unknown exception from start"},
    {"Text", [] { throw "boom"; }, "<c> Unknown exception from start"},
};
INSTANTIATE_TEST_SUITE_P(Thrown, HandleExceptionTest, ::testing::ValuesIn(THROWN),
                         [](const auto& row) { return row.param.name; });

TEST_F(LoggerTest, ReportBelowTheLevelIsNotWritten) {
  standin_set_log_level("c", 2);
  const Logger logger("c");
  try {
    throw std::runtime_error("boom");
  } catch (...) {
    handleException(logger, 3, "shutdown");
  }
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(LoggerTest, ReportTakesNoMemoryOfThePluginsOwn) {
  const Logger logger("c");
  int lines = 0;
  standin_set_log_sink([](void* context, const char*, vlt_log_level_t,
                          const char*) { ++*static_cast<int*>(context); },
                       &lines);
  try {
    throw std::runtime_error("boom");
  } catch (const std::exception&) {
    const NoMemory memory;
    handleException(logger, 2, "start");
  }
  standin_set_log_sink(nullptr, nullptr);
  EXPECT_EQ(lines, 1);
}

} // namespace
} // namespace com::velanto::connectivity::test
