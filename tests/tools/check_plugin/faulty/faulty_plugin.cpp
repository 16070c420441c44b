// A plug-in with the one fault that VLT_FAULT names. It stands in front of the real codec on both
// sides, and spoils what goes through its hands:
//
//   host → entry points below → real codec → links below → the host's links
//   real codec → __wrap_ functions below (the linker's --wrap) → the host's functions
#include <sched.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "host/logging.h"
#include "host/status.h"
#include "host/storage.h"
#include "tests/tools/check_plugin/faulty/faults.hpp"

using com::velanto::connectivity::test::Fault;
using com::velanto::connectivity::test::has;
using message_t = vlt_underlying_message_t;

// ---- The real codec, and the host's functions behind --wrap --------------------------------------

extern "C" {
std::uint64_t vlt_plugin_api_version_RealCodec();
const char* vlt_plugin_product_version_RealCodec();
void* vlt_create_plugin_with_params_RealCodec(const char*, const char*,
                                              const vlt_underlying_data_t*, void*, void*);
int vlt_destroy_plugin_RealCodec(void*);
int vlt_plugin_start_RealCodec(void*);
int vlt_plugin_hostReady_RealCodec(void*);
int vlt_plugin_shutdown_RealCodec(void*);
int vlt_plugin_setNextTowardsHost_RealCodec(void*, void*, vlt_batch_function);
int vlt_plugin_setNextTowardsTransport_RealCodec(void*, void*, vlt_batch_function);
int vlt_plugin_sendBatchTowardsHost_RealCodec(void*, message_t*, message_t*);
int vlt_plugin_sendBatchTowardsTransport_RealCodec(void*, message_t*, message_t*);

// NOLINTBEGIN(bugprone-reserved-identifier): the linker makes these names
void __real_vlt_log_at(const char*, vlt_log_level_t, const char*, ...);
vlt_log_level_t __real_vlt_get_log_level(const char*);
char* __real_vlt_copy_string(const char*);
vlt_underlying_map_table_t* __real_vlt_allocate_map(std::int64_t);

void __wrap_vlt_log_at(const char* category, vlt_log_level_t level, const char* format, ...) {
  std::array<char, 4096> text{};
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  if (has(Fault::logs_at_wrong_level) && level == 3) level = 4;
  if (has(Fault::leaks_on_drop)) static_cast<void>(__real_vlt_copy_string("leak"));
  if (has(Fault::misspells_errors)) {
    if (char* const word = std::strstr(text.data(), "Unrecognised")) word[9] = 'z';
  }
  __real_vlt_log_at(category, level, "%s", text.data());
}

vlt_log_level_t __wrap_vlt_get_log_level(const char* category) {
  const vlt_log_level_t level = __real_vlt_get_log_level(category);
  return has(Fault::traces_too_early) && level == 5 ? 6 : level;
}

char* __wrap_vlt_copy_string(const char* text) {
  char* const copy = __real_vlt_copy_string(text);
  if (has(Fault::leaks_when_exhausted) && copy == nullptr) {
    static_cast<void>(__real_vlt_copy_string("leak"));
  }
  return copy;
}

vlt_underlying_map_table_t* __wrap_vlt_allocate_map(std::int64_t capacity) {
  vlt_underlying_map_table_t* const table = __real_vlt_allocate_map(capacity);
  if (has(Fault::aborts_when_exhausted) && table == nullptr) std::abort();
  return table;
}
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

// ---- Values --------------------------------------------------------------------------------------

// The value under a text key, or null. Tables of messages are small: no need for hashes.
vlt_underlying_data_t* find(vlt_underlying_map_table_t* table, const char* key) {
  if (table == nullptr) return nullptr;
  auto* const slots = reinterpret_cast<vlt_underlying_map_table_entry_t*>(table + 1);
  for (std::int64_t i = 0; i < table->capacity; ++i) {
    if (slots[i].key.tag != VLT_TAG_STRING) continue;
    if (std::strcmp(slots[i].key.value.string, key) == 0) return &slots[i].value;
  }
  return nullptr;
}

vlt_underlying_data_t* findInPayload(const message_t& message, const char* key) {
  return message.payload.tag == VLT_TAG_MAP ? find(message.payload.value.map, key) : nullptr;
}

bool isText(const vlt_underlying_data_t* value) {
  return value != nullptr && value->tag == VLT_TAG_STRING && value->value.string != nullptr;
}

void replaceText(vlt_underlying_data_t& value, const char* text) {
  vlt_free_string(const_cast<char*>(value.value.string));
  value.value.string = vlt_copy_string(text);
}

// ---- The front -----------------------------------------------------------------------------------

struct link_t {
  void* handle = nullptr;
  vlt_batch_function function = nullptr;
};

struct front_t {
  void* real = nullptr;
  link_t host;
  link_t transport;
  const vlt_underlying_data_t* configuration = nullptr;
};

// Of the batch that this thread is sending.
thread_local message_t* kept_end = nullptr;
thread_local message_t* batch_end = nullptr;

front_t* latest = nullptr;

// Not optimised away, although nobody reads it.
[[gnu::used]] const char* const kept_after_unload =
    has(Fault::keeps_block_after_unload) ? vlt_copy_string("kept") : nullptr;

// Two codecs of two threads write it at once.
std::array<char, 64> static_buffer;

void raceThrough(message_t* start, message_t* end) {
  for (message_t* m = start; m != end; ++m) {
    vlt_underlying_data_t* const id = findInPayload(*m, "id");
    if (!isText(id) || std::strlen(id->value.string) >= static_buffer.size()) continue;
    std::strcpy(static_buffer.data(), id->value.string);
    usleep(20);
    replaceText(*id, static_buffer.data());
  }
}

// Faults of single messages that go to the host.
void spoil(message_t& message) {
  if (has(Fault::wrong_channel)) {
    vlt_underlying_data_t* const channel = find(message.metadata, "vlt.channel");
    if (isText(channel)) const_cast<char*>(channel->value.string)[0] = 'O';
  }
  if (has(Fault::loses_milliseconds)) {
    vlt_underlying_data_t* const time = findInPayload(message, "creationTime");
    if (time != nullptr && time->tag == VLT_TAG_DOUBLE) {
      time->value.real = std::floor(time->value.real);
    }
  }
  if (has(Fault::changes_passing) && message.payload.tag == VLT_TAG_INTEGER) {
    ++message.payload.value.integer;
  }
  if (has(Fault::copies_containers) && message.payload.tag == VLT_TAG_MAP) {
    const vlt_underlying_data_t copy = vlt_copy_data(&message.payload);
    if (copy.tag == VLT_TAG_MAP) vlt_free_map(std::exchange(message.payload, copy).value.map);
  }
}

// Faults of whole batches that go to the host.
void spoil(message_t* start, message_t* end) {
  if (has(Fault::leaks_in_batch)) static_cast<void>(vlt_copy_string("leak"));
  if (has(Fault::leaks_heap) && std::malloc(64) == nullptr) std::abort();
  if (has(Fault::frees_twice)) {
    char* const text = vlt_copy_string("twice");
    vlt_free_string(text);
    vlt_free_string(text);
  }
  if (has(Fault::shares_block) && end - start >= 2) {
    vlt_underlying_data_t* const first = findInPayload(start[0], "id");
    vlt_underlying_data_t* const second = findInPayload(start[1], "id");
    if (isText(first) && isText(second)) {
      vlt_free_string(const_cast<char*>(second->value.string));
      second->value.string = first->value.string;
    }
  }
  if (has(Fault::depends_on_batch) && end - start > 5) {
    vlt_underlying_data_t* const id = findInPayload(start[5], "id");
    if (isText(id)) const_cast<char*>(id->value.string)[0] = 'x';
  }
  if (has(Fault::swaps_order) && end - start >= 2) std::swap(start[0], start[1]);
  if (has(Fault::asks_level_in_batch)) static_cast<void>(vlt_get_log_level("any"));
  if (has(Fault::sets_status_in_batch)) vlt_set_user_status_map(nullptr, nullptr);
  if (has(Fault::prints_in_batch)) static_cast<void>(!write(STDERR_FILENO, "batch\n", 6));
  if (has(Fault::races_in_static_buffer)) raceThrough(start, end);
  for (message_t* m = start; m != end; ++m) spoil(*m);
}

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
  const int result = vlt_plugin_sendBatchTowardsHost_RealCodec(real, start, end);
  if (has(Fault::empties_dropped)) emptyDropped();
  return result;
}

// A codec for a configuration without its tenant's name.
void* createWithoutTenant(const char* name, const char* chain,
                          const vlt_underlying_data_t& settings, void* handle1, void* handle2) {
  vlt_underlying_data_t copy = vlt_copy_data(&settings);
  if (copy.tag != VLT_TAG_MAP) return nullptr;
  vlt_underlying_data_t* const tenant = find(copy.value.map, "tenantId");
  if (isText(tenant)) replaceText(*tenant, "");
  void* const made = vlt_create_plugin_with_params_RealCodec(name, chain, &copy, handle1, handle2);
  vlt_free_map(copy.value.map);
  return made;
}

void* createReal(const char* name, const char* chain, const vlt_underlying_data_t* settings,
                 void* handle1, void* handle2) {
  const bool is_map = settings != nullptr && settings->tag == VLT_TAG_MAP;
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
      vlt_create_plugin_with_params_RealCodec(name, chain, settings, handle1, handle2);
  if (has(Fault::writes_configuration) && is_map && settings->value.map != nullptr) {
    ++settings->value.map->host;
  }
  if (has(Fault::leaks_on_refusal) && made == nullptr) {
    static_cast<void>(vlt_copy_string("leak"));
  }
  return made;
}

} // namespace

// ---- The twelve entry points, and one more ---------------------------------------------------------

#define EXPORT extern "C" __attribute__((visibility("default")))
#define FORWARD(operation, plugin) \
  ((plugin) == nullptr ? 1         \
                       : vlt_plugin_##operation##_RealCodec(static_cast<front_t*>(plugin)->real))

// NOLINTBEGIN(bugprone-reserved-identifier): the host looks these names up

// The version script of one build exports it, those of the others hide it.
EXPORT void vlt_plugin_extra_OstroviaNotifications2Codec() {}

EXPORT std::uint64_t vlt_plugin_api_version_OstroviaNotifications2Codec() {
  return has(Fault::wrong_interface_version) ? 3 : vlt_plugin_api_version_RealCodec();
}

EXPORT const char* vlt_plugin_product_version_OstroviaNotifications2Codec() {
  if (has(Fault::wrong_product_version)) return "10.15.4.2";
  if (has(Fault::moves_product_version)) {
    static std::array<std::array<char, 10>, 2> copies{};
    static std::size_t turn = 0;
    turn = 1 - turn;
    return std::strcpy(copies[turn].data(), vlt_plugin_product_version_RealCodec());
  }
  return vlt_plugin_product_version_RealCodec();
}

EXPORT void _vlt_plugin_checkIsCodec_OstroviaNotifications2Codec() {}

EXPORT void* vlt_create_plugin_with_params_OstroviaNotifications2Codec(
    const char* name, const char* chain, const vlt_underlying_data_t* configuration, void* handle1,
    void* handle2) {
  void* const real = createReal(name, chain, configuration, handle1, handle2);
  if (real == nullptr) return nullptr;
  auto* const front = new front_t;
  front->real = real;
  front->configuration = configuration;
  latest = front;
  return front;
}

EXPORT int vlt_destroy_plugin_OstroviaNotifications2Codec(void* plugin) {
  if (plugin == nullptr) return 0;
  auto* const front = static_cast<front_t*>(plugin);
  if (latest == front) latest = nullptr;
  const int result = vlt_destroy_plugin_RealCodec(front->real);
  delete front;
  return result;
}

EXPORT int vlt_plugin_start_OstroviaNotifications2Codec(void* plugin) {
  if (has(Fault::crashes_on_null)) static_cast<void>(*static_cast<volatile char*>(plugin));
  while (has(Fault::hangs_in_start)) sched_yield();
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
  if (next == nullptr) {
    if (has(Fault::accepts_null_function)) return 0;
    return vlt_plugin_setNextTowardsHost_RealCodec(front->real, handle, nullptr);
  }
  if (has(Fault::keeps_first_link) && front->host.function != nullptr) return 0;
  front->host = {handle, next};
  return vlt_plugin_setNextTowardsHost_RealCodec(front->real, front, towardsHost);
}

EXPORT int vlt_plugin_setNextTowardsTransport_OstroviaNotifications2Codec(void* plugin,
                                                                          void* handle,
                                                                          vlt_batch_function next) {
  if (plugin == nullptr) return 1;
  auto* const front = static_cast<front_t*>(plugin);
  if (next == nullptr) {
    return vlt_plugin_setNextTowardsTransport_RealCodec(front->real, handle, nullptr);
  }
  front->transport = {handle, next};
  return vlt_plugin_setNextTowardsTransport_RealCodec(front->real, front, towardsTransport);
}

EXPORT int vlt_plugin_sendBatchTowardsHost_OstroviaNotifications2Codec(void* plugin,
                                                                       message_t* start,
                                                                       message_t* end) {
  if (plugin == nullptr) return 1;
  auto& front = *static_cast<front_t*>(plugin);
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
  return vlt_plugin_sendBatchTowardsTransport_RealCodec(front.real, start, end);
}
// NOLINTEND(bugprone-reserved-identifier)
