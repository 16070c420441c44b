/* The host's log. Levels are numbers, larger meaning more verbose; each category has its own.
 * Neither function throws; several threads may call both at once. */
#ifndef VLT_HOST_LOGGING_H
#define VLT_HOST_LOGGING_H

#include "host/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* [any time] The current level of `category` (not null, not kept). */
vlt_log_level_t vlt_get_log_level(const char* category);

/* [any time] Formats as printf does and files the result as one line under `category`; the host
 * adds the line end. It reads all strings before the call returns. Strings from messages are only
 * ever arguments, never the format. */
#if defined(__GNUC__)
__attribute__((format(printf, 3, 4)))
#endif
void vlt_log_at(const char *category, vlt_log_level_t level, const char *format, ...);

#ifdef __cplusplus
}
#endif
#endif
