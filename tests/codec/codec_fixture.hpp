// The codec with a next link on each side and the host's log, for tests that send whole batches.
#ifndef VLT_TESTS_CODEC_CODEC_FIXTURE_HPP
#define VLT_TESTS_CODEC_CODEC_FIXTURE_HPP

#include <memory>
#include <utility>
#include <vector>

#include "codec/ostrovia_notifications2_codec.hpp"
#include "tests/codec/examples.hpp"

namespace com::velanto::connectivity::test {

using plugins::pulsar::OstroviaNotifications2Codec;

inline constexpr const char* CATEGORY = "connectivity.plugin.chain";

class CodecFixture : public HostFixture {
 protected:
  static std::unique_ptr<OstroviaNotifications2Codec> codecWith(const map_t& configuration) {
    const PluginConstructorParameters params("plugin", "chain", configuration, nullptr, nullptr);
    return std::make_unique<OstroviaNotifications2Codec>(params);
  }
  static std::unique_ptr<OstroviaNotifications2Codec> codec() {
    return codecWith(mapOf("tenantId", text("")));
  }

  // A notification of an example's kind.
  static Message example(std::size_t index) {
    return notification((std::string("a/b/") + EXAMPLES[index].kind + "/1").c_str(),
                        EXAMPLES[index].payload());
  }
  static Message alarm() { return example(0); }
  static Message measurement() { return example(2); }

  static log_line_t line(vlt_log_level_t level, const std::string& words) {
    return {CATEGORY, level, std::string("<") + CATEGORY + "> " + words};
  }
  // The line of a dropped message.
  static log_line_t dropped(const std::string& rest) {
    return line(3, "Error when transforming message towards host" + rest);
  }
};

// Counts the messages of each batch and leaves them unchanged.
class CountingLink final : public HostSide, public TransportSide {
 public:
  explicit CountingLink(std::vector<std::ptrdiff_t>& sizes) : sizes_(sizes) {}
  void sendBatchTowardsHost(Message* start, Message* end) override {
    sizes_.push_back(end - start);
  }
  void sendBatchTowardsTransport(Message* start, Message* end) override {
    sizes_.push_back(end - start);
  }

 private:
  std::vector<std::ptrdiff_t>& sizes_;
};

} // namespace com::velanto::connectivity::test

#endif
