// Memory runs out while the library is loading, one allocation later each time. Loading succeeds, but
// without its constants the library creates no codec and logs a line.
#include <gtest/gtest.h>

#include <memory>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class ExhaustedLoadingTest : public HostFixture {
 protected:
  using refuse_t = void (*)(std::uint64_t);

  // Loads the library with the n-th allocation refused. Memory is there again afterwards.
  static std::unique_ptr<PluginLibrary> load(refuse_t refuse, std::uint64_t n) {
    refuse(n);
    auto library = std::make_unique<PluginLibrary>(VLT_PLUGIN_PATH);
    standin_fail_allocation(0);
    return library;
  }
  static bool creates(const PluginLibrary& library) {
    const data_t settings = mapOf("tenantId", text("t1"));
    void* const codec = library.create("codec", "chain", settings.underlying(), nullptr, nullptr);
    library.destroy(codec);
    return codec != nullptr;
  }
  // For each n up to the last allocation: create gives no codec, also not the second time.
  void expectRefusals(refuse_t refuse) {
    const lines_t refusal = {{"connectivity.codec.chain", 2,
                              "<connectivity.codec.chain> Exception from create: std::bad_alloc"}};
    const std::int64_t before = standin_live_blocks_total();
    for (std::uint64_t n = 1;; ++n) {
      const auto library = load(refuse, n);
      if (standin_failed_allocations() == 0) {
        EXPECT_GT(n, 50U) << "the constants are allocations";
        EXPECT_TRUE(creates(*library)) << "a library that is loaded again has lost nothing";
        EXPECT_EQ(takeLog(), lines_t{});
        break;
      }
      for (int attempt = 1; attempt <= 2; ++attempt) {
        EXPECT_FALSE(creates(*library)) << n;
        EXPECT_EQ(takeLog(), refusal) << n;
      }
    }
    EXPECT_EQ(standin_live_blocks_total(), before);
  }
};

TEST_F(ExhaustedLoadingTest, OneRefusedAllocationRefusesCreation) {
  expectRefusals(standin_fail_allocation);
}

TEST_F(ExhaustedLoadingTest, NoMemoryFromThereOnRefusesCreation) {
  expectRefusals(standin_fail_allocations_from);
}

} // namespace
} // namespace com::velanto::connectivity::test
