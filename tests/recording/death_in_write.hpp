// A process that kill -9 ends within a write of a recording: after half of the bytes, and within a
// line. No process can time this from outside, so a program with this takes the place of the C
// library's write.
#ifndef VLT_TESTS_RECORDING_DEATH_IN_WRITE_HPP
#define VLT_TESTS_RECORDING_DEATH_IN_WRITE_HPP

namespace com::velanto::connectivity::test {

// The next write of lines ends the process with SIGKILL. A file's head is too short to count.
void dieInNextWrite() noexcept;

} // namespace com::velanto::connectivity::test

#endif
