// The second opinion: the results of the plain build (tests/plain_build), written from the documents
// alone, for the same batch. Both builds must agree on all that a host or its rules can tell.
#ifndef VLT_FUZZ_PLUGIN_SECOND_OPINION_HPP
#define VLT_FUZZ_PLUGIN_SECOND_OPINION_HPP

#include <span>

#include "fuzz/plugin/watched_plugin.hpp"

namespace com::velanto::connectivity::fuzz {

// A finding where the plain build, in `plain`, makes another result of the batch `before` than
// `after`: another outcome, another line of the log, another value. The places of a map's entries
// may differ, and so may the size of its table and the order of dropped messages.
void requireSameOpinion(WatchedPlugin& plain, std::span<const message_t> before, const Batch& after,
                        const outcome_t& outcome);

} // namespace com::velanto::connectivity::fuzz

#endif
