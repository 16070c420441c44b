// The library as seen while memory runs out: noting a log line or a batch that arrives takes memory
// of the test's, which is neither counted nor refused.
#ifndef VLT_TESTS_EXHAUSTION_EXHAUSTION_FIXTURE_HPP
#define VLT_TESTS_EXHAUSTION_EXHAUSTION_FIXTURE_HPP

#include <string>
#include <utility>
#include <vector>

#include "tests/end_to_end/loaded_codec.hpp"
#include "tests/exhaustion/exhaustion.hpp"

namespace com::velanto::connectivity::test {

// Longer than a std::string without memory.
inline const char* const PLUGIN_NAME = "a-codec-with-a-long-name";
inline const char* const CHAIN = "a-chain-with-a-long-name";

class ExhaustionFixture : private LibraryHolder, public HostFixture {
 protected:
  using LibraryHolder::library_;

  ExhaustionFixture() { standin_set_log_sink(&ExhaustionFixture::note, this); }

  // The lines since the last call.
  std::vector<log_line_t> takeLines() { return std::exchange(noted_, {}); }

  // The beginning of the codec's lines.
  static std::string label() {
    return std::string("<connectivity.") + PLUGIN_NAME + "." + CHAIN + "> ";
  }

  [[nodiscard]] void* create(const data_t& settings) const {
    return library_.create(PLUGIN_NAME, CHAIN, settings.underlying(), nullptr, nullptr);
  }

 private:
  static void note(void* context, const char* category, vlt_log_level_t level, const char* text) {
    const UncountedAllocations uncounted;
    static_cast<ExhaustionFixture*>(context)->noted_.push_back({category, level, text});
  }

  std::vector<log_line_t> noted_;
};

// The sizes of the host's storage and of the plug-in's own memory. Equal before and after: no leak.
struct held_t {
  std::int64_t blocks = standin_live_blocks_total();
  std::int64_t allocations = allocationsHeld();
  bool operator==(const held_t&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const held_t& held) {
  return out << held.blocks << " blocks, " << held.allocations << " allocations";
}

} // namespace com::velanto::connectivity::test

#endif
