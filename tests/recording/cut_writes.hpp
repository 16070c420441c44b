// Writes of a recording that take half of the bytes, up to a place within a line. Nothing outside can
// time this, so a program with this takes the place of the C library's write.
#ifndef VLT_TESTS_RECORDING_CUT_WRITES_HPP
#define VLT_TESTS_RECORDING_CUT_WRITES_HPP

namespace com::velanto::connectivity::test {

// The next write of lines ends the process with SIGKILL, half done. A file's head is too short to count.
void dieInNextWrite() noexcept;

// Each write of lines takes half of them, as the system may always do.
void halveWrites() noexcept;

} // namespace com::velanto::connectivity::test

#endif
