// A chain with the built plug-in in it, as ostrovia-replay makes one: what stands in the documents
// was printed by that tool, and log lines begin with the names that it gives.
#ifndef VLT_TESTS_DOCS_CHAIN_HPP
#define VLT_TESTS_DOCS_CHAIN_HPP

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ndjson/json_writer.hpp"
#include "tests/support/plugin_library.hpp"

namespace com::velanto::connectivity::test {

// A message as the tool prints it.
inline std::string json(const Message& message) {
  std::string text;
  writeJson(text, message);
  return text;
}

class Chain {
 public:
  // Throws when the plug-in cannot be loaded or refuses the configuration.
  explicit Chain(const data_t& configuration)
      : library_(VLT_PLUGIN_PATH),
        plugin_(library_.create("OstroviaNotifications2Codec", "replay", configuration.underlying(),
                                nullptr, nullptr)) {
    if (plugin_ == nullptr) throw std::runtime_error("the plug-in refuses its configuration");
    library_.setNextTowardsHost(plugin_, &received_, &Received::take);
  }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain() { library_.destroy(plugin_); }

  // Sends the messages in one batch and returns those that reach the host.
  std::vector<Message> send(std::vector<Message>&& batch) {
    if (library_.sendBatchTowardsHost(plugin_, batch.data(), batch.data() + batch.size()) != 0) {
      throw std::runtime_error("the batch failed");
    }
    return std::exchange(received_.messages, {});
  }

 private:
  PluginLibrary library_;
  Received received_; // outlives the plug-in, which points at it
  void* plugin_;
};

} // namespace com::velanto::connectivity::test

#endif
