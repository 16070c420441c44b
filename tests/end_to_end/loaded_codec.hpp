// The vocabulary of the tests that drive the built library: a codec with a link on both sides, its
// notifications, and its log lines.
#ifndef VLT_TESTS_END_TO_END_LOADED_CODEC_HPP
#define VLT_TESTS_END_TO_END_LOADED_CODEC_HPP

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/host_fixture.hpp"
#include "tests/support/plugin_library.hpp"
#include "tests/support/stderr_capture.hpp"
#include "tests/support/values.hpp"
#include "tools/host/hosted_plugin.hpp"

namespace com::velanto::connectivity::test {

using lines_t = std::vector<log_line_t>;

inline const char* const EVENT_PATH = "tenant/subscription/events/1";
inline const char* const MEASUREMENT_PATH = "tenant/subscription/measurements/1";
inline const char* const UNKNOWN_PATH = "tenant/subscription/inventory/1";

// The payload of a notification that converts, with the least that its kind requires.
inline map_t eventPayload(const char* id = "1") {
  return mapOf("id", text(id), "source", mapOf("id", text("7")), "text", text("t"), "time",
               text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test"));
}
inline map_t measurementPayload(const char* id = "1") {
  return mapOf("id", text(id), "source", mapOf("id", text("7")), "time",
               text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test"));
}

// A codec of the loaded library with both links set. Destroys it at the end of its life.
class LoadedCodec {
 public:
  LoadedCodec(const PluginLibrary& library, const data_t& settings, const char* name = "codec",
              const char* chain = "chain")
      : plugin_(library, name, chain, settings) {
    plugin_.link({&host, Received::take}, {&transport, Received::take});
  }

  int sendTowardsHost(std::span<Message> batch) {
    return plugin_.send(tools::Direction::TOWARDS_HOST, batch) ? 0 : 1;
  }
  // One message; parts that the link does not take stay in `message`.
  int sendTowardsHost(Message& message) { return sendTowardsHost(std::span(&message, 1)); }
  int sendTowardsTransport(std::span<Message> batch) {
    return plugin_.send(tools::Direction::TOWARDS_TRANSPORT, batch) ? 0 : 1;
  }
  // The messages of `batch` that reach the host; fails by exception when the batch fails.
  std::vector<Message> hostGets(std::vector<Message>&& batch) {
    if (sendTowardsHost(batch) != 0) throw std::runtime_error("the batch failed");
    return std::exchange(host.messages, {});
  }
  // The event of a notification; fails by exception when the codec drops it.
  Message converted(Message&& notification) {
    sendTowardsHost(notification);
    if (host.messages.empty()) throw std::runtime_error("the notification was dropped");
    Message event = std::move(host.messages.back());
    host.messages.pop_back();
    return event;
  }
  [[nodiscard]] void* plugin() const { return plugin_.get(); }

  Received host;
  Received transport;

 private:
  tools::HostedPlugin plugin_;
};

// Loads the library before it counts the host's blocks, since the library's constants are such
// blocks.
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
