// The names by which host and plug-in find each other's functions, for readers of files: twelve
// that a plug-in exports, fourteen that it may ask of the host.
#ifndef VLT_TOOLS_HOST_INTERFACE_NAMES_HPP
#define VLT_TOOLS_HOST_INTERFACE_NAMES_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::tools {

using names_t = std::vector<std::string>;

inline const names_t ENTRY_POINTS = {
    "_vlt_plugin_checkIsCodec_OstroviaNotifications2Codec",
    "vlt_create_plugin_with_params_OstroviaNotifications2Codec",
    "vlt_destroy_plugin_OstroviaNotifications2Codec",
    "vlt_plugin_api_version_OstroviaNotifications2Codec",
    "vlt_plugin_hostReady_OstroviaNotifications2Codec",
    "vlt_plugin_product_version_OstroviaNotifications2Codec",
    "vlt_plugin_sendBatchTowardsHost_OstroviaNotifications2Codec",
    "vlt_plugin_sendBatchTowardsTransport_OstroviaNotifications2Codec",
    "vlt_plugin_setNextTowardsHost_OstroviaNotifications2Codec",
    "vlt_plugin_setNextTowardsTransport_OstroviaNotifications2Codec",
    "vlt_plugin_shutdown_OstroviaNotifications2Codec",
    "vlt_plugin_start_OstroviaNotifications2Codec"};

inline const names_t HOST_FUNCTIONS = {
    "vlt_allocate_map",   "vlt_copy_data",          "vlt_copy_string", "vlt_data_to_string",
    "vlt_free_buffer",    "vlt_free_custom",        "vlt_free_map",    "vlt_free_string",
    "vlt_free_vector",    "vlt_get_log_level",      "vlt_hash_string", "vlt_log_at",
    "vlt_reallocate_map", "vlt_set_user_status_map"};

} // namespace com::velanto::connectivity::tools

#endif
