// A plug-in with the one fault in the name of its file (faults.hpp). It is a front of the real
// codec on both sides, and spoils calls on their way:
//
//   host → entry points below → real codec → links below (messages.hpp) → the host's links
//   real codec → host_calls.hpp → the host's functions
#include <sched.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "tests/tools/check/faulty/host_calls.hpp"
#include "tests/tools/check/faulty/messages.hpp"
#include "tests/tools/check/faulty/real_plugin.hpp"

using com::velanto::connectivity::test::front_t;
using com::velanto::connectivity::test::setNext;

namespace {

// ---- The front -----------------------------------------------------------------------------------

struct codec_front_t : front_t {
  const vlt_underlying_data_t* configuration = nullptr;
  bool started = false;
};

// Of the batch that this thread is sending.
thread_local message_t* kept_end = nullptr;
thread_local message_t* batch_end = nullptr;

// Only for the fault that needs it: hosts create in several threads.
front_t* latest = nullptr;

// Not optimised away, although nobody reads it.
[[gnu::used]] const char* const KEPT_AFTER_UNLOAD =
    has(Fault::keeps_block_after_unload) ? vlt_copy_string("kept") : nullptr;

// The acts of loading and unloading the library.
struct presence_t {
  presence_t() {
    if (has(Fault::prints_on_loading)) static_cast<void>(write(STDERR_FILENO, "loaded\n", 7) == 7);
  }
  ~presence_t() {
    if (has(Fault::crashes_on_unload)) std::abort();
  }
};
const presence_t PRESENCE;

void towardsHost(void* handle, message_t* start, message_t* end) {
  const auto& front = *static_cast<front_t*>(handle);
  kept_end = end;
  spoil(start, end);
  if (has(Fault::spares_empty_ranges) && start == end) return;
  if (has(Fault::sends_dropped)) end = batch_end;
  front.host.function(front.host.handle, start, end);
}

void towardsTransport(void* handle, message_t* start, message_t* end) {
  const auto& front = *static_cast<front_t*>(handle);
  front.transport.function(has(Fault::ignores_handle) ? nullptr : front.transport.handle, start,
                           end);
}

void emptyDropped() {
  for (message_t* m = kept_end; m != batch_end; ++m) {
    if (m->payload.tag != VLT_TAG_MAP) continue;
    vlt_free_map(m->payload.value.map);
    m->payload = {};
  }
}

int sendTowardsHost(const front_t& front, message_t* start, message_t* end) {
  kept_end = end;
  batch_end = end;
  void* real = front.real;
  if (has(Fault::uses_latest_codec) && latest != nullptr) real = latest->real;
  const int result = vlt_plugin_sendBatchTowardsHost_RealPlugin(real, start, end);
  if (has(Fault::empties_dropped)) emptyDropped();
  return result;
}

std::atomic<bool> creating = false;

// False when another thread is creating at this time.
bool createsAlone() {
  if (creating.exchange(true)) return false;
  usleep(50);
  creating = false;
  return true;
}

// A codec for a configuration without its tenant's name.
void* createWithoutTenant(const char* name, const char* chain,
                          const vlt_underlying_data_t& settings, void* handle1, void* handle2) {
  vlt_underlying_data_t copy = vlt_copy_data(&settings);
  if (copy.tag != VLT_TAG_MAP) return nullptr;
  vlt_underlying_data_t* const tenant = find(copy.value.map, "tenantId");
  if (isText(tenant)) replaceText(*tenant, "");
  void* const made = vlt_create_plugin_with_params_RealPlugin(name, chain, &copy, handle1, handle2);
  vlt_free_map(copy.value.map);
  return made;
}

void* createReal(const char* name, const char* chain, const vlt_underlying_data_t* settings,
                 void* handle1, void* handle2) {
  const bool is_map = settings != nullptr && settings->tag == VLT_TAG_MAP;
  if (has(Fault::reads_null_configuration) && settings->tag == VLT_TAG_EMPTY) return nullptr;
  if (has(Fault::creates_one_at_a_time) && !createsAlone()) return nullptr;
  if (has(Fault::reads_host_handles) && handle1 != nullptr) {
    static_cast<void>(*static_cast<const volatile char*>(handle1));
  }
  if (has(Fault::refuses_empty_tenant) && is_map) {
    const vlt_underlying_data_t* const tenant = find(settings->value.map, "tenantId");
    if (isText(tenant) && *tenant->value.string == '\0') return nullptr;
  }
  if (has(Fault::forgets_tenant) && is_map) {
    return createWithoutTenant(name, chain, *settings, handle1, handle2);
  }
  void* const made =
      vlt_create_plugin_with_params_RealPlugin(name, chain, settings, handle1, handle2);
  if (has(Fault::writes_configuration) && is_map && settings->value.map != nullptr) {
    ++settings->value.map->host;
  }
  if (has(Fault::leaks_on_refusal) && made == nullptr) {
    static_cast<void>(vlt_copy_string("leak"));
  }
  return made;
}

} // namespace

// ---- The twelve entry points, and more -------------------------------------------------------------

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the host looks these up

// The version scripts of single builds export these two, all others hide them.
EXPORT void vlt_plugin_extra_OstroviaNotifications2Codec() {}

EXPORT int vlt_plugin_data_OstroviaNotifications2Codec;
int vlt_plugin_data_OstroviaNotifications2Codec = 0;

EXPORT std::uint64_t vlt_plugin_api_version_OstroviaNotifications2Codec() {
  if (has(Fault::asks_level_in_version)) static_cast<void>(vlt_get_log_level("codec"));
  return has(Fault::wrong_interface_version) ? 3 : vlt_plugin_api_version_RealPlugin();
}

EXPORT const char* vlt_plugin_product_version_OstroviaNotifications2Codec() {
  if (has(Fault::wrong_product_version)) return "10.15.4.2";
  if (has(Fault::moves_product_version)) {
    static std::array<std::array<char, 10>, 2> copies{};
    static std::size_t turn = 0;
    turn = 1 - turn;
    return std::strcpy(copies[turn].data(), vlt_plugin_product_version_RealPlugin());
  }
  return vlt_plugin_product_version_RealPlugin();
}

EXPORT void _vlt_plugin_checkIsCodec_OstroviaNotifications2Codec() {}

EXPORT void* vlt_create_plugin_with_params_OstroviaNotifications2Codec(
    const char* name, const char* chain, const vlt_underlying_data_t* configuration, void* handle1,
    void* handle2) {
  void* const real = createReal(name, chain, configuration, handle1, handle2);
  if (real == nullptr) return nullptr;
  auto* const front = new codec_front_t;
  front->real = real;
  front->configuration = configuration;
  if (has(Fault::uses_latest_codec)) latest = front;
  return static_cast<front_t*>(front);
}

EXPORT int vlt_destroy_plugin_OstroviaNotifications2Codec(void* plugin) {
  if (plugin == nullptr) return 0;
  auto* const front = static_cast<front_t*>(plugin);
  if (latest == front) latest = nullptr;
  if (has(Fault::leaks_in_destroy)) static_cast<void>(vlt_copy_string("leak"));
  if (has(Fault::sets_status_in_destroy)) vlt_set_user_status_map(nullptr, nullptr);
  const int result = vlt_destroy_plugin_RealPlugin(front->real);
  delete static_cast<codec_front_t*>(front);
  return result;
}

EXPORT int vlt_plugin_start_OstroviaNotifications2Codec(void* plugin) {
  if (has(Fault::crashes_on_null)) static_cast<void>(*static_cast<volatile char*>(plugin));
  while (has(Fault::hangs_in_start)) sched_yield();
  if (plugin != nullptr) static_cast<codec_front_t*>(static_cast<front_t*>(plugin))->started = true;
  return FORWARD(start, plugin);
}

EXPORT int vlt_plugin_hostReady_OstroviaNotifications2Codec(void* plugin) {
  if (has(Fault::throws_from_host_ready)) throw std::runtime_error("not ready");
  return FORWARD(hostReady, plugin);
}

EXPORT int vlt_plugin_shutdown_OstroviaNotifications2Codec(void* plugin) {
  if (has(Fault::ends_the_process) && plugin != nullptr) _exit(0);
  if (has(Fault::fails_in_shutdown)) return 1;
  return FORWARD(shutdown, plugin);
}

EXPORT int vlt_plugin_setNextTowardsHost_OstroviaNotifications2Codec(void* plugin, void* handle,
                                                                     vlt_batch_function next) {
  if (plugin == nullptr) return 1;
  auto* const front = static_cast<front_t*>(plugin);
  if (has(Fault::accepts_null_function) && next == nullptr) return 0;
  const bool is_linked = next != nullptr && front->host.function != nullptr;
  if (has(Fault::keeps_first_link) && is_linked) return 0;
  return setNext(vlt_plugin_setNextTowardsHost_RealPlugin, *front, front->host, {handle, next},
                 towardsHost);
}

EXPORT int vlt_plugin_setNextTowardsTransport_OstroviaNotifications2Codec(void* plugin,
                                                                          void* handle,
                                                                          vlt_batch_function next) {
  if (plugin == nullptr) return 1;
  auto* const front = static_cast<front_t*>(plugin);
  return setNext(vlt_plugin_setNextTowardsTransport_RealPlugin, *front, front->transport,
                 {handle, next}, towardsTransport);
}

EXPORT int vlt_plugin_sendBatchTowardsHost_OstroviaNotifications2Codec(void* plugin,
                                                                       message_t* start,
                                                                       message_t* end) {
  if (plugin == nullptr) return 1;
  auto& front = static_cast<codec_front_t&>(*static_cast<front_t*>(plugin));
  if (has(Fault::needs_start) && !front.started) return 1;
  if (has(Fault::keeps_configuration) && front.configuration->tag != VLT_TAG_MAP) return 0;
  if (has(Fault::drops_first_of_many) && end - start > 1) ++start;
  if (has(Fault::stops_at_4096) && end - start > 4096) end = start + 4096;
  if (!has(Fault::sends_one_by_one)) return sendTowardsHost(front, start, end);
  int result = 0;
  for (; start != end; ++start) result |= sendTowardsHost(front, start, start + 1);
  return result;
}

EXPORT int vlt_plugin_sendBatchTowardsTransport_OstroviaNotifications2Codec(void* plugin,
                                                                            message_t* start,
                                                                            message_t* end) {
  if (plugin == nullptr) return 1;
  auto& front = *static_cast<front_t*>(plugin);
  if (has(Fault::converts_towards_transport)) return sendTowardsHost(front, start, end);
  return vlt_plugin_sendBatchTowardsTransport_RealPlugin(front.real, start, end);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
