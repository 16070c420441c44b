#include "tools/options/check_plugin_options.hpp"

#include <array>

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr std::array OPTIONS = {
    option_row_t{"--only", "PATTERN",
                 "run the checks whose names match: * any text, ? a character; may be repeated",
                 &command_t::only},
    option_row_t{"--skip", "PATTERN", "leave these checks out; may be repeated", &command_t::skip},
    option_row_t{"--timeout", "SECONDS", "time limit of a check; default: 10",
                 &command_t::timeout_seconds},
    option_row_t{"--seed", "N",
                 "seed of the randomised checks, to repeat them; default: another each time",
                 &command_t::seed},
    option_row_t{"--json", "", "write one JSON document instead of lines", &command_t::json},
    option_row_t{"--list", "", "list the checks, or those selected, and run none",
                 &command_t::list},
};

constexpr std::array EXAMPLES = {
    example_row_t{"ostrovia-check-plugin ./next.so", "Is this build fit for production?"},
    example_row_t{"ostrovia-check-plugin --list", "What is checked?"},
    example_row_t{"ostrovia-check-plugin --only 'memory.*' --only 'ownership.*' ./next.so",
                  "Two suites of it alone"},
    example_row_t{"ostrovia-check-plugin --skip 'loading.thousand*' --timeout 60 ./next.so",
                  "On a slow machine"},
    example_row_t{"ostrovia-check-plugin --json --seed 4711 ./next.so > report.json",
                  "For a program, with the dice of an earlier run"},
};

constexpr std::array STATUSES = {
    status_row_t{STATUS_ALL_PASSED, "all checks passed, or were skipped for a reason"},
    status_row_t{STATUS_SOME_FAILED, "some failed, crashed or hung"},
    status_row_t{STATUS_NOT_CHECKED, "wrong use, or a library that cannot be loaded"},
};

} // namespace

std::span<const option_row_t> optionTable() noexcept { return OPTIONS; }

std::span<const example_row_t> exampleTable() noexcept { return EXAMPLES; }

std::span<const status_row_t> statusTable() noexcept { return STATUSES; }

} // namespace com::velanto::connectivity::tools::check
