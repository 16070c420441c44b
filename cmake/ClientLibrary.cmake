# The target `tvclient` is the host's client library: the stand-in of this project, or, with
# -DVLT_CLIENT_LIBRARY=/path/libtvclient.so.10.15, a real one.
function(vlt_add_client_library)
  if(NOT VLT_CLIENT_LIBRARY)
    add_subdirectory(standin)
    add_library(tvclient ALIAS standin)
    return()
  endif()
  if(NOT EXISTS ${VLT_CLIENT_LIBRARY})
    message(FATAL_ERROR "VLT_CLIENT_LIBRARY: no such file: ${VLT_CLIENT_LIBRARY}")
  endif()
  add_library(tvclient SHARED IMPORTED GLOBAL)
  set_target_properties(tvclient PROPERTIES IMPORTED_LOCATION ${VLT_CLIENT_LIBRARY}
                                            IMPORTED_SONAME libtvclient.so.10.15)
  target_link_libraries(tvclient INTERFACE host)
endfunction()
