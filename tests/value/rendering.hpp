// Renderings that the development host never makes but another host may: raw line breaks, no string
// at all. This program's own vlt_data_to_string replaces the host library's and passes the call on
// unless a test has set a rendering.
#ifndef VLT_TESTS_VALUE_RENDERING_HPP
#define VLT_TESTS_VALUE_RENDERING_HPP

namespace com::velanto::connectivity::test {

// Every value renders as `text` (null: a null string) while this lives.
class Rendering {
 public:
  explicit Rendering(const char* text);
  Rendering(const Rendering&) = delete;
  Rendering& operator=(const Rendering&) = delete;
  ~Rendering();
};

} // namespace com::velanto::connectivity::test

#endif
