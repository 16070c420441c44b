// Typed access: the content in place when the kind is right; otherwise a line on standard error and
// an error that names both kinds.
#include "value/get_visitor.hpp"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/host_fixture.hpp"
#include "tests/support/stderr_capture.hpp"
#include "tests/value/kinds.hpp"

namespace com::velanto::connectivity::test {
namespace {

// The result of a typed get: the error's message, and its output on standard error.
struct outcome_t {
  std::string error;
  std::string written;
  bool operator==(const outcome_t&) const = default;
};

std::ostream& operator<<(std::ostream& out, const outcome_t& outcome) {
  return out << '"' << outcome.error << "\", written: \"" << outcome.written << '"';
}

template <class T, class Value>
outcome_t outcome_of_get(Value& value) {
  outcome_t outcome;
  outcome.written = stderrOf(
      [&] { outcome.error = errorOf([&] { static_cast<void>(value.template get<T>()); }); });
  return outcome;
}

template <class T>
outcome_t expected_outcome(const std::string& requested, std::uint32_t tag, bool matches) {
  if (matches) return {"nothing thrown", ""};
  if (tag == 0 || tag > 10) return {"Get from empty", ""};
  static constexpr const char* ACTUAL[] = {"",        "boolean", "double", "integer",
                                           "decimal", "string",  "list",   "map",
                                           "buffer",  "custom",  "string"};
  return {"Incorrect type in get (you asked for " + requested + " but it's actually " +
              ACTUAL[tag] + ")",
          wrongKindLine<T>()};
}

// All kinds, asked for T, mutable and constant. The content must be the value's own first bytes.
template <class T>
void check_gets(const char* requested, std::uint32_t tag, std::uint32_t second_tag) {
  for (const kind_t& kind : KINDS) {
    SCOPED_TRACE(std::string(requested) + " asked of " + kind.name);
    data_t value = kind.make();
    const data_t& constant = value;
    const std::uint64_t bits = content_bits(value);
    const bool matches = kind.tag == tag || kind.tag == second_tag;
    const outcome_t expected = expected_outcome<T>(requested, kind.tag, matches);
    EXPECT_EQ(outcome_of_get<T>(value), expected);
    EXPECT_EQ(outcome_of_get<T>(constant), expected);
    if (matches) {
      EXPECT_EQ(static_cast<const void*>(&value.get<T>()), &value);
      EXPECT_EQ(static_cast<const void*>(&constant.get<T>()), &value);
    }
    EXPECT_EQ(value.type_tag(), kind.tag);
    EXPECT_EQ(content_bits(value), bits);
  }
}

using GetVisitorTest = HostFixture;

TEST_F(GetVisitorTest, BooleanOfEveryKind) { check_gets<bool>("boolean", 1, 1); }
TEST_F(GetVisitorTest, DoubleOfEveryKind) { check_gets<double>("double", 2, 2); }
TEST_F(GetVisitorTest, IntegerOfEveryKind) { check_gets<std::int64_t>("integer", 3, 3); }
TEST_F(GetVisitorTest, DecimalOfEveryKind) {
  check_gets<vlt_underlying_decimal_t>("decimal", 4, 4);
}
TEST_F(GetVisitorTest, StringOfEitherKindSuitsBoth) { check_gets<const char*>("string", 5, 10); }
TEST_F(GetVisitorTest, ListOfEveryKind) { check_gets<list_t>("list", 6, 6); }
TEST_F(GetVisitorTest, MapOfEveryKind) { check_gets<map_t>("map", 7, 7); }
TEST_F(GetVisitorTest, BufferOfEveryKind) { check_gets<buffer_t>("buffer", 8, 8); }
TEST_F(GetVisitorTest, CustomOfEveryKind) { check_gets<vlt_underlying_custom_t>("custom", 9, 9); }

TEST_F(GetVisitorTest, MapAskedOfAStringNamesBoth) {
  data_t value = text("no map");
  EXPECT_EQ(outcome_of_get<map_t>(value),
            (outcome_t{"Incorrect type in get (you asked for map but it's actually string)",
                       "GetVisitor<N3com7velanto12connectivity5map_tE>.operator()"
                       "(N3com7velanto12connectivity5map_tE)\n"}));
}

TEST_F(GetVisitorTest, FailuresAreRuntimeErrors) {
  EXPECT_THROW(static_cast<void>(data_t().get<map_t>()), std::runtime_error);
  stderrOf([] { EXPECT_THROW(static_cast<void>(whole(1).get<map_t>()), std::runtime_error); });
}

TEST_F(GetVisitorTest, ContentChangesInPlace) {
  data_t value = whole(1);
  value.get<std::int64_t>() = 2;
  EXPECT_EQ(value, whole(2));
  value = listOf(text("a"));
  value.get<list_t>()[0] = text("b");
  EXPECT_EQ(value, listOf(text("b")));
  value = data_t(map_t());
  value.get<map_t>()[text("k")] = truth(true);
  EXPECT_EQ(value, data_t(mapOf("k", truth(true))));
}

TEST_F(GetVisitorTest, TakenContainerLeavesTheValueNull) {
  data_t value = listOf(whole(1));
  const list_t taken = std::move(value.get<list_t>());
  EXPECT_EQ(taken.size(), 1u);
  EXPECT_EQ(value.type_tag(), 6u);
  EXPECT_EQ(content_bits(value), 0u);
}

TEST_F(GetVisitorTest, NullBlocksAndStringsAreGot) {
  EXPECT_EQ(nullText().get<const char*>(), nullptr);
  EXPECT_EQ(tagged(10).get<const char*>(), nullptr);
  EXPECT_EQ(tagged(6).get<list_t>().size(), 0u);
  EXPECT_EQ(tagged(7).get<map_t>().size(), 0u);
  EXPECT_EQ(tagged(8).get<buffer_t>().size(), 0u);
}

TEST_F(GetVisitorTest, NeitherGetNorVisitCallsTheHost) {
  data_t value = mapOf("a", listOf(text("b")));
  standin_reset_calls();
  static_cast<void>(value.get<map_t>());
  value.apply_visitor([](auto&) {}, [] {});
  EXPECT_EQ(standin_calls_total(), 0);
}

// Tells the type of its argument.
struct TypeTeller {
  const char* operator()(const bool&) const { return "bool"; }
  const char* operator()(const double&) const { return "double"; }
  const char* operator()(const std::int64_t&) const { return "int64_t"; }
  const char* operator()(const vlt_underlying_decimal_t&) const { return "decimal"; }
  const char* operator()(const char* const&) const { return "text"; }
  const char* operator()(const list_t&) const { return "list_t"; }
  const char* operator()(const map_t&) const { return "map_t"; }
  const char* operator()(const buffer_t&) const { return "buffer_t"; }
  const char* operator()(const vlt_underlying_custom_t&) const { return "custom"; }
};

TEST_F(GetVisitorTest, VisitorIsCalledWithTheContentsType) {
  const char* const types[] = {"nothing", "bool",    "double", "int64_t",  "decimal",
                               "text",    "list_t",  "map_t",  "buffer_t", "custom",
                               "text",    "nothing", "nothing"};
  for (std::size_t i = 0; i < KINDS.size(); ++i) {
    SCOPED_TRACE(KINDS[i].name);
    data_t value = KINDS[i].make();
    const data_t& constant = value;
    const auto nothing = [] { return "nothing"; };
    EXPECT_STREQ(value.apply_visitor(TypeTeller(), nothing), types[i]);
    EXPECT_STREQ(constant.apply_visitor(TypeTeller(), nothing), types[i]);
  }
}

TEST_F(GetVisitorTest, VisitorReachesTheContentItself) {
  data_t value = whole(1);
  const void* const visited =
      value.apply_visitor([](auto& content) -> const void* { return &content; },
                          []() -> const void* { return nullptr; });
  EXPECT_EQ(visited, &value);
}

} // namespace
} // namespace com::velanto::connectivity::test
