// A built plug-in library as a host uses it: loaded by dlopen, driven through its twelve functions.
#ifndef VLT_TESTS_SUPPORT_PLUGIN_LIBRARY_HPP
#define VLT_TESTS_SUPPORT_PLUGIN_LIBRARY_HPP

#include <dlfcn.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "value/message.hpp"

namespace com::velanto::connectivity::test {

class PluginLibrary {
 public:
  // `path` names the library; VLT_PLUGIN_PATH is the one that was built. `codec` is the class that
  // its functions are named after. Throws when it cannot be loaded or lacks a function.
  explicit PluginLibrary(const char* path, const char* codec = "OstroviaNotifications2Codec")
      : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)), codec_(codec) {
    if (handle_ == nullptr) throw std::runtime_error(dlerror());
    load(apiVersion, "vlt_plugin_api_version_");
    load(productVersion, "vlt_plugin_product_version_");
    load(checkIsCodec, "_vlt_plugin_checkIsCodec_");
    load(create, "vlt_create_plugin_with_params_");
    load(destroy, "vlt_destroy_plugin_");
    load(start, "vlt_plugin_start_");
    load(hostReady, "vlt_plugin_hostReady_");
    load(shutdown, "vlt_plugin_shutdown_");
    load(setNextTowardsHost, "vlt_plugin_setNextTowardsHost_");
    load(setNextTowardsTransport, "vlt_plugin_setNextTowardsTransport_");
    load(sendBatchTowardsHost, "vlt_plugin_sendBatchTowardsHost_");
    load(sendBatchTowardsTransport, "vlt_plugin_sendBatchTowardsTransport_");
  }
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;
  ~PluginLibrary() { dlclose(handle_); }

  std::uint64_t (*apiVersion)() = nullptr;
  const char* (*productVersion)() = nullptr;
  void (*checkIsCodec)() = nullptr;
  void* (*create)(const char*, const char*, const vlt_underlying_data_t*, void*, void*) = nullptr;
  int (*destroy)(void*) = nullptr;
  int (*start)(void*) = nullptr;
  int (*hostReady)(void*) = nullptr;
  int (*shutdown)(void*) = nullptr;
  int (*setNextTowardsHost)(void*, void*, vlt_batch_function) = nullptr;
  int (*setNextTowardsTransport)(void*, void*, vlt_batch_function) = nullptr;
  int (*sendBatchTowardsHost)(void*, Message*, Message*) = nullptr;
  int (*sendBatchTowardsTransport)(void*, Message*, Message*) = nullptr;

 private:
  template <class Function>
  void load(Function*& function, const char* prefix) {
    const std::string name = prefix + codec_;
    function = reinterpret_cast<Function*>(dlsym(handle_, name.c_str()));
    if (function == nullptr) throw std::runtime_error("no function " + name);
  }

  void* handle_;
  std::string codec_;
};

// A next link that keeps what it is sent: moves each message out of the batch.
struct Received {
  std::vector<Message> messages;
  int calls = 0;

  static void take(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    auto& received = *static_cast<Received*>(handle);
    ++received.calls;
    auto* const last = reinterpret_cast<Message*>(end);
    for (auto* m = reinterpret_cast<Message*>(start); m != last; ++m) {
      received.messages.push_back(std::move(*m));
    }
  }
};

} // namespace com::velanto::connectivity::test

#endif
