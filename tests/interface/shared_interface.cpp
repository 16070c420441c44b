// Describes to libabigail's abidw all that the host and a plug-in share, as one variable whose type
// leads to each function and layout:
//
//   the host's functions       by their declarations in host/
//   the twelve entry points    by the definitions that VLT_EXPORT_CODEC makes
//   other types of host/       types to which no function leads
//
// Only this library has debugging information. It is read, never loaded.
#include <utility>

#include "codec/ostrovia_notifications2_codec.hpp"
#include "host/logging.h"
#include "host/status.h"
#include "host/storage.h"
#include "plugin/entry_points.hpp"

using com::velanto::connectivity::Message;
using com::velanto::connectivity::plugins::pulsar::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(OstroviaNotifications2Codec);

// A parameter as a host in C has it: Message has the layout of vlt_underlying_message_t.
template <class Parameter>
Parameter parameterInC(Parameter parameter);
vlt_underlying_message_t* parameterInC(Message* parameter);

template <class Result, class... Parameters>
auto inC(Result (*function)(Parameters...))
    -> Result (*)(decltype(parameterInC(std::declval<Parameters>()))...);

#define VLT_HOST_FUNCTION(name) decltype(&(::name)) name
#define VLT_ENTRY_POINT(name) decltype(inC(&(::vlt_##name##_OstroviaNotifications2Codec))) name

struct shared_interface_t {
  VLT_HOST_FUNCTION(vlt_allocate_map);
  VLT_HOST_FUNCTION(vlt_reallocate_map);
  VLT_HOST_FUNCTION(vlt_free_map);
  VLT_HOST_FUNCTION(vlt_free_string);
  VLT_HOST_FUNCTION(vlt_free_vector);
  VLT_HOST_FUNCTION(vlt_free_buffer);
  VLT_HOST_FUNCTION(vlt_free_custom);
  VLT_HOST_FUNCTION(vlt_copy_data);
  VLT_HOST_FUNCTION(vlt_copy_string);
  VLT_HOST_FUNCTION(vlt_data_to_string);
  VLT_HOST_FUNCTION(vlt_hash_string);
  VLT_HOST_FUNCTION(vlt_get_log_level);
  VLT_HOST_FUNCTION(vlt_log_at);
  VLT_HOST_FUNCTION(vlt_set_user_status_map);

  VLT_ENTRY_POINT(plugin_api_version);
  VLT_ENTRY_POINT(plugin_product_version);
  decltype(&::_vlt_plugin_checkIsCodec_OstroviaNotifications2Codec) plugin_checkIsCodec;
  VLT_ENTRY_POINT(create_plugin_with_params);
  VLT_ENTRY_POINT(destroy_plugin);
  VLT_ENTRY_POINT(plugin_start);
  VLT_ENTRY_POINT(plugin_hostReady);
  VLT_ENTRY_POINT(plugin_shutdown);
  VLT_ENTRY_POINT(plugin_setNextTowardsHost);
  VLT_ENTRY_POINT(plugin_setNextTowardsTransport);
  VLT_ENTRY_POINT(plugin_sendBatchTowardsHost);
  VLT_ENTRY_POINT(plugin_sendBatchTowardsTransport);

  vlt_tag tag;
  vlt_underlying_map_table_entry_t slot;
};

[[gnu::visibility("default")]] shared_interface_t shared_interface;
