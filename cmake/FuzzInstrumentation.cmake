# Flags for all code that a fuzz target drives: counters that show the fuzzer the way of an input.
# The targets themselves add the fuzzer's own main at their link (fuzz/CMakeLists.txt).
if(VLT_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "VLT_BUILD_FUZZ: libFuzzer comes with clang; see the preset `fuzz`")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
