/* Proves that the headers are plain C11 and that C programs can use the library: makes, copies,
 * renders and frees a value with one block of each kind. */
#include "standin/standin.h"

#include <string.h>

#include "host/logging.h"
#include "host/status.h"
#include "host/storage.h"
#include "host/types.h"
#include "tests/standin/c_interface.h"

static vlt_underlying_data_t value_of(enum vlt_tag tag, void* block) {
  vlt_underlying_data_t value = {{0}, 0};
  value.value.custom.object = block;
  value.tag = (uint32_t)tag;
  return value;
}

static vlt_underlying_data_t one_of_each(void) {
  vlt_underlying_vector_t* list = standin_make_list(4, 4);
  vlt_underlying_data_t* elements = (vlt_underlying_data_t*)(void*)(list + 1);
  elements[0] = value_of(VLT_TAG_STRING, vlt_copy_string("a"));
  elements[1] = value_of(VLT_TAG_BUFFER, standin_make_buffer(2));
  elements[2] = value_of(VLT_TAG_CUSTOM, standin_make_custom(1).object);
  elements[3] = value_of(VLT_TAG_MAP, vlt_reallocate_map(vlt_allocate_map(1), 2));
  return value_of(VLT_TAG_LIST, list);
}

/* The string of a value that owns it, for its next owner. */
static char* owned_text(const vlt_underlying_data_t* value) {
  char* text = NULL;
  memcpy(&text, &value->value.string, sizeof text); /* NOLINT(*DeprecatedOrUnsafeBufferHandling) */
  return text;
}

int standin_c_round_trip(void) {
  const int64_t before = standin_live_blocks_total();
  const vlt_underlying_data_t value = one_of_each();
  const vlt_underlying_data_t copy = vlt_copy_data(&value);
  const vlt_underlying_data_t text = vlt_data_to_string(&copy);
  const bool same = strcmp(text.value.string, "[\"a\", buffer(2 bytes), custom, {}]") == 0;
  const int64_t during = standin_live_blocks_total();
  vlt_free_vector(value.value.list);
  vlt_free_vector(copy.value.list);
  vlt_free_string(owned_text(&text));
  if (!same) return __LINE__;
  if (during - before != 11) return __LINE__;
  if (standin_live_blocks_total() != before) return __LINE__;
  return 0;
}

static void keep_length(void* length, const char* category, vlt_log_level_t level,
                        const char* text) {
  (void)category;
  (void)level;
  *(size_t*)length = strlen(text);
}

int standin_c_logging(void) {
  size_t length = 0;
  standin_set_log_sink(keep_length, &length);
  vlt_log_at("c", 1, "%s%d", "abc", 10);
  standin_reset_logging();
  if (length != 5) return __LINE__;
  return vlt_get_log_level("c") == 3 ? 0 : __LINE__;
}
