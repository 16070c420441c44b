// Changes to a message, as bytes choose them: a place within it, and what to do there.
//
//   edit    byte below 128: what to do to a field of the payload; byte: which field
//           byte from there on: payload or metadata; bytes: the way to a place; byte: what to do
//   place   a value; the entry that it stands in, unless it is the whole payload or an element
//
// Every second edit is one of a field: that is what conversions look at.
#ifndef VLT_FUZZ_PLUGIN_EDITS_HPP
#define VLT_FUZZ_PLUGIN_EDITS_HPP

#include "fuzz/plugin/message_model.hpp"
#include "fuzz/plugin/value_maker.hpp"

namespace com::velanto::connectivity::fuzz {

// Makes one edit. Afterwards the message is one that a host could have made.
void edit(message_t& message, ValueMaker& input);

} // namespace com::velanto::connectivity::fuzz

#endif
