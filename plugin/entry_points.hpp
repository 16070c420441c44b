// The twelve C functions through which a host drives a codec, generic in the codec class:
// VLT_EXPORT_CODEC(X) in one source file of the codec defines them with the names below.
//
// In the order in which a host calls them:
//
//   [before create]  vlt_plugin_api_version_X              version of this interface, 4
//                    vlt_plugin_product_version_X          static text, not to be freed
//                    _vlt_plugin_checkIsCodec_X            does nothing; marks a codec
//   [once]           vlt_create_plugin_with_params_X       the plug-in, or null and a level-2 line
//   [after create]   vlt_plugin_setNextTowardsHost_X       level 2; a null function is refused and
//                    vlt_plugin_setNextTowardsTransport_X    the previous link stays
//                    vlt_plugin_start_X                    level 2
//                    vlt_plugin_hostReady_X                level 3
//                    vlt_plugin_sendBatchTowardsHost_X     level 3; the messages stay the caller's
//                    vlt_plugin_sendBatchTowardsTransport_X
//                    vlt_plugin_shutdown_X                 level 3
//   [last]           vlt_destroy_plugin_X                  always 0
//
// Conventions: names, strings and the configuration are borrowed for the call. Null is the empty
// string for a name and an empty value for the configuration. With a null plug-in a function does
// nothing and returns 1 (destroy: 0). A result of 0 is success; 1 is a failure, logged at the level
// shown. The plug-in stays usable. No exception leaves any of them.
#ifndef VLT_PLUGIN_ENTRY_POINTS_HPP
#define VLT_PLUGIN_ENTRY_POINTS_HPP

#include <cstdint>
#include <memory>

#include "plugin/plugin_constructor_parameters.hpp"
#include "plugin/remote_sides.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::entry_points {

inline constexpr std::uint64_t API_VERSION = 4;
inline constexpr const char* PRODUCT_VERSION = "10.15.4.1";

// Logs the exception in flight for a plug-in that does not exist. Nothing leaves it.
void reportFailedCreation(const char* plugin_name, const char* chain_id) noexcept;

// A host may have a C++ library and an unwinder of its own. When an exception of its links passes
// through this library, that unwinder calls the shared C++ library, which asks the shared unwinder for
// registers. A shared unwinder that has never unwound ends the process there. So this lets it unwind.
void wakeUnwinder() noexcept;

template <class Codec>
void* create(const char* plugin_name, const char* chain_id,
             const vlt_underlying_data_t* configuration, void* handle1, void* handle2) noexcept {
  wakeUnwinder();
  try {
    const data_t nothing;
    const data_t& settings = configuration == nullptr ? nothing : data_t::view(*configuration);
    // Allocates the codec's memory before it reads the configuration.
    return new Codec(PluginConstructorParameters(text_or_empty(plugin_name),
                                                 text_or_empty(chain_id), settings.get<map_t>(),
                                                 handle1, handle2));
  } catch (...) {
    reportFailedCreation(plugin_name, chain_id);
    return nullptr;
  }
}

template <class Codec>
int destroy(void* plugin) noexcept {
  delete static_cast<Codec*>(plugin);
  return 0;
}

// The one guard of all other entry points: runs `operation` on the codec that `plugin` points to.
template <class Codec, class Operation>
int guarded(void* plugin, vlt_log_level_t level, const char* name,
            const Operation& operation) noexcept {
  if (plugin == nullptr) return 1;
  auto& codec = *static_cast<Codec*>(plugin);
  try {
    operation(codec);
    return 0;
  } catch (...) {
    handleException(codec.getLogger(), level, name);
    return 1;
  }
}

template <class Codec>
int setNextTowardsHost(void* plugin, void* handle, vlt_batch_function next) noexcept {
  return guarded<Codec>(plugin, 2, "setNextTowardsHost", [&](Codec& codec) {
    codec.setNextTowardsHost(std::make_unique<RemoteHostSide>(handle, next));
  });
}

template <class Codec>
int setNextTowardsTransport(void* plugin, void* handle, vlt_batch_function next) noexcept {
  return guarded<Codec>(plugin, 2, "setNextTowardsTransport", [&](Codec& codec) {
    codec.setNextTowardsTransport(std::make_unique<RemoteTransportSide>(handle, next));
  });
}

template <class Codec>
int start(void* plugin) noexcept {
  return guarded<Codec>(plugin, 2, "start", [](Codec& codec) { codec.start(); });
}

template <class Codec>
int hostReady(void* plugin) noexcept {
  return guarded<Codec>(plugin, 3, "hostReady", [](Codec& codec) { codec.hostReady(); });
}

template <class Codec>
int sendBatchTowardsHost(void* plugin, Message* start, Message* end) noexcept {
  return guarded<Codec>(plugin, 3, "sendBatchTowardsHost",
                        [&](Codec& codec) { codec.sendBatchTowardsHost(start, end); });
}

template <class Codec>
int sendBatchTowardsTransport(void* plugin, Message* start, Message* end) noexcept {
  return guarded<Codec>(plugin, 3, "sendBatchTowardsTransport",
                        [&](Codec& codec) { codec.sendBatchTowardsTransport(start, end); });
}

template <class Codec>
int shutdown(void* plugin) noexcept {
  return guarded<Codec>(plugin, 3, "shutdown", [](Codec& codec) { codec.shutdown(); });
}

} // namespace com::velanto::connectivity::entry_points

#define VLT_EXPORT extern "C" __attribute__((visibility("default")))

// Defines the entry points of the codec class X, which must be visible at the macro.
#define VLT_EXPORT_CODEC(X)                                                                        \
  VLT_EXPORT std::uint64_t vlt_plugin_api_version_##X() noexcept {                                 \
    return ::com::velanto::connectivity::entry_points::API_VERSION;                                \
  }                                                                                                \
  VLT_EXPORT const char* vlt_plugin_product_version_##X() noexcept {                               \
    return ::com::velanto::connectivity::entry_points::PRODUCT_VERSION;                            \
  }                                                                                                \
  VLT_EXPORT void _vlt_plugin_checkIsCodec_##X() noexcept {}                                       \
  VLT_EXPORT void* vlt_create_plugin_with_params_##X(                                              \
      const char* plugin_name, const char* chain_id, const vlt_underlying_data_t* configuration,   \
      void* handle1, void* handle2) noexcept {                                                     \
    return ::com::velanto::connectivity::entry_points::create<X>(plugin_name, chain_id,            \
                                                                 configuration, handle1, handle2); \
  }                                                                                                \
  VLT_EXPORT int vlt_destroy_plugin_##X(void* plugin) noexcept {                                   \
    return ::com::velanto::connectivity::entry_points::destroy<X>(plugin);                         \
  }                                                                                                \
  VLT_EXPORT int vlt_plugin_setNextTowardsHost_##X(void* plugin, void* handle,                     \
                                                   vlt_batch_function next) noexcept {             \
    return ::com::velanto::connectivity::entry_points::setNextTowardsHost<X>(plugin, handle,       \
                                                                             next);                \
  }                                                                                                \
  VLT_EXPORT int vlt_plugin_setNextTowardsTransport_##X(void* plugin, void* handle,                \
                                                        vlt_batch_function next) noexcept {        \
    return ::com::velanto::connectivity::entry_points::setNextTowardsTransport<X>(plugin, handle,  \
                                                                                  next);           \
  }                                                                                                \
  VLT_EXPORT int vlt_plugin_start_##X(void* plugin) noexcept {                                     \
    return ::com::velanto::connectivity::entry_points::start<X>(plugin);                           \
  }                                                                                                \
  VLT_EXPORT int vlt_plugin_hostReady_##X(void* plugin) noexcept {                                 \
    return ::com::velanto::connectivity::entry_points::hostReady<X>(plugin);                       \
  }                                                                                                \
  VLT_EXPORT int vlt_plugin_sendBatchTowardsHost_##X(                                              \
      void* plugin, ::com::velanto::connectivity::Message* start,                                  \
      ::com::velanto::connectivity::Message* end) noexcept {                                       \
    return ::com::velanto::connectivity::entry_points::sendBatchTowardsHost<X>(plugin, start,      \
                                                                               end);               \
  }                                                                                                \
  VLT_EXPORT int vlt_plugin_sendBatchTowardsTransport_##X(                                         \
      void* plugin, ::com::velanto::connectivity::Message* start,                                  \
      ::com::velanto::connectivity::Message* end) noexcept {                                       \
    return ::com::velanto::connectivity::entry_points::sendBatchTowardsTransport<X>(plugin, start, \
                                                                                    end);          \
  }                                                                                                \
  VLT_EXPORT int vlt_plugin_shutdown_##X(void* plugin) noexcept {                                  \
    return ::com::velanto::connectivity::entry_points::shutdown<X>(plugin);                        \
  }                                                                                                \
  static_assert(true, "takes the semicolon")

#endif
