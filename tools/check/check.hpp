// A check: a name, its claim about a library, and its test.
#ifndef VLT_TOOLS_CHECK_CHECK_HPP
#define VLT_TOOLS_CHECK_CHECK_HPP

#include <functional>

#include "tools/check/trial.hpp"

namespace com::velanto::connectivity::tools::check {

// What a check takes: the file of any plug-in, or any plug-in, a codec or a recorder, loaded.
enum class Use { READ, LOAD, LOAD_CODEC, LOAD_RECORDER };

struct check_t {
  const char* name;  // suite.behaviour
  const char* claim; // a property of a good library; half a line
  std::function<void(Trial&)> run;
  Use use = Use::LOAD;
};

} // namespace com::velanto::connectivity::tools::check

#endif
