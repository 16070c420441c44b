// The library with the failing codec, loaded, and common parts of all tests of the entry points.
#ifndef VLT_TESTS_PLUGIN_FAILING_LIBRARY_HPP
#define VLT_TESTS_PLUGIN_FAILING_LIBRARY_HPP

#include <string>
#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/support/plugin_library.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

using lines_t = std::vector<log_line_t>;

class FailingLibrary : public HostFixture {
 protected:
  // A codec named "codec" on the chain "chain"; the test destroys it. Null when creation failed.
  [[nodiscard]] void* create(const data_t& settings) const {
    return library_.create("codec", "chain", settings.underlying(), nullptr, nullptr);
  }

  // The line that the codec of create() writes.
  static log_line_t line(vlt_log_level_t level, const std::string& text) {
    return {"connectivity.codec.chain", level, "<connectivity.codec.chain> " + text};
  }

  PluginLibrary library_{VLT_FAILING_CODEC_PATH, PluginLibrary::Version::OURS, "FailingCodec"};
};

} // namespace com::velanto::connectivity::test

#endif
