/* A host in plain C11 with a chain: recorder, codec, recorder. It plays the transport, too:
 *
 *   chain_host CODEC RECORDER FOLDER FILE…
 *
 *   (1) Load both libraries; make "before", the codec and "after"; link them in a row.
 *   (2) Read the messages of each FILE, a line of JSON each, and send them in batches.
 *   (3) Count the messages that reach the host; shut down, destroy, unload.
 *
 * The recorders write into FOLDER while the file FOLDER/on exists. Prints one line with the counts.
 * Exit status 0, or 1 after a line on standard error. */
#include <ctype.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host/storage.h"
#include "host/types.h"
#include "standin/standin.h"

typedef vlt_underlying_data_t value_t;
typedef vlt_underlying_map_table_t table_t;
typedef vlt_underlying_map_table_entry_t slot_t;
typedef vlt_underlying_message_t message_t;

#define BATCH 16
static const uint64_t KEY_SEED = 0x243FCAF1;

static void* must(void* pointer, const char* what) {
  if (pointer != NULL) return pointer;
  fprintf(stderr, "chain_host: %s\n", what);
  exit(EXIT_FAILURE);
}

/* ---- Values ---------------------------------------------------------------------------------- */

static value_t text(const char* content) {
  return (value_t){{.string = must(vlt_copy_string(content), "no memory")}, VLT_TAG_STRING};
}

static table_t* new_table(void) { return must(vlt_allocate_map(8), "no memory"); }

/* Adds an entry with a new key and returns the table, which may have grown. */
static table_t* put(table_t* table, const char* key, value_t value) {
  if ((table->live + 1) * 4 > table->capacity * 3) {
    table = must(vlt_reallocate_map(table, table->capacity * 2), "no memory");
  }
  slot_t* const slots = (slot_t*)(table + 1);
  const uint64_t hash = vlt_hash_string(key, KEY_SEED);
  uint64_t at = hash % (uint64_t)table->capacity;
  while (slots[at].key.tag != VLT_TAG_EMPTY) at = (at + 1) % (uint64_t)table->capacity;
  slots[at].hash = hash;
  slots[at].key = text(key);
  slots[at].value = value;
  ++table->live;
  return table;
}

/* The map under a key, which leaves `table` for the caller; an empty value when there is none. */
static value_t take(table_t* table, const char* key) {
  slot_t* const slots = (slot_t*)(table + 1);
  for (int64_t i = 0; i < table->capacity; ++i) {
    if (slots[i].key.tag != VLT_TAG_STRING || strcmp(slots[i].key.value.string, key) != 0) continue;
    const value_t taken = slots[i].value;
    slots[i].value = (value_t){{0}, VLT_TAG_EMPTY};
    return taken;
  }
  return (value_t){{0}, VLT_TAG_EMPTY};
}

/* ---- JSON, as far as the samples need it: valid, no deeper than the stack ---------------------- */

static void skip(const char** at) {
  while (isspace((unsigned char)**at)) ++*at;
}

/* Whether `c` comes next; then also skips it. */
static bool next_is(const char** at, char c) {
  skip(at);
  if (**at != c) return false;
  ++*at;
  return true;
}

static char* add_utf8(char* to, unsigned code) {
  if (code < 0x80) {
    *to++ = (char)code;
  } else if (code < 0x800) {
    *to++ = (char)(0xC0 | code >> 6);
    *to++ = (char)(0x80 | (code & 0x3F));
  } else {
    *to++ = (char)(0xE0 | code >> 12);
    *to++ = (char)(0x80 | (code >> 6 & 0x3F));
    *to++ = (char)(0x80 | (code & 0x3F));
  }
  return to;
}

/* The string after its opening quote; the caller frees it. */
static char* read_string(const char** at) {
  static const char* const ESCAPES = "b\bf\fn\nr\rt\t";
  char* const string = must(malloc(strlen(*at) + 1), "no memory");
  char* to = string;
  for (; **at != '"' && **at != '\0'; ++*at) {
    if (**at != '\\') {
      *to++ = **at;
    } else if (*++*at == 'u') {
      unsigned code = 0;
      must(sscanf(*at + 1, "%4x", &code) == 1 ? to : NULL, "no JSON");
      to = add_utf8(to, code);
      *at += 4;
    } else {
      const char* const escape = strchr(ESCAPES, **at);
      *to++ = (char)(escape == NULL ? **at : escape[1]);
    }
  }
  *to = '\0';
  must(**at == '"' ? to : NULL, "no JSON");
  ++*at;
  return string;
}

static value_t read_value(const char** at);

static value_t read_object(const char** at) {
  table_t* table = new_table();
  while (!next_is(at, '}')) {
    next_is(at, ',');
    must(next_is(at, '"') ? table : NULL, "no JSON");
    char* const key = read_string(at);
    must(next_is(at, ':') ? table : NULL, "no JSON");
    table = put(table, key, read_value(at));
    free(key);
  }
  return (value_t){{.map = table}, VLT_TAG_MAP};
}

static value_t read_array(const char** at) {
  enum { MOST = 1000 };
  value_t elements[MOST];
  int64_t count = 0;
  while (!next_is(at, ']')) {
    next_is(at, ',');
    must(count < MOST ? elements : NULL, "an array of over 1000 elements");
    elements[count++] = read_value(at);
  }
  vlt_underlying_vector_t* const list = must(standin_make_list(count, count), "no memory");
  memcpy(list + 1, elements, (size_t)count * sizeof *elements);
  return (value_t){{.list = list}, VLT_TAG_LIST};
}

static value_t read_number(const char** at) {
  const size_t length = strspn(*at, "+-.0123456789eE");
  must(length > 0 ? (void*)at : NULL, "no JSON");
  const bool is_real = strcspn(*at, ".eE") < length;
  const value_t whole = {{.integer = strtoll(*at, NULL, 10)}, VLT_TAG_INTEGER};
  const value_t real = {{.real = strtod(*at, NULL)}, VLT_TAG_DOUBLE};
  *at += length;
  return is_real ? real : whole;
}

static value_t read_value(const char** at) {
  if (next_is(at, '{')) return read_object(at);
  if (next_is(at, '[')) return read_array(at);
  if (next_is(at, '"')) {
    char* const string = read_string(at);
    const value_t value = text(string);
    free(string);
    return value;
  }
  if (next_is(at, 't')) return *at += 3, (value_t){{.boolean = true}, VLT_TAG_BOOLEAN};
  if (next_is(at, 'f')) return *at += 4, (value_t){{.boolean = false}, VLT_TAG_BOOLEAN};
  if (next_is(at, 'n')) return *at += 3, (value_t){{0}, VLT_TAG_EMPTY};
  return read_number(at);
}

/* {"metadata": {…}, "payload": …} */
static message_t read_message(const char* line) {
  const value_t whole = read_value(&line);
  table_t* const members = must(whole.tag == VLT_TAG_MAP ? whole.value.map : NULL, "no message");
  const value_t metadata = take(members, "metadata");
  const message_t message = {take(members, "payload"),
                             metadata.tag == VLT_TAG_MAP ? metadata.value.map : NULL};
  vlt_free_map(members);
  return message;
}

/* ---- The chain --------------------------------------------------------------------------------- */

typedef struct plugin_t {
  void* made;
  int (*set_next_towards_host)(void*, void*, vlt_batch_function);
  int (*start)(void*);
  int (*host_ready)(void*);
  int (*send_towards_host)(void*, message_t*, message_t*);
  int (*shutdown)(void*);
  int (*destroy)(void*);
} plugin_t;

/* POSIX lets a program store dlsym's result in a function pointer. */
static void find(void* library, const char* function, const char* class_name, void* found) {
  char name[128];
  snprintf(name, sizeof name, "%s_%s", function, class_name);
  *(void**)found = must(dlsym(library, name), name);
}

/* Makes a plug-in; frees its settings. */
static plugin_t make(void* library, const char* class_name, const char* name, table_t* settings) {
  void* (*create)(const char*, const char*, const value_t*, void*, void*) = NULL;
  plugin_t p;
  find(library, "vlt_create_plugin_with_params", class_name, &create);
  find(library, "vlt_plugin_setNextTowardsHost", class_name, &p.set_next_towards_host);
  find(library, "vlt_plugin_start", class_name, &p.start);
  find(library, "vlt_plugin_hostReady", class_name, &p.host_ready);
  find(library, "vlt_plugin_sendBatchTowardsHost", class_name, &p.send_towards_host);
  find(library, "vlt_plugin_shutdown", class_name, &p.shutdown);
  find(library, "vlt_destroy_plugin", class_name, &p.destroy);
  const value_t configuration = {{.map = settings}, VLT_TAG_MAP};
  p.made = must(create(name, "chain_host", &configuration, NULL, NULL), "a plug-in was refused");
  vlt_free_map(settings);
  return p;
}

static plugin_t make_recorder(void* library, const char* name, const char* folder) {
  char switch_file[4096];
  snprintf(switch_file, sizeof switch_file, "%s/on", folder);
  table_t* settings = put(new_table(), "recordingFolder", text(folder));
  settings = put(settings, "recordingName", text(name));
  settings = put(settings, "whileFileExists", text(switch_file));
  return make(library, "OstroviaNotificationsRecorder", name, settings);
}

static int failures = 0;
static long reached = 0;

static void into_plugin(void* handle, message_t* start, message_t* end) {
  const plugin_t* const next = handle;
  failures += next->send_towards_host(next->made, start, end);
}

static void into_host(void* handle, message_t* start, message_t* end) {
  (void)handle;
  reached += end - start;
}

static long send(const plugin_t* first, message_t* batch, long count) {
  failures += first->send_towards_host(first->made, batch, batch + count);
  for (long i = 0; i < count; ++i) {
    table_t* const carrier = put(new_table(), "payload", batch[i].payload);
    vlt_free_map(carrier); /* frees a payload of any kind */
    vlt_free_map(batch[i].metadata);
  }
  return count;
}

static long send_file(const plugin_t* first, const char* path) {
  static char line[1 << 20];
  message_t batch[BATCH];
  long count = 0;
  long sent = 0;
  FILE* const file = must(fopen(path, "r"), path);
  while (fgets(line, sizeof line, file) != NULL) {
    batch[count++] = read_message(line);
    if (count < BATCH) continue;
    sent += send(first, batch, count);
    count = 0;
  }
  fclose(file);
  return sent + send(first, batch, count);
}

int main(int argc, char** argv) {
  must(argc > 4 ? argv : NULL, "usage: chain_host CODEC RECORDER FOLDER FILE...");
  void* const codecs = must(dlopen(argv[1], RTLD_NOW | RTLD_LOCAL), "cannot load the codec");
  void* const recorders = must(dlopen(argv[2], RTLD_NOW | RTLD_LOCAL), "cannot load the recorder");

  plugin_t chain[3] = {make_recorder(recorders, "before", argv[3]),
                       make(codecs, "OstroviaNotifications2Codec", "codec",
                            put(new_table(), "tenantId", text("t4100"))),
                       make_recorder(recorders, "after", argv[3])};
  for (int i = 0; i < 3; ++i) {
    failures += chain[i].set_next_towards_host(chain[i].made, i < 2 ? chain + i + 1 : NULL,
                                               i < 2 ? into_plugin : into_host);
  }
  for (int i = 0; i < 3; ++i) failures += chain[i].start(chain[i].made);
  for (int i = 0; i < 3; ++i) failures += chain[i].host_ready(chain[i].made);

  long sent = 0;
  for (int i = 4; i < argc; ++i) sent += send_file(chain, argv[i]);

  for (int i = 0; i < 3; ++i) failures += chain[i].shutdown(chain[i].made);
  for (int i = 0; i < 3; ++i) failures += chain[i].destroy(chain[i].made);
  dlclose(recorders);
  dlclose(codecs);
  must(failures == 0 ? chain : NULL, "a plug-in failed");
  printf("sent %ld, reached the host %ld\n", sent, reached);
  return EXIT_SUCCESS;
}
