/* The host's storage. It makes and frees every block that a value points to, so that either side
 * can free the other's blocks. The plug-in's own allocator makes none.
 *
 * Conventions: a block has one owner. Every vlt_free_ function accepts null and does nothing.
 * "Exhausted" means that memory ran out. No function throws; several threads may call all of them
 * at once on different values. [any time] means from load to unload of the plug-in.
 */
#ifndef VLT_HOST_STORAGE_H
#define VLT_HOST_STORAGE_H

#include "host/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* [any time] A table of `capacity` free slots, both counts 0; the caller owns it. Null: exhausted.
 */
vlt_underlying_map_table_t* vlt_allocate_map(int64_t capacity);

/* [any time] Moves the live entries of `table`, in slot order, into a table of `new_capacity` slots.
 * Places them by their stored hashes: starts at hash mod capacity, probes upwards, wraps. Leaves
 * out deleted slots. Returns the new table, the old pointer is dead. Null: exhausted, the old table
 * stays as it is. */
vlt_underlying_map_table_t* vlt_reallocate_map(vlt_underlying_map_table_t* table,
                                               int64_t new_capacity);

/* [any time] Each frees the block and everything that it owns. */
void vlt_free_map(vlt_underlying_map_table_t* table);
void vlt_free_string(char* text);
void vlt_free_vector(vlt_underlying_vector_t* list_block);
void vlt_free_buffer(vlt_underlying_buffer_t* buffer_block);
void vlt_free_custom(vlt_underlying_custom_t custom);

/* [any time] A deep copy, owned by the caller; `source` is unchanged. A borrowed string becomes an
 * owned one. A map copy keeps capacity, slot positions, hashes and both counts. An empty value for
 * a source that is not empty: exhausted. */
vlt_underlying_data_t vlt_copy_data(const vlt_underlying_data_t* source);

/* [any time] A NUL-terminated copy of `text` (not null), owned by the caller. Null: exhausted. */
char* vlt_copy_string(const char* text);

/* [any time] The display text of any value, as an owned string value (tag 5) that the caller frees.
 * Its pointer may be null. */
vlt_underlying_data_t vlt_data_to_string(const vlt_underlying_data_t* value);

/* [any time] Depends on the bytes of `text` (not null) and on `seed` only; the host chooses the
 * function. */
uint64_t vlt_hash_string(const char* text, uint64_t seed);

#ifdef __cplusplus
}
#endif
#endif
