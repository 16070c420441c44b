// The law of recorded lines, read(write(m)) = m, and messages to try it with. Tests and a fuzz target
// share both.
#ifndef VLT_TESTS_NDJSON_RECORDED_LAW_HPP
#define VLT_TESTS_NDJSON_RECORDED_LAW_HPP

#include <cstdint>
#include <span>
#include <string>

#include "value/message.hpp"

namespace com::velanto::connectivity::test {

// A message that the bytes describe, of all kinds and shapes; bytes after the end are zeros.
[[nodiscard]] Message messageFrom(std::span<const std::uint8_t> bytes);

// A remark as a recorder writes it, with the brace before it and the comma after it.
inline constexpr const char* REMARK =
    R"({"recorded":{"time":1715659331482000000,"number":18,"batch":7,"place":0,"of":2,)"
    R"("direction":"host"},)";

// The recorded line of `message`; empty when it is too large.
[[nodiscard]] std::string recordedLine(const Message& message);

// Whether a value read back is the recorded one: of the same kind, with the same bits, text or
// parts. A custom object reads back as empty.
[[nodiscard]] bool isReadBack(const data_t& recorded, const data_t& read);
[[nodiscard]] bool isReadBack(const map_t& recorded, const map_t& read);

// Whether the line of `message` reads back as `message`.
[[nodiscard]] bool isReadBack(const Message& message);

} // namespace com::velanto::connectivity::test

#endif
