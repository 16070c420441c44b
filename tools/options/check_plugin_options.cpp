#include "tools/options/check_plugin_options.hpp"

#include <array>

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr std::array EXAMPLES = {
    example_row_t{"ostrovia-check-plugin ./next.so", "Is this build fit for production?"},
    example_row_t{"ostrovia-check-plugin --list", "Which checks are there?"},
    example_row_t{"ostrovia-check-plugin --only 'memory.*' --only 'ownership.*' ./next.so",
                  "Two suites of it alone"},
    example_row_t{"ostrovia-check-plugin --skip 'loading.thousand*' --timeout 60 ./next.so",
                  "On a slow machine"},
    example_row_t{"ostrovia-check-plugin --json --seed 4711 ./next.so > report.json",
                  "For a program, with the seed of an earlier run"},
};

constexpr std::array STATUSES = {
    status_row_t{STATUS_ALL_PASSED, "all required checks passed, or were skipped for a reason"},
    status_row_t{STATUS_SOME_FAILED,
                 "some failed, crashed or hung; with --strict: or advised ones"},
    status_row_t{STATUS_NOT_CHECKED, "wrong use, or a library that does not load"},
};

constexpr const char* INTRODUCTION =
    "\n"
    "Checks a build of the codec or of the recorder before it goes into production: loads it as a\n"
    "host does, each check in a process of its own, and reports broken promises.\n"
    "\n"
    "Usage: ostrovia-check-plugin [OPTIONS] [LIBRARY]\n";

} // namespace

tool_t checkPluginTool(command_t& command) {
  return {
      PROGRAM_NAME,
      EXAMPLES,
      INTRODUCTION,
      "LIBRARY",
      &command.path,
      {{"The checks",
        {{"--only", "PATTERN",
          "run the checks whose names match: * any string, ? a character; may be repeated",
          &command.only},
         {"--skip", "PATTERN", "leave these checks out; may be repeated", &command.skip},
         {"--timeout", "SECONDS", "time limit of a check; default: 10", &command.timeout_seconds},
         {"--seed", "N",
          "seed of the randomised checks, to repeat them; default: a new one each time",
          &command.seed},
         {"--strict", "", "let advised checks decide the exit status, too", &command.strict},
         {"--json", "", "write one JSON document instead of lines", &command.json},
         {"--list", "", "list the checks, those of LIBRARY if it is named, and run none",
          &command.list}}},
       ABOUT_THE_TOOL},
      "Exit status",
      STATUSES};
}

} // namespace com::velanto::connectivity::tools::check
