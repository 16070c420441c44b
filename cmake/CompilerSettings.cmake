# Flags that every target of the project shares: warnings are errors with both compilers.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

if(VLT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(VLT_COVERAGE)
  add_compile_options(--coverage -fno-inline -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
