// Messages as the tests' model has values: read off the host's blocks, and compared with them.
#ifndef VLT_FUZZ_PLUGIN_MESSAGE_MODEL_HPP
#define VLT_FUZZ_PLUGIN_MESSAGE_MODEL_HPP

#include <string>

#include "host/types.h"
#include "tests/value/map_model.hpp"
#include "tests/value/map_model_blocks.hpp"

namespace com::velanto::connectivity::fuzz {

namespace model = test::model;

struct message_t {
  model::value_t payload;
  model::table_t metadata;
};

// The model of the bytes in memory, of either side.
[[nodiscard]] model::value_t modelOf(const vlt_underlying_data_t& value);
[[nodiscard]] message_t modelOf(const vlt_underlying_message_t& message);

// A host's message of this content; the caller owns its blocks.
[[nodiscard]] vlt_underlying_message_t blockOf(const message_t& message);

// How the message differs from its model, bytes, slots and counts included; empty: not at all.
[[nodiscard]] std::string difference(const vlt_underlying_message_t& actual,
                                     const message_t& expected);

[[nodiscard]] model::value_t text(const std::string& content);
[[nodiscard]] bool isText(const model::value_t& value);

// The value under a key that is an owned string; null when there is none.
[[nodiscard]] const model::value_t* find(const model::table_t& table, const std::string& key);

// Puts a value under a key, as a host does it. A key that has no hash gets some number.
void put(model::table_t& table, const model::value_t& key, model::value_t value);

} // namespace com::velanto::connectivity::fuzz

#endif
