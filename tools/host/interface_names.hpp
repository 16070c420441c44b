// The names by which host and plug-in find each other's functions, for readers of files: twelve
// that a plug-in exports, fourteen that it may ask of the host.
#ifndef VLT_TOOLS_HOST_INTERFACE_NAMES_HPP
#define VLT_TOOLS_HOST_INTERFACE_NAMES_HPP

#include <string>
#include <vector>

namespace com::velanto::connectivity::tools {

using names_t = std::vector<std::string>;

// Of the plug-in class with this name, in the order of their letters.
[[nodiscard]] inline names_t entryPoints(const std::string& class_name) {
  names_t names = {"_vlt_plugin_checkIsCodec_",
                   "vlt_create_plugin_with_params_",
                   "vlt_destroy_plugin_",
                   "vlt_plugin_api_version_",
                   "vlt_plugin_hostReady_",
                   "vlt_plugin_product_version_",
                   "vlt_plugin_sendBatchTowardsHost_",
                   "vlt_plugin_sendBatchTowardsTransport_",
                   "vlt_plugin_setNextTowardsHost_",
                   "vlt_plugin_setNextTowardsTransport_",
                   "vlt_plugin_shutdown_",
                   "vlt_plugin_start_"};
  for (std::string& name : names) name += class_name;
  return names;
}

inline const names_t HOST_FUNCTIONS = {
    "vlt_allocate_map",   "vlt_copy_data",          "vlt_copy_string", "vlt_data_to_string",
    "vlt_free_buffer",    "vlt_free_custom",        "vlt_free_map",    "vlt_free_string",
    "vlt_free_vector",    "vlt_get_log_level",      "vlt_hash_string", "vlt_log_at",
    "vlt_reallocate_map", "vlt_set_user_status_map"};

} // namespace com::velanto::connectivity::tools

#endif
