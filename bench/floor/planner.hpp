// Makes the plan of one notification: which host calls its conversion comes down to.
//
// Counted for every notification that converts (a: allocate_map, r: reallocate_map, f: free_map,
// c: copy_data, s: free_string):
//
//   the stand-by message with the "id"    1 a  2 c  1 f   when "id" is a string. Only a failure
//                                                        needs it, but the steps make it.
//   event's metadata                      1 a  4 c        vlt.type, vlt.channel, key and value each
//   event's payload                       1 a  + r        8 slots, then a growth before the 8th, the
//                                                         14th, … key (2 × live + 2 slots)
//   a field that is taken                 1 s             its key
//   a field that is set by name           1 c             its key; 1 more for a constant as value
//   a field that is carried over          0               key and value move
//   "tenantId", "measurements"            3 c             keys, and the tenant
//   the notification's two tables         2 f             with the path, and remaining fields
//
// and for the release of the event: 2 f. planner.cpp has the calls that a kind adds, at
// its function.
#ifndef VLT_BENCH_FLOOR_PLANNER_HPP
#define VLT_BENCH_FLOOR_PLANNER_HPP

#include "bench/floor/plan_builder.hpp"

namespace com::velanto::connectivity::bench::floor {

// Enters the constants that the plan names by number into `texts`. Throws std::logic_error for a
// notification to drop, or with values that no corpus has: the floor then has no plan.
[[nodiscard]] plan_t makePlan(const vlt_underlying_message_t& message, variant_t variant,
                              Texts& texts);

} // namespace com::velanto::connectivity::bench::floor

#endif
