// The real plug-in behind the front of a faulty one, and the calls that each front passes on to it.
// A front is linked with real_codec.cpp or real_recorder.cpp.
#ifndef VLT_TESTS_TOOLS_CHECK_FAULTY_REAL_PLUGIN_HPP
#define VLT_TESTS_TOOLS_CHECK_FAULTY_REAL_PLUGIN_HPP

#include <cstdint>

#include "host/types.h"

extern "C" {
std::uint64_t vlt_plugin_api_version_RealPlugin();
const char* vlt_plugin_product_version_RealPlugin();
void* vlt_create_plugin_with_params_RealPlugin(const char*, const char*,
                                               const vlt_underlying_data_t*, void*, void*);
int vlt_destroy_plugin_RealPlugin(void*);
int vlt_plugin_start_RealPlugin(void*);
int vlt_plugin_hostReady_RealPlugin(void*);
int vlt_plugin_shutdown_RealPlugin(void*);
int vlt_plugin_setNextTowardsHost_RealPlugin(void*, void*, vlt_batch_function);
int vlt_plugin_setNextTowardsTransport_RealPlugin(void*, void*, vlt_batch_function);
int vlt_plugin_sendBatchTowardsHost_RealPlugin(void*, vlt_underlying_message_t*,
                                               vlt_underlying_message_t*);
int vlt_plugin_sendBatchTowardsTransport_RealPlugin(void*, vlt_underlying_message_t*,
                                                    vlt_underlying_message_t*);
}

namespace com::velanto::connectivity::test {

struct link_t {
  void* handle = nullptr;
  vlt_batch_function function = nullptr;
};

struct front_t {
  void* real = nullptr;
  link_t host;
  link_t transport;
};

// Keeps the host's link as `kept`, and links the real plug-in to `own`, a function of the front.
// A null function goes to the real plug-in.
inline int setNext(int (*set_real)(void*, void*, vlt_batch_function), front_t& front, link_t& kept,
                   const link_t& next, vlt_batch_function own) {
  if (next.function == nullptr) return set_real(front.real, next.handle, nullptr);
  kept = next;
  return set_real(front.real, &front, own);
}

} // namespace com::velanto::connectivity::test

#define EXPORT extern "C" __attribute__((visibility("default")))
#define FORWARD(operation, plugin) \
  ((plugin) == nullptr ? 1         \
                       : vlt_plugin_##operation##_RealPlugin(static_cast<front_t*>(plugin)->real))

#endif
