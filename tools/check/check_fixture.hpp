// The host's side of a chain: the log, a codec, and the links on both its sides.
#ifndef VLT_TOOLS_CHECK_CHECK_FIXTURE_HPP
#define VLT_TOOLS_CHECK_CHECK_FIXTURE_HPP

#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "tools/check/trial.hpp"
#include "tools/host/plugin_library.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// The names under which checks create a codec, unless names are the subject.
inline constexpr const char* PLUGIN_NAME = "codec";
inline constexpr const char* CHAIN_NAME = "chain";

// How the log below shows a line of such a codec: "LEVEL CATEGORY <CATEGORY> TEXT".
[[nodiscard]] std::string line(vlt_log_level_t level, const std::string& text);
// The line for a dropped message, `rest` behind its fixed beginning.
[[nodiscard]] std::string dropped(const std::string& rest);

// Takes the place of the host's log, for this process, at a level for all categories.
class Log {
 public:
  static constexpr vlt_log_level_t USUAL_LEVEL = 3; // failures and dropped messages, no trace

  explicit Log(vlt_log_level_t level = USUAL_LEVEL);
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  ~Log();

  // The lines since the last call.
  [[nodiscard]] lines_t take();

 private:
  static void file(void* context, const char* category, vlt_log_level_t level, const char* text);

  std::mutex lock_;
  lines_t lines_;
};

// A next link: keeps what it is sent.
class Link {
 public:
  struct call_t {
    const vlt_underlying_message_t* start;
    const vlt_underlying_message_t* end;
  };

  Link();
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  ~Link();

  // With the link itself as the handle. A call with a handle that no link has is counted as stray
  // and not followed.
  static void take(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end);
  [[nodiscard]] static int strayCalls();

  // Moved out of the batch when `moves_out`; otherwise they stay where they are.
  std::vector<Message> messages;
  std::vector<call_t> calls;
  bool moves_out = true;
};

// The library that is checked. Of whatever interface version: that is a check of its own.
[[nodiscard]] PluginLibrary load(const Trial& trial);

// The configuration in `json`; a recorder gets the folder of its check in addition.
[[nodiscard]] data_t configured(const Trial& trial,
                                std::string_view json = R"({"tenantId": "t1"})");

// A plug-in between two links. Its calls let no exception out: one that crosses the interface is a
// mismatch, and the result then is -1.
class Codec {
 public:
  Codec(Trial& trial, const PluginLibrary& library, const vlt_underlying_data_t* configuration,
        const char* name = PLUGIN_NAME, const char* chain = CHAIN_NAME);
  Codec(Trial& trial, const PluginLibrary& library, const data_t& configuration,
        const char* name = PLUGIN_NAME, const char* chain = CHAIN_NAME)
      : Codec(trial, library, configuration.underlying(), name, chain) {}
  Codec(const Codec&) = delete;
  Codec& operator=(const Codec&) = delete;
  ~Codec() { destroy(); }

  // False: the library refused to make it.
  [[nodiscard]] bool made() const noexcept { return plugin_ != nullptr; }
  // Sets both links. Throws std::runtime_error when there is no codec or it refuses.
  void link();

  int start() { return call("start", library_.start); }
  int hostReady() { return call("hostReady", library_.hostReady); }
  int shutdown() { return call("shutdown", library_.shutdown); }
  int setNextTowardsHost(void* handle, vlt_batch_function next) {
    return call("setNextTowardsHost", library_.setNextTowardsHost, handle, next);
  }
  int setNextTowardsTransport(void* handle, vlt_batch_function next) {
    return call("setNextTowardsTransport", library_.setNextTowardsTransport, handle, next);
  }
  int towardsHost(std::span<Message> batch) {
    return call("sendBatchTowardsHost", library_.sendBatchTowardsHost, batch.data(),
                batch.data() + batch.size());
  }
  int towardsTransport(std::span<Message> batch) {
    return call("sendBatchTowardsTransport", library_.sendBatchTowardsTransport, batch.data(),
                batch.data() + batch.size());
  }
  int destroy(); // once; then, and by the destructor, never again

  Link host;
  Link transport;

 private:
  int guarded(const char* name, const std::function<int()>& call);
  template <class... Arguments>
  int call(const char* name, int (*function)(void*, Arguments...),
           std::type_identity_t<Arguments>... arguments) {
    return guarded(name, [&] { return function(plugin_, arguments...); });
  }

  Trial& trial_;
  const PluginLibrary& library_;
  void* plugin_ = nullptr;
};

// What most checks need: the library, the log and one linked codec, made in this order.
struct CheckFixture {
  // Throws std::runtime_error when the codec cannot be made.
  explicit CheckFixture(Trial& trial, const char* configuration_json = R"({"tenantId": "t1"})",
                        vlt_log_level_t level = Log::USUAL_LEVEL);

  // What arrives at the host of the batch, whose other messages are freed. Expects result 0.
  std::vector<Message> send(std::vector<Message>&& batch);
  std::vector<Message> send(Message&& message);
  // Expects that exactly these lines were logged since the last look.
  void expectLog(const std::string& where, const lines_t& expected);

  Trial& trial;
  Log log;
  PluginLibrary loaded;
  data_t configuration;
  Codec codec;
};

} // namespace com::velanto::connectivity::tools::check

#endif
