// The same conversions over the trees of general JSON libraries, with all rules of all kinds. A user
// would write this code to turn notifications in such a tree into events in one.
//
// Common to all: values move, and only necessary copies are made. The event is an object of its
// own, into which the fields move. They convert a batch as a whole and then release it as a whole,
// as the plug-in does. They read timestamps with the codec's own reader, so trees are compared and
// not readers.
#ifndef VLT_BENCH_PEERS_PEERS_HPP
#define VLT_BENCH_PEERS_PEERS_HPP

#include "bench/contender.hpp"

namespace com::velanto::connectivity::bench::peers {

[[nodiscard]] std::unique_ptr<Contender> makeNlohmann(const lines_t& lines, std::size_t batch);

// One pool per message, which is freed as a whole. The host's storage does not allow that, since
// each of its blocks may outlive the message.
[[nodiscard]] std::unique_ptr<Contender> makeRapidJson(const lines_t& lines, std::size_t batch);

// Every block from the C++ heap.
[[nodiscard, gnu::visibility("default")]] std::unique_ptr<Contender> makeBoostJson(
    const lines_t& lines, std::size_t batch);
// One monotonic resource per message, freed as a whole.
[[nodiscard, gnu::visibility("default")]] std::unique_ptr<Contender> makeBoostJsonMonotonic(
    const lines_t& lines, std::size_t batch);

} // namespace com::velanto::connectivity::bench::peers

#endif
