/* The functions of the development host library beyond the host's interface:
 *
 *   blocks     counts of the library's live blocks
 *   calls      counts for each host function
 *   failures   the n-th allocation refused
 *   hashing    another string hash, for tests
 *   logging    levels, and the sinks of lines and user status
 *   makers     lists, buffers, custom objects: the kinds of value that only a host makes
 *
 * The host functions keep the contracts of the host headers, and some more. A null source, string
 * or category reads as an empty one. A negative size counts as exhausted. Copying, freeing and
 * rendering accept values with unknown tags, null blocks or null strings.
 *
 * Conventions: no function throws, and a function handed in must not throw either. Several threads
 * may call all of them at once. [any time] means from load to the end of the process: the
 * library is never unloaded. The header is plain C11 and C++. */
#ifndef VLT_STANDIN_STANDIN_H
#define VLT_STANDIN_STANDIN_H

#include "host/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Blocks ---------------------------------------------------------------------------------- */

typedef enum standin_block {
  STANDIN_BLOCK_MAP,
  STANDIN_BLOCK_STRING,
  STANDIN_BLOCK_LIST,
  STANDIN_BLOCK_BUFFER,
  STANDIN_BLOCK_CUSTOM,
  STANDIN_BLOCK_KINDS /* how many there are */
} standin_block_t;

/* [any time] Live blocks of one kind, of all threads; 0 for an unknown kind. Exact once the counted
 * calls have returned and the reader has synchronised with their threads (joined them, say); while
 * they run, a snapshot. */
int64_t standin_live_blocks(standin_block_t kind);

/* [any time] The same over all kinds. */
int64_t standin_live_blocks_total(void);

/* ---- Calls ----------------------------------------------------------------------------------- */

typedef enum standin_function {
  STANDIN_ALLOCATE_MAP,
  STANDIN_REALLOCATE_MAP,
  STANDIN_FREE_MAP,
  STANDIN_COPY_DATA,
  STANDIN_COPY_STRING,
  STANDIN_FREE_STRING,
  STANDIN_FREE_VECTOR,
  STANDIN_FREE_BUFFER,
  STANDIN_FREE_CUSTOM,
  STANDIN_DATA_TO_STRING,
  STANDIN_HASH_STRING,
  STANDIN_GET_LOG_LEVEL,
  STANDIN_LOG_AT,
  STANDIN_SET_USER_STATUS_MAP,
  STANDIN_FUNCTIONS /* how many there are */
} standin_function_t;

/* [any time] Calls of one host function from outside the library since the last reset, on all
 * threads; 0 for an unknown function. Exact under the same condition as standin_live_blocks. */
int64_t standin_calls(standin_function_t function);

/* [any time] The same over all host functions. */
int64_t standin_calls_total(void);

/* [any time] Starts all call counts again at 0. Live blocks are not affected. */
void standin_reset_calls(void);

/* ---- Failures -------------------------------------------------------------------------------- */

/* An allocation is every request for memory on behalf of a value. That includes each block, in
 * every function that makes blocks. It includes the working memory of vlt_data_to_string, whose
 * string grows by doubling. Memory for the library itself (levels, log lines) does not count. */

/* [any time] Refuses the n-th allocation from now (1: the next one) of all threads; later ones
 * succeed. 0 switches refusing off. Replaces an earlier request. */
void standin_fail_allocation(uint64_t n);

/* [any time] As above, but refuses every allocation from the n-th on until switched off. */
void standin_fail_allocations_from(uint64_t n);

/* [any time] Allocations refused since the last request with an n above 0. Switching off keeps the
 * count for a later reader; 0 tells a loop over n that n was past the last one. */
uint64_t standin_failed_allocations(void);

/* ---- Hashing --------------------------------------------------------------------------------- */

/* `text` is never null. Must depend on the bytes and the seed only. */
typedef uint64_t (*standin_string_hash_t)(const char* text, uint64_t seed);

/* [while no table with string keys exists] Makes vlt_hash_string answer with `hash`, in the whole
 * process; null restores the library's own. Tables filled under another hash are no longer
 * searchable. */
void standin_set_string_hash(standin_string_hash_t hash);

/* ---- Logging --------------------------------------------------------------------------------- */

/* [any time] The level that vlt_get_log_level gives for `category` (not null, copied) from now on.
 * False: exhausted, nothing changed. */
bool standin_set_log_level(const char* category, vlt_log_level_t level);

/* [any time] The level of all categories that were not set. Initially 3: failures and dropped
 * messages, no trace. */
void standin_set_default_log_level(vlt_log_level_t level);

/* Takes one line, without a line end; the strings are valid during the call only. May run on
 * several threads at once, and may still run after a call that sets another sink. */
typedef void (*standin_log_sink_t)(void* context, const char* category, vlt_log_level_t level,
                                   const char* text);

/* [any time] Sends the lines of vlt_log_at to `sink` with `context` (not owned). Null restores the
 * default, which writes each line to standard error in one write. The sink gets lines of all
 * levels. The caller has to filter by the level that it has read; a second filter here would hide
 * a missing one. */
void standin_set_log_sink(standin_log_sink_t sink, void* context);

/* [any time] Forgets all levels, restores the default level and the default log sink. */
void standin_reset_logging(void);

/* Takes the user status of `handle`; `table` (may be null: no entries) is valid during the call
 * only. Concurrency as for a log sink. */
typedef void (*standin_status_sink_t)(void* context, void* handle,
                                      const vlt_underlying_map_table_t* table);

/* [any time] Sends user status to `sink` with `context` (not owned). Null restores the default. It
 * writes the line "status: " and the rendered table to standard error in one write. */
void standin_set_status_sink(standin_status_sink_t sink, void* context);

/* ---- Makers ---------------------------------------------------------------------------------- */

/* [any time] A list block with `count` empty elements and room for `capacity`; owned by the caller,
 * freed by vlt_free_vector. Null: exhausted, or not 0 <= count <= capacity. */
vlt_underlying_vector_t* standin_make_list(int64_t count, int64_t capacity);

/* [any time] A buffer block of `length` zero bytes; owned by the caller, freed by vlt_free_buffer.
 * Null: exhausted. */
vlt_underlying_buffer_t* standin_make_buffer(uint32_t length);

/* [any time] A custom object that holds nothing but `label`, which its copies share; owned by the
 * caller, freed by vlt_free_custom. A null object: exhausted. */
vlt_underlying_custom_t standin_make_custom(uint64_t label);

/* [any time] The label of an object from standin_make_custom or a copy of one; 0 for a null
 * object. */
uint64_t standin_custom_label(vlt_underlying_custom_t custom);

#ifdef __cplusplus
}
#endif
#endif
