# Flags that every target of the project shares: warnings are errors with both compilers.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

if(VLT_SANITIZE)
  add_compile_options(-fsanitize=${VLT_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  # g++ 12 takes boost::optional's storage for uninitialised once the sanitizers have rewritten it.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=${VLT_SANITIZE})
endif()

# vlt_compile_quickly(SOURCE…): for code that runs once and takes long to optimise, such as the
# parser of a command line. The build type applies to all other code.
function(vlt_compile_quickly)
  if(VLT_SANITIZE)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O0)
  elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O1)
  endif()
endfunction()

if(VLT_COVERAGE)
  add_compile_options(--coverage -fno-inline -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
