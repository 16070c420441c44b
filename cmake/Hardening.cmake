# Flags that make a fault in the plug-in, which runs inside somebody else's process, end as a refused
# write or a stopped process rather than as a way in. What they cost is in docs/reliability.md;
# tests/end_to_end/built_library_test.cpp reads their effect from the built file.
#
#   compiler   canaries behind arrays on the stack; checked versions of the C library's functions
#   linker     addresses bound when the library is loaded, then read-only; no executable stack
#
# The sanitizers bring their own checks, which the C library's checked functions would hide; and
# without optimisation a compiler cannot tell the sizes that those functions check.
add_compile_options(-fstack-protector-strong)
if(NOT VLT_SANITIZE AND CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  set(VLT_FORTIFIED ON)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
