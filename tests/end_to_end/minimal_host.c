/* The smallest host, in C11. It loads the codec, sends one notification and prints the event.
 * docs/host-interface.md quotes and explains the whole program. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host/storage.h"
#include "host/types.h"

typedef vlt_underlying_data_t value_t;
typedef vlt_underlying_map_table_t table_t;
typedef vlt_underlying_map_table_entry_t slot_t;
typedef vlt_underlying_message_t message_t;

static void* must(void* pointer, const char* what) {
  if (pointer != NULL) return pointer;
  fprintf(stderr, "minimal_host: %s\n", what);
  exit(EXIT_FAILURE);
}

static const uint64_t KEY_SEED = 0x243FCAF1;

static value_t text(const char* content) {
  value_t value = {{.string = must(vlt_copy_string(content), "no memory")}, VLT_TAG_STRING};
  return value;
}

static table_t* table_of(int64_t capacity) { return must(vlt_allocate_map(capacity), "no memory"); }

/* Adds an entry with a new key. The table must have a free slot. */
static void put(table_t* table, const char* key, value_t value) {
  slot_t* const slots = (slot_t*)(table + 1);
  const uint64_t hash = vlt_hash_string(key, KEY_SEED);
  uint64_t at = hash % (uint64_t)table->capacity;
  while (slots[at].key.tag != VLT_TAG_EMPTY) at = (at + 1) % (uint64_t)table->capacity;
  slots[at].hash = hash;
  slots[at].key = text(key);
  slots[at].value = value;
  ++table->live;
}

static message_t notification(void) {
  table_t* const source = table_of(8);
  put(source, "id", text("1001"));
  table_t* const payload = table_of(16);
  put(payload, "id", text("40101"));
  put(payload, "source", (value_t){{.map = source}, VLT_TAG_MAP});
  put(payload, "text", text("K1 released for the day"));
  put(payload, "time", text("2024-05-14T06:02:11.000+02:00"));
  put(payload, "type", text("site_CraneReleased"));
  table_t* const metadata = table_of(8);
  put(metadata, "pulsarPath", text("t4100/quay-north/events/40101"));
  return (message_t){{{.map = payload}, VLT_TAG_MAP}, metadata};
}

static void print_texts(const table_t* table) {
  const slot_t* const slots = (const slot_t*)(table + 1);
  for (int64_t i = 0; i < table->capacity; ++i) {
    if (slots[i].value.tag != VLT_TAG_STRING) continue;
    printf("%s: %s\n", slots[i].key.value.string, slots[i].value.value.string);
  }
}

static void print_events(void* handle, message_t* start, message_t* end) {
  (void)handle;
  for (const message_t* event = start; event != end; ++event) {
    print_texts(event->metadata);
    print_texts(event->payload.value.map);
  }
}

typedef struct functions_t {
  void* (*create)(const char*, const char*, const value_t*, void*, void*);
  int (*set_next_towards_host)(void*, void*, vlt_batch_function);
  int (*start)(void*);
  int (*host_ready)(void*);
  int (*send_towards_host)(void*, message_t*, message_t*);
  int (*shutdown)(void*);
  int (*destroy)(void*);
} functions_t;

/* POSIX lets a program store dlsym's result in a function pointer. */
static void find(void* library, const char* name, void* function) {
  *(void**)function = must(dlsym(library, name), name);
}

static functions_t functions_of(void* library) {
  functions_t f;
  find(library, "vlt_create_plugin_with_params_OstroviaNotifications2Codec", &f.create);
  find(library, "vlt_plugin_setNextTowardsHost_OstroviaNotifications2Codec",
       &f.set_next_towards_host);
  find(library, "vlt_plugin_start_OstroviaNotifications2Codec", &f.start);
  find(library, "vlt_plugin_hostReady_OstroviaNotifications2Codec", &f.host_ready);
  find(library, "vlt_plugin_sendBatchTowardsHost_OstroviaNotifications2Codec",
       &f.send_towards_host);
  find(library, "vlt_plugin_shutdown_OstroviaNotifications2Codec", &f.shutdown);
  find(library, "vlt_destroy_plugin_OstroviaNotifications2Codec", &f.destroy);
  return f;
}

int main(int argc, char** argv) {
  void* const library =
      must(argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL, "cannot load the plug-in");
  const functions_t f = functions_of(library);

  const value_t configuration = {{.map = table_of(8)}, VLT_TAG_MAP};
  put(configuration.value.map, "tenantId", text("t4100"));
  void* const codec = must(f.create("codec", "minimal_host", &configuration, NULL, NULL),
                           "the codec was refused; the log says why");
  vlt_free_map(configuration.value.map);
  int failures = f.set_next_towards_host(codec, NULL, print_events);
  failures += f.start(codec);
  failures += f.host_ready(codec);

  message_t message = notification();
  failures += f.send_towards_host(codec, &message, &message + 1);
  vlt_free_map(message.payload.value.map);
  vlt_free_map(message.metadata);

  failures += f.shutdown(codec);
  failures += f.destroy(codec);
  dlclose(library);
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
