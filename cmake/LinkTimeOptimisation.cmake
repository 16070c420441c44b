# The plug-in is optimised as a whole when it is linked, which lets the small functions of the value
# layer vanish into the conversions: a few percent of the time of a message. Release builds with
# g++ only: clang would need a linker plug-in that Debian packages apart.
#
# The objects are ordinary ones as well, which those of CMake's own property for this are not: what
# else links them (tests, tools) is linked as usual.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(VLT_LINK_TIME_OPTIMISATION ON)
else()
  set(VLT_LINK_TIME_OPTIMISATION OFF)
endif()

# Compiles a static library so that vlt_optimise_when_linked can inline across it.
function(vlt_make_inlinable library)
  if(VLT_LINK_TIME_OPTIMISATION)
    target_compile_options(${library} PRIVATE -flto -ffat-lto-objects)
  endif()
endfunction()

function(vlt_optimise_when_linked library)
  if(VLT_LINK_TIME_OPTIMISATION)
    target_compile_options(${library} PRIVATE -flto)
    target_link_options(${library} PRIVATE -flto=auto)
  endif()
endfunction()
