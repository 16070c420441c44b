// The vocabulary of the tests that drive the built library: a codec with a link on both sides, the
// notifications that it is sent, and the lines that it writes.
#ifndef VLT_TESTS_END_TO_END_LOADED_CODEC_HPP
#define VLT_TESTS_END_TO_END_LOADED_CODEC_HPP

#include <memory>
#include <string>
#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/support/plugin_library.hpp"
#include "tests/support/stderr_capture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

using lines_t = std::vector<log_line_t>;

inline const char* const EVENT_PATH = "tenant/subscription/events/1";
inline const char* const MEASUREMENT_PATH = "tenant/subscription/measurements/1";
inline const char* const UNKNOWN_PATH = "tenant/subscription/inventory/1";

// The payload of a notification that converts, with the least that its kind requires.
inline map_t eventPayload(const char* id = "1") {
  return map_of("id", text(id), "source", map_of("id", text("7")), "text", text("t"), "time",
                text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test"));
}
inline map_t measurementPayload(const char* id = "1") {
  return map_of("id", text(id), "source", map_of("id", text("7")), "time",
                text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test"));
}

// A codec of the loaded library with both links set. Destroys it at the end of its life.
class LoadedCodec {
 public:
  LoadedCodec(const PluginLibrary& library, const data_t& settings, const char* name = "codec",
              const char* chain = "chain")
      : library_(library),
        plugin_(library.create(name, chain, settings.underlying(), nullptr, nullptr)) {
    if (plugin_ == nullptr) throw std::runtime_error("the codec was not created");
    library_.setNextTowardsHost(plugin_, &host, Received::take);
    library_.setNextTowardsTransport(plugin_, &transport, Received::take);
  }
  LoadedCodec(const LoadedCodec&) = delete;
  LoadedCodec& operator=(const LoadedCodec&) = delete;
  ~LoadedCodec() { library_.destroy(plugin_); }

  int sendTowardsHost(std::vector<Message>& batch) {
    return library_.sendBatchTowardsHost(plugin_, batch.data(), batch.data() + batch.size());
  }
  // One message; what the link does not take out of `message` stays there.
  int sendTowardsHost(Message& message) {
    return library_.sendBatchTowardsHost(plugin_, &message, &message + 1);
  }
  int sendTowardsTransport(std::vector<Message>& batch) {
    return library_.sendBatchTowardsTransport(plugin_, batch.data(), batch.data() + batch.size());
  }
  // The event that a notification becomes; fails by exception when it is dropped.
  Message converted(Message&& notification) {
    sendTowardsHost(notification);
    if (host.messages.empty()) throw std::runtime_error("the notification was dropped");
    Message event = std::move(host.messages.back());
    host.messages.pop_back();
    return event;
  }
  [[nodiscard]] void* plugin() const { return plugin_; }

  Received host;
  Received transport;

 private:
  const PluginLibrary& library_;
  void* plugin_;
};

// Loads the library before the host's blocks are counted, since its constants are such blocks.
class LibraryHolder {
 protected:
  PluginLibrary library_{VLT_PLUGIN_PATH};
};

class EndToEnd : private LibraryHolder, public HostFixture {
 protected:
  using LibraryHolder::library_;

  // A line of the codec that LoadedCodec makes by default.
  static log_line_t line(vlt_log_level_t level, const std::string& text) {
    return {"connectivity.codec.chain", level, std::string("<connectivity.codec.chain> ") + text};
  }
  // The line for a dropped message.
  static log_line_t dropped(const std::string& rest) {
    return line(3, std::string("Error when transforming message towards host") + rest);
  }
};

} // namespace com::velanto::connectivity::test

#endif
