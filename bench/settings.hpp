// The configuration of every contender, so that all of them make the same events.
#ifndef VLT_BENCH_SETTINGS_HPP
#define VLT_BENCH_SETTINGS_HPP

namespace com::velanto::connectivity::bench {

inline constexpr const char* TENANT = "t4100";
// The channels that the codec chooses by default.
inline constexpr const char* MEASUREMENTS_CHANNEL = "ostrovia.measurements";
inline constexpr const char* DEVICES_CHANNEL = "ostrovia.devices";

inline constexpr const char* PLUGIN_NAME = "codec";
inline constexpr const char* CHAIN_NAME = "bench";
inline constexpr const char* LOG_CATEGORY = "connectivity.codec.bench"; // made of these two

} // namespace com::velanto::connectivity::bench

#endif
