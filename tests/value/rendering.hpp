// Texts that the development host never renders but another host may: raw line breaks, no text at
// all. This program's own vlt_data_to_string stands before the host library's and passes the call
// on unless a test has set a text.
#ifndef VLT_TESTS_VALUE_RENDERING_HPP
#define VLT_TESTS_VALUE_RENDERING_HPP

namespace com::velanto::connectivity::test {

// Every value is rendered as `text` (null: a string value without a text) while this lives.
class Rendering {
 public:
  explicit Rendering(const char* text);
  Rendering(const Rendering&) = delete;
  Rendering& operator=(const Rendering&) = delete;
  ~Rendering();
};

} // namespace com::velanto::connectivity::test

#endif
