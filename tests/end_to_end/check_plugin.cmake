# Checks the plug-in as the loader sees it: (1) soname, (2) needed libraries, (3) no run path,
# (4) exported names, (5) names that the host has to supply.
set(codec OstroviaNotifications2Codec)
set(entryPoints
    _vlt_plugin_checkIsCodec vlt_create_plugin_with_params vlt_destroy_plugin
    vlt_plugin_api_version vlt_plugin_hostReady vlt_plugin_product_version
    vlt_plugin_sendBatchTowardsHost vlt_plugin_sendBatchTowardsTransport
    vlt_plugin_setNextTowardsHost vlt_plugin_setNextTowardsTransport vlt_plugin_shutdown
    vlt_plugin_start)
list(TRANSFORM entryPoints APPEND _${codec})
list(SORT entryPoints)
set(hostFunctions
    vlt_allocate_map vlt_copy_data vlt_copy_string vlt_data_to_string vlt_free_buffer
    vlt_free_custom vlt_free_map vlt_free_string vlt_free_vector vlt_get_log_level
    vlt_hash_string vlt_log_at vlt_reallocate_map vlt_set_user_status_map)

# The names of the symbols that nm lists with `selection`, without versions, sorted.
function(names_of selection result)
  execute_process(COMMAND ${NM} -D ${selection} ${LIBRARY} OUTPUT_VARIABLE symbols
                          COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^ \n]+\n" names "${symbols}")
  list(TRANSFORM names STRIP)
  list(TRANSFORM names REPLACE "@.*" "")
  list(SORT names)
  set(${result} "${names}" PARENT_SCOPE)
endfunction()

execute_process(COMMAND ${READELF} -d ${LIBRARY} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "\\(SONAME\\)[^\n]*\\[lib${codec}\\.so\\]")
  message(FATAL_ERROR "the soname is not lib${codec}.so:\n${dynamic}")
endif()
if(NOT dynamic MATCHES "\\(NEEDED\\)[^\n]*\\[libtvclient\\.so\\.10\\.15\\]")
  message(FATAL_ERROR "libtvclient.so.10.15 is not named as needed:\n${dynamic}")
endif()
# The host has its client library loaded; a path of the build machine must not lead elsewhere.
if(dynamic MATCHES "\\((RPATH|RUNPATH)\\)")
  message(FATAL_ERROR "the library has a run path:\n${dynamic}")
endif()

names_of(--defined-only exported)
if(NOT exported STREQUAL entryPoints)
  message(FATAL_ERROR "exported:\n${exported}\nexpected:\n${entryPoints}")
endif()

names_of(--undefined-only undefined)
list(FILTER undefined INCLUDE REGEX "^_?(vlt_|standin_)")
if(NOT undefined)
  message(FATAL_ERROR "the library calls no host function; is the listing read rightly?")
endif()
list(REMOVE_ITEM undefined ${hostFunctions})
if(undefined)
  message(FATAL_ERROR "not among the host's functions:\n${undefined}")
endif()
