// A recorder with the one fault in the name of its file (faults.hpp). It is a front of the real
// recorder, and spoils calls on their way:
//
//   host → entry points below → real recorder → links below → the host's links
//   real recorder → __wrap_write → the file
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "host/storage.h"
#include "tests/tools/check/faulty/faults.hpp"
#include "tests/tools/check/faulty/real_plugin.hpp"

using com::velanto::connectivity::test::Fault;
using com::velanto::connectivity::test::front_t;
using com::velanto::connectivity::test::has;
using com::velanto::connectivity::test::link_t;
using com::velanto::connectivity::test::setNext;
using message_t = vlt_underlying_message_t;

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
ssize_t __real_write(int, const void*, std::size_t);

ssize_t __wrap_write(int file, const void* bytes, std::size_t size) {
  if (has(Fault::loses_lines)) {
    static int writes = 0;
    if (++writes % 2 == 0) return static_cast<ssize_t>(size);
  }
  if (has(Fault::misspells_records)) {
    std::string text(static_cast<const char*>(bytes), size);
    for (std::size_t at = 0; (at = text.find("o6a_", at)) != std::string::npos; ++at) {
      text[at + 2] = 'b';
    }
    return __real_write(file, text.data(), size);
  }
  return __real_write(file, bytes, size);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
}

namespace {

struct recorder_front_t : front_t {
  unsigned batches = 0;
};

// ---- the configuration

vlt_underlying_map_table_entry_t* find(const vlt_underlying_data_t& settings, const char* key) {
  if (settings.tag != VLT_TAG_MAP || settings.value.map == nullptr) return nullptr;
  auto* const slots = reinterpret_cast<vlt_underlying_map_table_entry_t*>(settings.value.map + 1);
  for (std::int64_t i = 0; i < settings.value.map->capacity; ++i) {
    if (slots[i].key.tag != VLT_TAG_STRING) continue;
    if (std::strcmp(slots[i].key.value.string, key) == 0) return slots + i;
  }
  return nullptr;
}

void* create(const char* name, const char* chain, const vlt_underlying_data_t* configuration,
             void* handle1, void* handle2) {
  const char* const ignored = has(Fault::ignores_directions)    ? "directions"
                              : has(Fault::ignores_switch_file) ? "whileFileExists"
                              : has(Fault::ignores_omissions)   ? "omit"
                              : has(Fault::ignores_bound)       ? "maxFiles"
                              : has(Fault::ignores_name)        ? "recordingName"
                                                                : nullptr;
  if (ignored == nullptr || configuration == nullptr || find(*configuration, ignored) == nullptr) {
    return vlt_create_plugin_with_params_RealPlugin(name, chain, configuration, handle1, handle2);
  }
  const vlt_underlying_data_t settings = vlt_copy_data(configuration);
  // No lookup finds the entry under its key any more.
  const_cast<char*>(find(settings, ignored)->key.value.string)[0] = '?';
  void* const made =
      vlt_create_plugin_with_params_RealPlugin(name, chain, &settings, handle1, handle2);
  vlt_free_map(settings.value.map);
  return made;
}

// ---- batches

void passOn(const link_t& link, message_t* start, message_t* end) {
  if (has(Fault::copies_batch)) {
    std::vector<message_t> copy(start, end);
    link.function(link.handle, copy.data(), copy.data() + copy.size());
    return;
  }
  if (has(Fault::passes_one_by_one)) {
    for (; start != end; ++start) link.function(link.handle, start, start + 1);
    return;
  }
  if (has(Fault::skips_null_payloads) && start != end && start->payload.tag == VLT_TAG_EMPTY) {
    ++start;
  }
  if (has(Fault::clears_deleted_slots)) {
    for (message_t* m = start; m != end; ++m) {
      if (m->payload.tag != VLT_TAG_MAP || m->payload.value.map == nullptr) continue;
      if (m->payload.value.map->deleted == 0) continue;
      m->payload.value.map =
          vlt_reallocate_map(m->payload.value.map, m->payload.value.map->capacity);
    }
  }
  if (has(Fault::renders_messages)) {
    for (message_t* m = start; m != end; ++m) {
      vlt_free_string(const_cast<char*>(vlt_data_to_string(&m->payload).value.string));
    }
  }
  if (has(Fault::swallows_exceptions)) {
    try {
      link.function(link.handle, start, end);
    } catch (...) { // NOLINT(bugprone-empty-catch): the fault
    }
    return;
  }
  link.function(link.handle, start, end);
}

void towardsHost(void* handle, message_t* start, message_t* end) {
  passOn(static_cast<front_t*>(handle)->host, start, end);
}

void towardsTransport(void* handle, message_t* start, message_t* end) {
  const auto& front = *static_cast<front_t*>(handle);
  passOn(has(Fault::turns_back) ? front.host : front.transport, start, end);
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the host looks these up
EXPORT std::uint64_t vlt_plugin_api_version_OstroviaNotificationsRecorder() {
  return vlt_plugin_api_version_RealPlugin();
}

EXPORT const char* vlt_plugin_product_version_OstroviaNotificationsRecorder() {
  return vlt_plugin_product_version_RealPlugin();
}

EXPORT void _vlt_plugin_checkIsCodec_OstroviaNotificationsRecorder() {}

EXPORT void* vlt_create_plugin_with_params_OstroviaNotificationsRecorder(
    const char* name, const char* chain, const vlt_underlying_data_t* configuration, void* handle1,
    void* handle2) {
  void* const real = create(name, chain, configuration, handle1, handle2);
  if (real == nullptr) return nullptr;
  front_t* const front = new recorder_front_t;
  front->real = real;
  return front;
}

EXPORT int vlt_destroy_plugin_OstroviaNotificationsRecorder(void* plugin) {
  if (plugin == nullptr) return 0;
  auto* const front = static_cast<front_t*>(plugin);
  const int result = vlt_destroy_plugin_RealPlugin(front->real);
  delete static_cast<recorder_front_t*>(front);
  return result;
}

EXPORT int vlt_plugin_start_OstroviaNotificationsRecorder(void* plugin) {
  return FORWARD(start, plugin);
}

EXPORT int vlt_plugin_hostReady_OstroviaNotificationsRecorder(void* plugin) {
  return FORWARD(hostReady, plugin);
}

EXPORT int vlt_plugin_shutdown_OstroviaNotificationsRecorder(void* plugin) {
  return FORWARD(shutdown, plugin);
}

EXPORT int vlt_plugin_setNextTowardsHost_OstroviaNotificationsRecorder(void* plugin, void* handle,
                                                                       vlt_batch_function next) {
  if (plugin == nullptr) return 1;
  auto* const front = static_cast<front_t*>(plugin);
  return setNext(vlt_plugin_setNextTowardsHost_RealPlugin, *front, front->host, {handle, next},
                 towardsHost);
}

EXPORT int vlt_plugin_setNextTowardsTransport_OstroviaNotificationsRecorder(
    void* plugin, void* handle, vlt_batch_function next) {
  if (plugin == nullptr) return 1;
  auto* const front = static_cast<front_t*>(plugin);
  return setNext(vlt_plugin_setNextTowardsTransport_RealPlugin, *front, front->transport,
                 {handle, next}, towardsTransport);
}

EXPORT int vlt_plugin_sendBatchTowardsHost_OstroviaNotificationsRecorder(void* plugin,
                                                                         message_t* start,
                                                                         message_t* end) {
  if (plugin == nullptr) return 1;
  auto& front = static_cast<recorder_front_t&>(*static_cast<front_t*>(plugin));
  if (has(Fault::overlooks_batches) && ++front.batches % 10 == 0) {
    front.host.function(front.host.handle, start, end);
    return 0;
  }
  if (has(Fault::needs_host_memory)) {
    char* const copy = vlt_copy_string("a line");
    if (copy == nullptr) return 1;
    vlt_free_string(copy);
  }
  if (has(Fault::leaks_in_batches)) static_cast<void>(vlt_copy_string("leak"));
  return vlt_plugin_sendBatchTowardsHost_RealPlugin(front.real, start, end);
}

EXPORT int vlt_plugin_sendBatchTowardsTransport_OstroviaNotificationsRecorder(void* plugin,
                                                                              message_t* start,
                                                                              message_t* end) {
  if (plugin == nullptr) return 1;
  return vlt_plugin_sendBatchTowardsTransport_RealPlugin(static_cast<front_t*>(plugin)->real, start,
                                                         end);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
