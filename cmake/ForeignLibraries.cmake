# The libraries of others that the tools link, as targets foreign::NAME.
#
# The release builds of g++ link them and the C++ library into a tool statically (VLT_STATIC_TOOLS).
# Such a tool needs the C library and the host's client library, and no others, so it runs where the
# plug-in runs. All other programs and builds have the shared ones: a distribution mends a fault of
# theirs in one place, and the tools of the Debian package are a second link of the same objects.
#
# Debian has simdjson for shared linking only, so ./dev unpacks the one source file of Debian's
# source package. Without it, the tools get the shared library; ./dev package always has it.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(VLT_STATIC_TOOLS ON)
  set(VLT_SIMDJSON_SOURCE ${PROJECT_SOURCE_DIR}/build/simdjson/simdjson.cpp)
else()
  set(VLT_STATIC_TOOLS OFF)
endif()

# vlt_add_foreign(NAME HEADER [STATIC]): STATIC is the target or file for a static link.
function(vlt_add_foreign name header)
  find_library(VLT_LIBRARY_${name} ${name} REQUIRED)
  find_path(VLT_HEADERS_${name} ${header} REQUIRED)
  mark_as_advanced(VLT_LIBRARY_${name} VLT_HEADERS_${name})
  set(library ${VLT_LIBRARY_${name}})
  if(ARGN AND VLT_STATIC_TOOLS)
    # The property of the program that is linked in the end.
    set(library $<IF:$<BOOL:$<TARGET_PROPERTY:VLT_STATIC>>,${ARGN},${library}>)
  endif()
  add_library(foreign::${name} INTERFACE IMPORTED GLOBAL)
  set_target_properties(
    foreign::${name} PROPERTIES INTERFACE_LINK_LIBRARIES "${library}"
                                INTERFACE_INCLUDE_DIRECTORIES ${VLT_HEADERS_${name}})
endfunction()

vlt_add_foreign(sodium sodium.h -l:libsodium.a)
vlt_add_foreign(yaml-cpp yaml-cpp/yaml.h -l:libyaml-cpp.a)
vlt_add_foreign(z zlib.h -l:libz.a)
vlt_add_foreign(zstd zstd.h -l:libzstd.a)

if(VLT_STATIC_TOOLS AND EXISTS ${VLT_SIMDJSON_SOURCE})
  add_library(simdjson_from_source STATIC ${VLT_SIMDJSON_SOURCE})
  target_compile_options(simdjson_from_source PRIVATE -w ${VLT_TOOL_HARDENING})
  vlt_add_foreign(simdjson simdjson.h simdjson_from_source)
else()
  vlt_add_foreign(simdjson simdjson.h)
endif()

# vlt_link_statically(TARGET): a tool, or the stand-in, which tools load. The C++ library's names
# stay inside: a plug-in that the tool loads has the shared one.
function(vlt_link_statically target)
  if(VLT_STATIC_TOOLS)
    set_target_properties(${target} PROPERTIES VLT_STATIC ON)
    target_link_libraries(${target} PRIVATE runtime)
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc
                        -Wl,--exclude-libs,ALL -Wl,--gc-sections)
  endif()
endfunction()
