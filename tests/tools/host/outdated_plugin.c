/* A plug-in of an older interface version, known by the one function that all versions share. */
#include <stdint.h>

#if defined(__GNUC__)
__attribute__((visibility("default")))
#endif
uint64_t
vlt_plugin_api_version_OstroviaNotifications2Codec(void);

uint64_t vlt_plugin_api_version_OstroviaNotifications2Codec(void) { return 3; }
