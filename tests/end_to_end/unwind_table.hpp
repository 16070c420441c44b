// What an exception that reaches a function does there, read from the library's unwinding tables:
//
//   .eh_frame_hdr   sorted pairs of a function's start and its frame description
//   .eh_frame       a description names the function's range and its table of calls, if it has one
//   call table      for each range of code: the landing pad (0: the exception passes through) and
//                   the action there (0: something is destroyed, then the exception goes on)
//
// Code that the call table of a function leaves out may not throw: an exception ends the process.
#ifndef VLT_TESTS_END_TO_END_UNWIND_TABLE_HPP
#define VLT_TESTS_END_TO_END_UNWIND_TABLE_HPP

#include <cstdint>
#include <optional>
#include <vector>

#include "tests/end_to_end/elf_file.hpp"

namespace com::velanto::connectivity::test {

struct guarded_call_t {
  std::uint64_t landing_pad;
  std::uint64_t action;
};

struct frame_t {
  std::uint64_t start;
  std::uint64_t size;
  // Nothing: the function has no call table, and what its calls throw passes through.
  std::optional<std::vector<guarded_call_t>> calls;
};

// The descriptions of all functions. Throws std::runtime_error for tables in an encoding other than
// the one that both compilers use here.
[[nodiscard]] std::vector<frame_t> readFrames(const ElfFile& library);

} // namespace com::velanto::connectivity::test

#endif
