// The laws for a message that goes through the plug-in alone, while memory lasts.
#ifndef VLT_FUZZ_PLUGIN_LAWS_HPP
#define VLT_FUZZ_PLUGIN_LAWS_HPP

#include <array>
#include <string>

#include "fuzz/plugin/watched_plugin.hpp"

namespace com::velanto::connectivity::fuzz {

// The five kinds, as paths and events name them.
struct kind_t {
  const char* segment;
  const char* type;
};
inline constexpr std::array<kind_t, 5> KINDS = {{{"alarms", "Alarm"},
                                                 {"events", "Event"},
                                                 {"measurements", "Measurement"},
                                                 {"managedobjects", "ManagedObject"},
                                                 {"operations", "Operation"}}};

enum class fate_t { PASSED, CONVERTED, DROPPED };

struct verdict_t {
  fate_t fate;
  const kind_t* kind; // of a converted one; otherwise null
};

// Whether the plug-in must refuse the configuration, without memory running out.
[[nodiscard]] bool mustBeRefused(const scenario_t& scenario);

// Compares `before`, sent alone towards the host, with its result; a breach of the laws is a
// finding. There must be a link towards the host that does not throw.
verdict_t judge(const scenario_t& scenario, const message_t& before,
                const vlt_underlying_message_t& after, const outcome_t& outcome);

} // namespace com::velanto::connectivity::fuzz

#endif
