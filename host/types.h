/* The data that the host and the plug-in share in memory: one tagged value, the blocks it points
 * to, and the message. Both sides read and write these bytes in place, so every layout is fixed.
 *
 *   value      0 content (8, read by tag)   8 tag (4)   12 padding, never read          16 bytes
 *   list       0 count (8)   8 capacity (8)   16 elements (16 each)        16 + 16 × capacity
 *   buffer     0 length (4)   4 padding   8 bytes                                  8 + length
 *   table      0 host (8)   8 live (8)   16 capacity (8)   24 deleted (8)   32 slots (40 each)
 *   slot       0 hash (8)   8 key (16)   24 value (16)                                40 bytes
 *   message    0 payload (16)   16 metadata table (8)                                 24 bytes
 *
 * Only the host's functions make and free blocks (host/storage.h). The header is plain C11 and C++,
 * for hosts written in either. */
#ifndef VLT_HOST_TYPES_H
#define VLT_HOST_TYPES_H

#include <assert.h>   /* static_assert in C11 */
#include <stdalign.h> /* alignof in C11 */
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* The kind of a value. Fixed by the interface; never renumbered. A larger number is a kind that a
 * newer host may know: the plug-in moves it along unread, and it owns nothing here. */
enum vlt_tag {
  VLT_TAG_EMPTY = 0,
  VLT_TAG_BOOLEAN = 1,
  VLT_TAG_DOUBLE = 2,
  VLT_TAG_INTEGER = 3,
  VLT_TAG_DECIMAL = 4,
  VLT_TAG_STRING = 5,
  VLT_TAG_LIST = 6,
  VLT_TAG_MAP = 7,
  VLT_TAG_BUFFER = 8,
  VLT_TAG_CUSTOM = 9,
  VLT_TAG_BORROWED_STRING = 10 /* reads as a string; the value does not own the text */
};

/* An opaque 64-bit quantity: copied, compared and hashed as 8 raw bytes. */
typedef struct vlt_underlying_decimal_t {
  uint64_t bits;
} vlt_underlying_decimal_t;

/* An object of the host's own, opaque to the plug-in. */
typedef struct vlt_underlying_custom_t {
  void* object;
} vlt_underlying_custom_t;

struct vlt_underlying_vector_t;
struct vlt_underlying_map_table_t;
struct vlt_underlying_buffer_t;

typedef union vlt_underlying_content_t {
  bool boolean;
  double real;
  int64_t integer;
  vlt_underlying_decimal_t decimal;
  const char* string;                     /* NUL-terminated; tags 5 and 10 */
  struct vlt_underlying_vector_t* list;   /* null: an empty list */
  struct vlt_underlying_map_table_t* map; /* null: an empty map */
  struct vlt_underlying_buffer_t* buffer; /* null: a buffer of length 0 */
  vlt_underlying_custom_t custom;
} vlt_underlying_content_t;

typedef struct vlt_underlying_data_t {
  vlt_underlying_content_t value;
  uint32_t tag; /* enum vlt_tag */
} vlt_underlying_data_t;

/* Head of a list block; `capacity` elements follow it, the first `count` of them in use. */
typedef struct vlt_underlying_vector_t {
  int64_t count;
  int64_t capacity;
} vlt_underlying_vector_t;

/* Head of a buffer block; `length` bytes follow it. */
typedef struct vlt_underlying_buffer_t {
  uint32_t length;
  uint32_t padding;
} vlt_underlying_buffer_t;

typedef struct vlt_underlying_map_table_entry_t {
  uint64_t hash;
  vlt_underlying_data_t key;
  vlt_underlying_data_t value;
} vlt_underlying_map_table_entry_t;

/* Head of a map table; `capacity` slots follow it. value/map_t.hpp has the rules for filling it. */
typedef struct vlt_underlying_map_table_t {
  uint64_t host; /* the host's own; neither read nor written by the plug-in */
  int64_t live;
  int64_t capacity;
  int64_t deleted;
} vlt_underlying_map_table_t;

/* One message. `metadata` may be null: no entries. */
typedef struct vlt_underlying_message_t {
  vlt_underlying_data_t payload;
  struct vlt_underlying_map_table_t* metadata;
} vlt_underlying_message_t;

/* Handed to the plug-in as the next link of the chain: takes the messages from `start` up to but
 * not including `end`. They stay the property of the array's owner. */
typedef void (*vlt_batch_function)(void* handle, vlt_underlying_message_t* start,
                                   vlt_underlying_message_t* end);

/* Larger is more verbose. */
typedef int32_t vlt_log_level_t;

static_assert(sizeof(vlt_log_level_t) == 4, "levels cross the interface as 32-bit numbers");
static_assert(sizeof(vlt_underlying_decimal_t) == 8, "a decimal fills the content field");
static_assert(sizeof(vlt_underlying_custom_t) == 8, "a custom object is one pointer");
static_assert(sizeof(vlt_underlying_content_t) == 8, "every kind fits the 8-byte content field");
static_assert(sizeof(vlt_underlying_data_t) == 16, "arrays of values are shared in place");
static_assert(alignof(vlt_underlying_data_t) == 8, "values lie on 8-byte boundaries in blocks");
static_assert(offsetof(vlt_underlying_data_t, value) == 0, "the content comes first");
static_assert(offsetof(vlt_underlying_data_t, tag) == 8, "the tag follows the content");
static_assert(sizeof(vlt_underlying_vector_t) == 16, "elements start at the block's 16th byte");
static_assert(offsetof(vlt_underlying_vector_t, count) == 0, "a list block opens with its count");
static_assert(offsetof(vlt_underlying_vector_t, capacity) == 8, "the capacity follows the count");
static_assert(sizeof(vlt_underlying_buffer_t) == 8, "bytes start at the block's 8th byte");
static_assert(offsetof(vlt_underlying_buffer_t, length) == 0,
              "a buffer block opens with its length");
static_assert(sizeof(vlt_underlying_map_table_t) == 32, "slots start at the table's 32nd byte");
static_assert(offsetof(vlt_underlying_map_table_t, host) == 0,
              "a table opens with the host's word");
static_assert(offsetof(vlt_underlying_map_table_t, live) == 8,
              "the live count follows the host's word");
static_assert(offsetof(vlt_underlying_map_table_t, capacity) == 16,
              "the capacity follows the live count");
static_assert(offsetof(vlt_underlying_map_table_t, deleted) == 24,
              "deleted slots are counted last");
static_assert(sizeof(vlt_underlying_map_table_entry_t) == 40, "slots are 40 bytes apart");
static_assert(offsetof(vlt_underlying_map_table_entry_t, hash) == 0, "a slot opens with the hash");
static_assert(offsetof(vlt_underlying_map_table_entry_t, key) == 8, "the key follows the hash");
static_assert(offsetof(vlt_underlying_map_table_entry_t, value) == 24, "the value follows the key");
static_assert(sizeof(vlt_underlying_message_t) == 24, "messages lie 24 bytes apart in a batch");
static_assert(offsetof(vlt_underlying_message_t, payload) == 0, "a message opens with its payload");
static_assert(offsetof(vlt_underlying_message_t, metadata) == 16,
              "the metadata follows the payload");

#endif
