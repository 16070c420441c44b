// The rendering function of this program; see the header.
#include "tests/value/rendering.hpp"

#include <dlfcn.h>

#include "host/storage.h"

namespace {

bool is_set = false;
const char* rendered_text = nullptr;

} // namespace

extern "C" vlt_underlying_data_t vlt_data_to_string(const vlt_underlying_data_t* value) {
  if (!is_set) {
    using render_t = vlt_underlying_data_t (*)(const vlt_underlying_data_t*);
    static const auto HOST = reinterpret_cast<render_t>(dlsym(RTLD_NEXT, "vlt_data_to_string"));
    return HOST(value);
  }
  vlt_underlying_data_t result{};
  result.tag = VLT_TAG_STRING;
  if (rendered_text != nullptr) result.value.string = vlt_copy_string(rendered_text);
  return result;
}

namespace com::velanto::connectivity::test {

Rendering::Rendering(const char* text) {
  is_set = true;
  rendered_text = text;
}

Rendering::~Rendering() { is_set = false; }

} // namespace com::velanto::connectivity::test
