// An input read as the actions of a host: a configuration, a batch, and failures meanwhile.
//
//   input     Byte: log level. Byte: settings, links. Byte: refused memory. Byte: number of edits
//             of the settings. Byte: number of messages. Then the edits, then the messages.
//   message   Byte: which sample. Byte: number of edits. Then the edits (fuzz/plugin/edits.hpp).
//
// fuzz/make_seeds.py writes such inputs.
#ifndef VLT_FUZZ_PLUGIN_SCENARIO_HPP
#define VLT_FUZZ_PLUGIN_SCENARIO_HPP

#include <cstdint>
#include <span>
#include <vector>

#include "fuzz/plugin/message_model.hpp"

namespace com::velanto::connectivity::fuzz {

enum class links_t { SET, THROWING, NONE };

struct scenario_t {
  vlt_log_level_t level = 3;
  links_t links = links_t::SET;
  bool has_configuration = true; // false: a null pointer
  model::value_t configuration;
  // The number of the allocation to refuse, counted from the creation or from the batch; 0: none.
  std::uint64_t refused_in_create = 0;
  std::uint64_t refused_in_batch = 0;
  bool refused_from_there_on = false;
  std::vector<message_t> messages;
};

[[nodiscard]] scenario_t readScenario(std::span<const std::uint8_t> bytes);

} // namespace com::velanto::connectivity::fuzz

#endif
