# Checks the library as the loader sees it: file name, soname, and exported names. A program linked
# here has to find everything under the same names in a real client library.
set(hostFunctions
    vlt_allocate_map vlt_copy_data vlt_copy_string vlt_data_to_string vlt_free_buffer
    vlt_free_custom vlt_free_map vlt_free_string vlt_free_vector vlt_get_log_level
    vlt_hash_string vlt_log_at vlt_reallocate_map vlt_set_user_status_map)

get_filename_component(fileName ${LIBRARY} NAME)
if(NOT fileName STREQUAL "libtvclient.so.10.15")
  message(FATAL_ERROR "the library's file is named ${fileName}")
endif()

execute_process(COMMAND ${READELF} -d ${LIBRARY} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "\\(SONAME\\)[^\n]*\\[libtvclient\\.so\\.10\\.15\\]")
  message(FATAL_ERROR "the library has another soname:\n${dynamic}")
endif()

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols
                        COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^ \n]+\n" exported "${symbols}")
list(TRANSFORM exported STRIP)
list(FILTER exported EXCLUDE REGEX "^standin_")
list(SORT exported)
if(NOT exported STREQUAL hostFunctions)
  message(FATAL_ERROR "exported beside standin_*:\n${exported}\nexpected:\n${hostFunctions}")
endif()

# The counters of a thread are at a fixed place: no call looks for them. A C++ library that is linked
# in looks for the exceptions of a thread.
execute_process(COMMAND ${READELF} -rW ${LIBRARY} OUTPUT_VARIABLE relocations
                        COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "R_X86_64_DTPMOD64" lookups "${relocations}")
list(LENGTH lookups count)
if(count GREATER 1)
  message(FATAL_ERROR "a call looks up the storage of a thread:\n${relocations}")
endif()
