/* The host's user status: name-value pairs that a plug-in shows to the operators of the host. */
#ifndef VLT_HOST_STATUS_H
#define VLT_HOST_STATUS_H

#include "host/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* [after create, never within a batch] Reports the entries of `table` as the status of the reporter
 * `handle`. Reads the table before it returns; the caller still owns it. Never throws. */
void vlt_set_user_status_map(void* handle, const vlt_underlying_map_table_t* table);

#ifdef __cplusplus
}
#endif
#endif
