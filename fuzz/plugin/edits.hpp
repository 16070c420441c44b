// Changes to a message, as bytes choose them: a place within it, and the change there.
//
//   edit    byte below 128: a change of a payload's field. Byte: which field.
//           byte from 128 on: payload or metadata. Bytes: the way to a place. Byte: the change.
//   place   a value, and the entry that holds it unless it is the whole payload or an element.
//
// Every second edit is one of a field, since conversions read fields.
#ifndef VLT_FUZZ_PLUGIN_EDITS_HPP
#define VLT_FUZZ_PLUGIN_EDITS_HPP

#include "fuzz/plugin/message_model.hpp"
#include "fuzz/plugin/value_maker.hpp"

namespace com::velanto::connectivity::fuzz {

// Makes one edit. Afterwards the message is one that a host could have made.
void edit(message_t& message, ValueMaker& input);

} // namespace com::velanto::connectivity::fuzz

#endif
