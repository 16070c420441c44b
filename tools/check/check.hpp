// A check: a name, its claim about a library, and its test. It is required of any build when
// docs/host-interface.md states it; otherwise it is advised, and a build may fail it and be correct.
#ifndef VLT_TOOLS_CHECK_CHECK_HPP
#define VLT_TOOLS_CHECK_CHECK_HPP

#include <functional>

#include "tools/check/trial.hpp"

namespace com::velanto::connectivity::tools::check {

// What a check takes: the file of any plug-in, or any plug-in, a codec or a recorder, loaded.
enum class Use { READ, LOAD, LOAD_CODEC, LOAD_RECORDER };

// In place of the clause of an advised check.
inline constexpr const char* ADVISED_ONLY = nullptr;

struct check_t {
  const char* name;   // suite.behaviour
  const char* claim;  // a property of a good library; half a line
  const char* clause; // the heading in docs/host-interface.md that requires it, or ADVISED_ONLY
  std::function<void(Trial&)> run;
  Use use = Use::LOAD;
};

} // namespace com::velanto::connectivity::tools::check

#endif
