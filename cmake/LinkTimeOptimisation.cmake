# Optimises the plug-in as a whole at its link, so that the small functions of the value layer
# vanish into the conversions: a few percent of the time of a message. Release builds with g++ only:
# clang would need a linker plug-in from a Debian package of its own.
#
# The objects are ordinary ones as well, unlike with CMake's own property for this, so nm and a
# debugger can read them. Other programs (tests, tools) link them as they are, which takes a tenth of
# the time.
#
# Inlines more than -O3 by itself, so that lookups and moves of entries become part of the
# conversions: a message takes a fifth fewer instructions of the plug-in's own. Calls of host
# functions go through their addresses, bound at the load of the library, without a jump in between.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(VLT_LINK_TIME_OPTIMISATION ON)
  # g++ heeds -fno-lto also before -flto, so the libraries that it optimises must not get it at all.
  add_link_options("$<$<NOT:$<BOOL:$<TARGET_PROPERTY:VLT_OPTIMISED>>>:-fno-lto>")
  set(VLT_INLINING -fno-plt --param=max-inline-insns-auto=100 --param=inline-unit-growth=300)
else()
  set(VLT_LINK_TIME_OPTIMISATION OFF)
endif()

# Compiles a static library so that vlt_optimise_when_linked can inline across it.
function(vlt_make_inlinable library)
  if(VLT_LINK_TIME_OPTIMISATION)
    target_compile_options(${library} PRIVATE -flto -ffat-lto-objects ${VLT_INLINING})
    set_target_properties(${library} PROPERTIES UNITY_BUILD OFF)
  endif()
endfunction()

function(vlt_optimise_when_linked library)
  if(VLT_LINK_TIME_OPTIMISATION)
    target_compile_options(${library} PRIVATE -flto ${VLT_INLINING})
    target_link_options(${library} PRIVATE -flto=auto ${VLT_INLINING}) # in parallel
    set_target_properties(${library} PROPERTIES VLT_OPTIMISED ON)
  endif()
endfunction()
