// The twelve functions that a host calls. None throws: a failure is a line in the log and a result.
#include <exception>
#include <string>
#include <utility>

#include "host/types.h"
#include "tests/plain_build/codec.hpp"

using plain_build::Codec;
using plain_build::Log;
using plain_build::Message;

namespace {

constexpr vlt_log_level_t LIFE_LEVEL = 2;
constexpr vlt_log_level_t BATCH_LEVEL = 3;

void report(const Log& log, vlt_log_level_t level, const char* where,
            const std::exception* error) noexcept try {
  log.write(level, error == nullptr
                       ? std::string("Unknown exception from ") + where
                       : std::string("Exception from ") + where + ": " + error->what());
} catch (const std::exception&) { // no memory for the line
}

// Runs `call` and returns 0, or 1 after a line in the log.
template <class Call>
int guarded(const Log& log, vlt_log_level_t level, const char* where, Call call) noexcept {
  try {
    call();
    return 0;
  } catch (const std::exception& error) {
    report(log, level, where, &error);
  } catch (...) {
    report(log, level, where, nullptr);
  }
  return 1;
}

// Runs `call` on the codec behind `plugin`; a null plug-in does nothing and gives 1.
template <class Call>
int onCodec(void* plugin, vlt_log_level_t level, const char* where, Call call) noexcept {
  if (plugin == nullptr) return 1;
  Codec& codec = *static_cast<Codec*>(plugin);
  return guarded(codec.log(), level, where, [&] { call(codec); });
}

std::string orEmpty(const char* text) { return text == nullptr ? "" : text; }

} // namespace

#define VLT_ENTRY extern "C" __attribute__((visibility("default")))

VLT_ENTRY uint64_t vlt_plugin_api_version_OstroviaNotifications2Codec() noexcept { return 4; }

VLT_ENTRY const char* vlt_plugin_product_version_OstroviaNotifications2Codec() noexcept {
  return "10.15.4.1";
}

VLT_ENTRY void _vlt_plugin_checkIsCodec_OstroviaNotifications2Codec() noexcept {}

VLT_ENTRY void* vlt_create_plugin_with_params_OstroviaNotifications2Codec(
    const char* plugin_name, const char* chain_id, const vlt_underlying_data_t* configuration,
    void* /*handle1*/, void* /*handle2*/) noexcept try {
  const Log log("connectivity." + orEmpty(plugin_name) + "." + orEmpty(chain_id));
  Codec* codec = nullptr;
  guarded(log, LIFE_LEVEL, "create", [&] {
    codec = new Codec(log, plain_build::settingsOf(configuration == nullptr ? plain_build::EMPTY
                                                                            : *configuration));
  });
  return codec;
} catch (const std::exception&) { // no memory for the name of the log
  return nullptr;
}

VLT_ENTRY int vlt_destroy_plugin_OstroviaNotifications2Codec(void* plugin) noexcept {
  delete static_cast<Codec*>(plugin);
  return 0;
}

VLT_ENTRY int vlt_plugin_start_OstroviaNotifications2Codec(void* plugin) noexcept {
  return plugin == nullptr ? 1 : 0;
}

VLT_ENTRY int vlt_plugin_hostReady_OstroviaNotifications2Codec(void* plugin) noexcept {
  return plugin == nullptr ? 1 : 0;
}

VLT_ENTRY int vlt_plugin_shutdown_OstroviaNotifications2Codec(void* plugin) noexcept {
  return plugin == nullptr ? 1 : 0;
}

VLT_ENTRY int vlt_plugin_setNextTowardsHost_OstroviaNotifications2Codec(
    void* plugin, void* handle, vlt_batch_function next) noexcept {
  return onCodec(plugin, LIFE_LEVEL, "setNextTowardsHost", [&](Codec& codec) {
    codec.setNextTowardsHost({handle, next});
  });
}

VLT_ENTRY int vlt_plugin_setNextTowardsTransport_OstroviaNotifications2Codec(
    void* plugin, void* handle, vlt_batch_function next) noexcept {
  return onCodec(plugin, LIFE_LEVEL, "setNextTowardsTransport", [&](Codec& codec) {
    codec.setNextTowardsTransport({handle, next});
  });
}

VLT_ENTRY int vlt_plugin_sendBatchTowardsHost_OstroviaNotifications2Codec(void* plugin,
                                                                          Message* start,
                                                                          Message* end) noexcept {
  return onCodec(plugin, BATCH_LEVEL, "sendBatchTowardsHost",
                 [&](Codec& codec) { codec.sendBatchTowardsHost(start, end); });
}

VLT_ENTRY int vlt_plugin_sendBatchTowardsTransport_OstroviaNotifications2Codec(
    void* plugin, Message* start, Message* end) noexcept {
  return onCodec(plugin, BATCH_LEVEL, "sendBatchTowardsTransport",
                 [&](Codec& codec) { codec.sendBatchTowardsTransport(start, end); });
}
