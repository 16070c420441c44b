// The host's functions as the real codec of a faulty plug-in finds them: the linker's --wrap leads
// its calls here.
#ifndef VLT_TESTS_TOOLS_CHECK_FAULTY_HOST_CALLS_HPP
#define VLT_TESTS_TOOLS_CHECK_FAULTY_HOST_CALLS_HPP

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/logging.h"
#include "host/storage.h"
#include "tests/tools/check/faulty/faults.hpp"

using com::velanto::connectivity::test::Fault;
using com::velanto::connectivity::test::has;

extern "C" {
static void renderOnce() {
  const vlt_underlying_data_t nothing{};
  vlt_free_string(const_cast<char*>(vlt_data_to_string(&nothing).value.string));
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker makes these names
void __real_vlt_log_at(const char*, vlt_log_level_t, const char*, ...);
vlt_log_level_t __real_vlt_get_log_level(const char*);
char* __real_vlt_copy_string(const char*);
vlt_underlying_map_table_t* __real_vlt_allocate_map(std::int64_t);

void __wrap_vlt_log_at(const char* category, vlt_log_level_t level, const char* format, ...) {
  std::array<char, 4096> text{};
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  if (has(Fault::logs_at_wrong_level) && level == 3) level = 4;
  if (has(Fault::misses_traces) && level == 6 && std::strstr(text.data(), "managedobjects/"))
    return;
  if (has(Fault::renders_twice) && level == 6) renderOnce();
  if (has(Fault::breaks_lines) && level == 6) {
    if (char* const escape = std::strstr(text.data(), "\\n")) escape[0] = escape[1] = '\n';
  }
  if (has(Fault::leaks_on_drop)) static_cast<void>(__real_vlt_copy_string("leak"));
  if (has(Fault::misspells_errors)) {
    if (char* const word = std::strstr(text.data(), "Unrecognised")) word[9] = 'z';
  }
  __real_vlt_log_at(category, level, "%s", text.data());
}

vlt_log_level_t __wrap_vlt_get_log_level(const char* category) {
  const vlt_log_level_t level = __real_vlt_get_log_level(category);
  if (has(Fault::ignores_levels) && level < 3) return 3;
  return has(Fault::traces_too_early) && level == 5 ? 6 : level;
}

char* __wrap_vlt_copy_string(const char* text) {
  char* const copy = __real_vlt_copy_string(text);
  if (has(Fault::leaks_when_exhausted) && copy == nullptr) {
    static_cast<void>(__real_vlt_copy_string("leak"));
  }
  return copy;
}

vlt_underlying_map_table_t* __wrap_vlt_allocate_map(std::int64_t capacity) {
  vlt_underlying_map_table_t* const table = __real_vlt_allocate_map(capacity);
  if (has(Fault::aborts_when_exhausted) && table == nullptr) std::abort();
  return table;
}
// NOLINTEND(bugprone-reserved-identifier)
}

#endif
