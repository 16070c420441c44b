// The sections of a page, in their order. Each writes a <section> with an anchor that stays the same
// from run to run; a section without content writes nothing.
#ifndef VLT_TOOLS_REPORT_SECTIONS_HPP
#define VLT_TOOLS_REPORT_SECTIONS_HPP

#include "tools/report/contents.hpp"
#include "tools/report/html.hpp"

namespace com::velanto::connectivity::tools::report {

// The most that a page shows; only these need an explanation.
inline constexpr std::size_t SHOWN_REASONS = 20;
inline constexpr std::size_t SHOWN_WAYS = 20;

// The outcome in one sentence.
[[nodiscard]] std::string headlineOf(const contents_t& contents);

void writeOutcome(Html& html, const contents_t& contents); // #outcome
void writeArrivals(Html& html,
                   const contents_t& contents);      // #arrivals, #by-time, #by-place, #kinds
void writeReasons(Html& html, contents_t& contents); // #reasons, #reason-CODE-KEY
void writeMalformed(Html& html, const contents_t& contents);     // #malformed
void writeChanges(Html& html, const contents_t& contents);       // #changes, #changes-expect, …
void writeWays(Html& html, contents_t& contents);                // #ways, #way-NUMBER
void writeChannels(Html& html, const contents_t& contents);      // #channels
void writeBatches(Html& html, const contents_t& contents);       // #batches
void writeConfiguration(Html& html, const contents_t& contents); // #configuration
void writeBuilds(Html& html, const contents_t& contents);        // #builds
void writeLeftOut(Html& html);                                   // #left-out

// The parts of sections that show one message.
void writeMessage(Html& html, const example_t& example);
// The log lines and the fields at fault of a dropped one.
void writeBlame(Html& html, const example_t& example);
// A table of the fate of every field.
void writeFates(Html& html, const example_t& example);

} // namespace com::velanto::connectivity::tools::report

#endif
