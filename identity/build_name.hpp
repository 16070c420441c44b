// Which build this is. The text is in a note of every library and program that links it, so
// stripping leaves it, and no library exports a symbol for it:
//
//   section .note.ostrovia    owner "Ostrovia", type 1, the text with its NUL
//
// The build writes the text (write_build_name.cmake) and compiles nothing else for a new commit.
#ifndef VLT_IDENTITY_BUILD_NAME_HPP
#define VLT_IDENTITY_BUILD_NAME_HPP

namespace com::velanto::connectivity {

inline constexpr const char* BUILD_NOTE_OWNER = "Ostrovia";
inline constexpr const char* PROJECT_NAME = "ostrovia-notifications";

// "ostrovia-notifications VERSION, COMMIT". COMMIT is "commit " and twelve digits, with ", modified"
// when the sources differ from that commit, or "unknown commit" for sources without git.
extern "C" const char VLT_BUILD_NAME[];

} // namespace com::velanto::connectivity

#endif
