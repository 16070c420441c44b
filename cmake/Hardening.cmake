# Flags that turn an exploit of a fault in the plug-in, which runs inside another program's process,
# into a refused write or a stopped process. docs/reliability.md has their cost;
# tests/end_to_end/built_library_test.cpp reads their effect from the built file.
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
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
