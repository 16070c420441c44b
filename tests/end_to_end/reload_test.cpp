// Loading and unloading the plug-in: it leaves neither blocks nor memory, and the library leaves the
// process.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr int TIMES = 1000;

class ReloadTest : public HostFixture {
 protected:
  static bool isLoaded() {
    void* const handle = dlopen(VLT_PLUGIN_PATH, RTLD_NOLOAD | RTLD_LAZY);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
  }

  static std::int64_t residentPages() {
    std::ifstream statm("/proc/self/statm");
    std::int64_t total = 0;
    std::int64_t resident = 0;
    statm >> total >> resident;
    return resident;
  }

  // Runs `life` over and over; the last nine tenths must not need more memory than the first.
  template <class Life>
  void live(const Life& life) {
    for (int i = 0; i < TIMES / 10; ++i) life();
    [[maybe_unused]] const std::int64_t before = residentPages();
    for (int i = TIMES / 10; i < TIMES; ++i) life();
#ifndef VLT_SANITIZED // which keep what is freed for a while, and look for leaks themselves
    constexpr std::int64_t ALLOWED = 16; // pages: some 70 bytes for each of the lives
    EXPECT_LE(residentPages() - before, ALLOWED);
#endif
  }

  const std::int64_t blocks_ = standin_live_blocks_total();
};

TEST_F(ReloadTest, LibraryIsGoneAfterCaughtExceptions) {
  {
    const PluginLibrary library(VLT_PLUGIN_PATH);
    LoadedCodec codec(library, mapOf("tenantId", text("t1")));
    Message message = notification(UNKNOWN_PATH, map_t());
    EXPECT_EQ(codec.sendTowardsHost(message), 0);
  }
  EXPECT_FALSE(isLoaded());
}

TEST_F(ReloadTest, WorkingCodecsInBetweenLeakNothing) {
  live([this] {
    {
      const PluginLibrary library(VLT_PLUGIN_PATH);
      LoadedCodec codec(library, mapOf("tenantId", text("t1")));
      static_cast<void>(codec.converted(notification(EVENT_PATH, eventPayload())));
      static_cast<void>(codec.converted(notification(MEASUREMENT_PATH, measurementPayload())));
      Message unknown = notification(UNKNOWN_PATH, map_t());
      ASSERT_EQ(codec.sendTowardsHost(unknown), 0);
    }
    ASSERT_EQ(takeLog().size(), 1U);
    ASSERT_EQ(standin_live_blocks_total(), blocks_);
  });
  EXPECT_FALSE(isLoaded());
}

} // namespace
} // namespace com::velanto::connectivity::test
