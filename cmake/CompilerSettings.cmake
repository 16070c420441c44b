# Flags that every target of the project shares: warnings are errors with both compilers.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wimplicit-fallthrough -Werror)

if(VLT_SANITIZE)
  add_compile_options(-fsanitize=${VLT_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_compile_definitions(VLT_SANITIZED)
  # g++ 12 takes boost::optional's storage for uninitialised once the sanitizers have rewritten it.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # The entry points take Message where the host's prototypes have the plain struct of the same
    # layout; the check compares the names of types.
    add_compile_options(
      -fno-sanitize=function
      -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/sanitizer_ignorelist.txt)
    # A program has the runtime for the plug-ins that it loads: for C++ also where it is in C.
    add_link_options("$<$<LINK_LANGUAGE:C>:-fsanitize-link-c++-runtime;-lstdc++>")
  endif()
  add_link_options(-fsanitize=${VLT_SANITIZE})
endif()

# vlt_compile_quickly(TARGET): for code that takes longer to optimise than it ever runs.
function(vlt_compile_quickly target)
  if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(${target} PRIVATE -O1)
  endif()
endfunction()

if(VLT_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fprofile-update=atomic -fcoverage-mapping
                      -fcoverage-mcdc
                      # g++ 12's library uses what clang 19 knows to be deprecated
                      -Wno-deprecated-declarations)
  add_link_options(-fprofile-instr-generate)
endif()
