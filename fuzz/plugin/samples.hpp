// The beginnings of inputs: the messages of samples/, and the words in them. To repeat a finding
// takes the samples of its run.
#ifndef VLT_FUZZ_PLUGIN_SAMPLES_HPP
#define VLT_FUZZ_PLUGIN_SAMPLES_HPP

#include <string>
#include <vector>

#include "fuzz/plugin/message_model.hpp"

namespace com::velanto::connectivity::fuzz {

struct samples_t {
  std::vector<message_t> messages;
  std::vector<message_t> failing; // of failing.ndjson, each in another way
  std::vector<std::string> words; // keys and strings, sorted
};

// Of all files but the long site-day.ndjson, in the order of their names. Never empty: ends the
// process when there are none of either.
[[nodiscard]] const samples_t& samples();

} // namespace com::velanto::connectivity::fuzz

#endif
