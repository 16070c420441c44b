// The form of a message without its values: names of fields and kinds of values, whatever their
// order. A list counts as the set of the forms of its elements.
#ifndef VLT_TOOLS_REPORT_SHAPE_HPP
#define VLT_TOOLS_REPORT_SHAPE_HPP

#include <cstdint>
#include <string_view>

#include "value/message.hpp"

namespace com::velanto::connectivity::tools::report {

// The same number in every run. Values nested more than 30 deep count by their kind alone.
[[nodiscard]] std::uint64_t shapeOf(const Message& message);

// One number of several, which depends on their order.
[[nodiscard]] std::uint64_t combined(std::uint64_t one, std::uint64_t other) noexcept;

// The same number in every run.
[[nodiscard]] std::uint64_t hashOf(std::string_view text) noexcept;

} // namespace com::velanto::connectivity::tools::report

#endif
