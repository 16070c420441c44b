/* A host in plain C11. It knows only the headers of host/ and the names of the plug-in's twelve
 * functions.
 *
 *   (1) Load the library in the first argument and look up the functions.
 *   (2) Create a codec, set both links, start it.
 *   (3) Send a batch: a notification of an unknown kind, a good one, and a message without a path.
 *   (4) Compare the messages that reach the links, field by field.
 *   (5) Shut down, destroy, unload.
 *
 * Exit status 0, or 1 after a line on standard error that names the check that failed. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host/logging.h"
#include "host/status.h"
#include "host/storage.h"
#include "host/types.h"

#define CODEC "OstroviaNotifications2Codec"

/* Host and plug-in hash keys with this seed. */
static const uint64_t KEY_SEED = 0x243FCAF1;

static void require(bool holds, int line, const char* what) {
  if (holds) return;
  fprintf(stderr, "c_host.c:%d: %s\n", line, what);
  exit(EXIT_FAILURE);
}
#define REQUIRE(condition) require((condition), __LINE__, #condition)

/* ---- Values ---------------------------------------------------------------------------------- */

static vlt_underlying_data_t text(const char* content) {
  const vlt_underlying_data_t value = {{.string = vlt_copy_string(content)}, VLT_TAG_STRING};
  return value;
}

static vlt_underlying_data_t map(vlt_underlying_map_table_t* table) {
  const vlt_underlying_data_t value = {{.map = table}, VLT_TAG_MAP};
  return value;
}

static vlt_underlying_map_table_entry_t* slots_of(vlt_underlying_map_table_t* table) {
  return (vlt_underlying_map_table_entry_t*)(table + 1);
}

/* The slot of `key`, or the free slot for it. The tables here always have a free slot. */
static vlt_underlying_map_table_entry_t* slot_for(vlt_underlying_map_table_t* table,
                                                  const char* key) {
  const uint64_t capacity = (uint64_t)table->capacity;
  const uint64_t hash = vlt_hash_string(key, KEY_SEED);
  uint64_t at = hash % capacity;
  for (;; at = (at + 1) % capacity) {
    vlt_underlying_map_table_entry_t* const slot = slots_of(table) + at;
    if (slot->hash == 0 && slot->key.tag == VLT_TAG_EMPTY) return slot;
    if (slot->hash == hash && slot->key.tag == VLT_TAG_STRING &&
        strcmp(slot->key.value.string, key) == 0)
      return slot;
  }
}

static void put(vlt_underlying_map_table_t* table, const char* key, vlt_underlying_data_t value) {
  vlt_underlying_map_table_entry_t* const slot = slot_for(table, key);
  slot->hash = vlt_hash_string(key, KEY_SEED);
  slot->key = text(key);
  slot->value = value;
  ++table->live;
}

static bool is_text(vlt_underlying_map_table_t* table, const char* key, const char* content) {
  const vlt_underlying_data_t value = slot_for(table, key)->value;
  return value.tag == VLT_TAG_STRING && strcmp(value.value.string, content) == 0;
}

/* ---- Messages -------------------------------------------------------------------------------- */

static vlt_underlying_message_t event_notification(const char* path) {
  vlt_underlying_map_table_t* const source = vlt_allocate_map(8);
  put(source, "id", text("7"));
  vlt_underlying_map_table_t* const payload = vlt_allocate_map(16);
  put(payload, "id", text("4711"));
  put(payload, "source", map(source));
  put(payload, "text", text("t"));
  put(payload, "time", text("2023-04-05T06:07:08.000Z"));
  put(payload, "type", text("o6a_Test"));
  put(payload, "o6a_Extra", text("kept"));
  vlt_underlying_map_table_t* const metadata = vlt_allocate_map(8);
  if (path != NULL) put(metadata, "pulsarPath", text(path));
  const vlt_underlying_message_t message = {map(payload), metadata};
  return message;
}

static void free_message(vlt_underlying_message_t* message) {
  if (message->payload.tag == VLT_TAG_MAP) vlt_free_map(message->payload.value.map);
  vlt_free_map(message->metadata);
}

static void check_event(const vlt_underlying_message_t* event) {
  vlt_underlying_map_table_t* const fields = event->payload.value.map;
  REQUIRE(event->payload.tag == VLT_TAG_MAP);
  REQUIRE(fields->live == 8);
  REQUIRE(is_text(fields, "id", "4711"));
  REQUIRE(is_text(fields, "source", "7"));
  REQUIRE(is_text(fields, "text", "t"));
  REQUIRE(is_text(fields, "type", "o6a_Test"));
  REQUIRE(is_text(fields, "o6a_Extra", "kept"));
  REQUIRE(is_text(fields, "tenantId", "t1"));
  REQUIRE(slot_for(fields, "firstOccurrenceTime")->value.tag == VLT_TAG_DOUBLE);
  REQUIRE(slot_for(fields, "firstOccurrenceTime")->value.value.real == 1680674828.0);
  REQUIRE(slot_for(fields, "measurements")->value.tag == VLT_TAG_MAP);
  REQUIRE(event->metadata->live == 2);
  REQUIRE(is_text(event->metadata, "vlt.type", "com.tivra.ostrovia.Event"));
  REQUIRE(is_text(event->metadata, "vlt.channel", "ostrovia.devices"));
}

/* ---- The links ------------------------------------------------------------------------------- */

typedef struct link_t {
  int calls;
  int64_t messages;
} link_t;

static void count(link_t* link, const vlt_underlying_message_t* start,
                  const vlt_underlying_message_t* end) {
  ++link->calls;
  link->messages += end - start;
}

static void towards_host(void* link, vlt_underlying_message_t* start,
                         vlt_underlying_message_t* end) {
  count(link, start, end);
  REQUIRE(end - start == 2);
  check_event(start);
  REQUIRE(start[1].payload.value.map->live == 6);
  REQUIRE(start[1].metadata->live == 0);
}

static void towards_transport(void* link, vlt_underlying_message_t* start,
                              vlt_underlying_message_t* end) {
  count(link, start, end);
}

/* ---- The plug-in ----------------------------------------------------------------------------- */

typedef struct plugin_t {
  uint64_t (*api_version)(void);
  const char* (*product_version)(void);
  void (*check_is_codec)(void);
  void* (*create)(const char*, const char*, const vlt_underlying_data_t*, void*, void*);
  int (*destroy)(void*);
  int (*start)(void*);
  int (*host_ready)(void*);
  int (*shutdown)(void*);
  int (*set_next_towards_host)(void*, void*, vlt_batch_function);
  int (*set_next_towards_transport)(void*, void*, vlt_batch_function);
  int (*send_towards_host)(void*, vlt_underlying_message_t*, vlt_underlying_message_t*);
  int (*send_towards_transport)(void*, vlt_underlying_message_t*, vlt_underlying_message_t*);
} plugin_t;

/* `function` is the address of a function pointer. POSIX lets a program store dlsym's result there. */
static void look_up(void* library, const char* name, void* function) {
  void* const address = dlsym(library, name);
  require(address != NULL, __LINE__, name);
  *(void**)function = address;
}

static plugin_t load(void* library) {
  plugin_t p;
  look_up(library, "vlt_plugin_api_version_" CODEC, &p.api_version);
  look_up(library, "vlt_plugin_product_version_" CODEC, &p.product_version);
  look_up(library, "_vlt_plugin_checkIsCodec_" CODEC, &p.check_is_codec);
  look_up(library, "vlt_create_plugin_with_params_" CODEC, &p.create);
  look_up(library, "vlt_destroy_plugin_" CODEC, &p.destroy);
  look_up(library, "vlt_plugin_start_" CODEC, &p.start);
  look_up(library, "vlt_plugin_hostReady_" CODEC, &p.host_ready);
  look_up(library, "vlt_plugin_shutdown_" CODEC, &p.shutdown);
  look_up(library, "vlt_plugin_setNextTowardsHost_" CODEC, &p.set_next_towards_host);
  look_up(library, "vlt_plugin_setNextTowardsTransport_" CODEC, &p.set_next_towards_transport);
  look_up(library, "vlt_plugin_sendBatchTowardsHost_" CODEC, &p.send_towards_host);
  look_up(library, "vlt_plugin_sendBatchTowardsTransport_" CODEC, &p.send_towards_transport);
  return p;
}

static void* create(const plugin_t* p) {
  vlt_underlying_map_table_t* const settings = vlt_allocate_map(8);
  put(settings, "tenantId", text("t1"));
  const vlt_underlying_data_t configuration = map(settings);
  void* const codec = p->create("codec", "c_host", &configuration, NULL, NULL);
  vlt_free_map(settings);
  return codec;
}

/* The plug-in drops the notification of an unknown kind and leaves its id alone. */
static void send_batches(const plugin_t* p, void* codec) {
  vlt_underlying_message_t batch[3] = {event_notification("tenant/subscription/inventory/1"),
                                       event_notification("tenant/subscription/events/1"),
                                       event_notification(NULL)};
  REQUIRE(p->send_towards_host(codec, batch, batch + 3) == 0);
  REQUIRE(batch[2].payload.value.map->live == 1);
  REQUIRE(is_text(batch[2].payload.value.map, "id", "4711"));
  REQUIRE(batch[2].metadata == NULL);
  REQUIRE(p->send_towards_transport(codec, batch, batch + 3) == 0);
  for (int i = 0; i < 3; ++i) free_message(batch + i);
}

int main(int argc, char** argv) {
  REQUIRE(argc == 2);
  void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  require(library != NULL, __LINE__, library == NULL ? dlerror() : "");
  const plugin_t p = load(library);
  REQUIRE(p.api_version() == 4);
  REQUIRE(strcmp(p.product_version(), "10.15.4.1") == 0);
  p.check_is_codec();

  link_t host = {0, 0};
  link_t transport = {0, 0};
  void* const codec = create(&p);
  REQUIRE(codec != NULL);
  REQUIRE(p.set_next_towards_host(codec, &host, towards_host) == 0);
  REQUIRE(p.set_next_towards_transport(codec, &transport, towards_transport) == 0);
  REQUIRE(p.start(codec) == 0);
  REQUIRE(p.host_ready(codec) == 0);
  send_batches(&p, codec);
  REQUIRE(p.shutdown(codec) == 0);
  REQUIRE(p.destroy(codec) == 0);
  REQUIRE(host.calls == 1 && host.messages == 2);
  REQUIRE(transport.calls == 1 && transport.messages == 3);
  REQUIRE(dlclose(library) == 0);
  return EXIT_SUCCESS;
}
