// The places of the parts after a block's head, and the state of a slot.
//
//   slot state   hash   key
//   free         0      empty
//   deleted      1      empty
//   live         any other combination; free and deleted slots own nothing
#ifndef VLT_STANDIN_LAYOUT_HPP
#define VLT_STANDIN_LAYOUT_HPP

#include "host/types.h"

namespace standin {

using slot_t = vlt_underlying_map_table_entry_t;

inline vlt_underlying_data_t* elementsOf(vlt_underlying_vector_t* list) noexcept {
  return reinterpret_cast<vlt_underlying_data_t*>(list + 1);
}

inline const vlt_underlying_data_t* elementsOf(const vlt_underlying_vector_t* list) noexcept {
  return reinterpret_cast<const vlt_underlying_data_t*>(list + 1);
}

inline slot_t* slotsOf(vlt_underlying_map_table_t* table) noexcept {
  return reinterpret_cast<slot_t*>(table + 1);
}

inline const slot_t* slotsOf(const vlt_underlying_map_table_t* table) noexcept {
  return reinterpret_cast<const slot_t*>(table + 1);
}

inline unsigned char* bytesOf(vlt_underlying_buffer_t* buffer) noexcept {
  return reinterpret_cast<unsigned char*>(buffer + 1);
}

inline const unsigned char* bytesOf(const vlt_underlying_buffer_t* buffer) noexcept {
  return reinterpret_cast<const unsigned char*>(buffer + 1);
}

inline constexpr uint64_t FREE_HASH = 0;
inline constexpr uint64_t DELETED_HASH = 1;

inline bool isLive(const slot_t& slot) noexcept {
  return slot.key.tag != VLT_TAG_EMPTY || slot.hash > DELETED_HASH;
}

inline bool isDeleted(const slot_t& slot) noexcept {
  return slot.key.tag == VLT_TAG_EMPTY && slot.hash == DELETED_HASH;
}

} // namespace standin

#endif
