// All arguments of create may change or vanish after the call.
#include "plugin/plugin_constructor_parameters.hpp"

#include <new>
#include <type_traits>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

class ParametersTest : public HostFixture {};

TEST_F(ParametersTest, CodecsTakeTheSameParameters) {
  EXPECT_TRUE((std::is_base_of_v<PluginConstructorParameters,
                                 PluginConstructorParameters::CodecConstructorParameters>));
}

TEST_F(ParametersTest, HandlesKeepTheirOrderAndAreNotRead) {
  void* const first = unreadable(1);
  void* const second = unreadable(2);
  const PluginConstructorParameters params("name", "chain", map_t(), first, second);
  EXPECT_EQ(params.getFirstHandle(), first);
  EXPECT_EQ(params.getSecondHandle(), second);
}

TEST_F(ParametersTest, NamesMayVanish) {
  std::string name = "a plug-in name that is longer than a short string";
  std::string chain = "a chain identifier that is longer than a short string";
  const PluginConstructorParameters params(name, chain, map_t(), nullptr, nullptr);
  name.assign(name.size(), 'x');
  chain.assign(chain.size(), 'x');
  EXPECT_EQ(params.getPluginName(), "a plug-in name that is longer than a short string");
  EXPECT_EQ(params.getChainId(), "a chain identifier that is longer than a short string");
}

TEST_F(ParametersTest, ConfigurationIsADeepCopy) {
  map_t settings = mapOf("a", text("1"), "b", mapOf("c", listOf(whole(2), text("3"))));
  const PluginConstructorParameters params("n", "c", settings, nullptr, nullptr);
  EXPECT_EQ(params.getConfiguration(), settings);
  EXPECT_NE(params.getConfiguration().table(), settings.table());
  settings = map_t();
  EXPECT_EQ(params.getConfiguration(),
            mapOf("a", text("1"), "b", mapOf("c", listOf(whole(2), text("3")))));
}

TEST_F(ParametersTest, ConfigurationWithoutATableStaysOne) {
  const PluginConstructorParameters params("n", "c", map_t(), nullptr, nullptr);
  EXPECT_TRUE(params.getConfiguration().empty());
}

TEST_F(ParametersTest, BorrowedStringsAreOwnedInTheCopy) {
  std::string key = "key";
  std::string value = "value";
  const map_t settings = mapOf(borrowed(key.c_str()), borrowed(value.c_str()));
  const PluginConstructorParameters params("n", "c", settings, nullptr, nullptr);
  key = "---";
  value = "-----";
  EXPECT_EQ(params.getConfiguration(), mapOf("key", text("value")));
}

TEST_F(ParametersTest, ExhaustedMemoryLeaksNothing) {
  const map_t settings = mapOf("a", text("1"), "b", listOf(text("2"), mapOf("c", text("3"))));
  std::uint64_t n = 0;
  for (bool made = false; !made;) {
    standin_fail_allocation(++n);
    const std::int64_t before = standin_live_blocks_total();
    try {
      const PluginConstructorParameters params("n", "c", settings, nullptr, nullptr);
      made = true;
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(standin_live_blocks_total(), before) << "allocation " << n;
    }
  }
  EXPECT_EQ(standin_failed_allocations(), 0U);
  EXPECT_GT(n, 5U) << "the copy takes a block for each text, list and table";
}

} // namespace
} // namespace com::velanto::connectivity::test
