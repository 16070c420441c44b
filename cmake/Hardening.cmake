# Flags that turn an exploit of a fault in the plug-in, which runs inside another program's process,
# into a refused write or a stopped process. docs/reliability.md has their cost;
# tests/end_to_end/built_library_test.cpp reads their effect from the built file, and
# built_tools_test.cpp those of the tools.
#
#   compiler   canaries after arrays on the stack; checked versions of the C library's functions
#   linker     addresses bound at the load of the library, then read-only; no executable stack
#
# The sanitizers bring their own checks, which the C library's checked functions would hide; and
# without optimisation a compiler does not know the sizes for these functions.
add_compile_options(-fstack-protector-strong)
if(NOT VLT_SANITIZE AND CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  set(VLT_FORTIFIED ON)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()

# More for the tools, which read files of unknown origin and bring the C++ library that the checks
# need: a plug-in must run on older ones. These checks change no layout, so the tools may share the
# objects of lower layers that are compiled without them. Control-flow marks (-fcf-protection) would
# be lost: the linker drops them, since Debian's start files and libraries have none.
if(VLT_FORTIFIED AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(VLT_TOOL_HARDENING
      -D_GLIBCXX_ASSERTIONS # bounds of standard containers
      "SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3" # sizes that are known at run time only
      -fstack-clash-protection # no step over the page that guards a stack
      -ftrivial-auto-var-init=zero) # no old bytes of the stack in a forgotten variable
endif()

add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
