// Blocks of the kinds that the host's interface frees and copies but never makes.
#include "standin/blocks.hpp"
#include "standin/interface.hpp"

vlt_underlying_vector_t* standin_make_list(int64_t count, int64_t capacity) {
  if (count < 0 || count > capacity) return nullptr;
  vlt_underlying_vector_t* list = standin::makeList(capacity);
  if (list != nullptr) list->count = count;
  return list;
}

vlt_underlying_buffer_t* standin_make_buffer(uint32_t length) {
  return standin::makeBuffer(length);
}

vlt_underlying_custom_t standin_make_custom(uint64_t label) { return {standin::makeCustom(label)}; }

uint64_t standin_custom_label(vlt_underlying_custom_t custom) {
  if (custom.object == nullptr) return 0;
  return static_cast<const standin::custom_object_t*>(custom.object)->label;
}
