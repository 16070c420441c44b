// A string that grows at its end and becomes a string block of the host.
#ifndef VLT_STANDIN_TEXT_BUILDER_HPP
#define VLT_STANDIN_TEXT_BUILDER_HPP

#include <cstddef>
#include <string_view>

namespace standin {

// Remembers exhaustion instead of reporting it call by call: after a failure, appending does
// nothing, and callers check `take` alone. Each growth is an allocation that a request can refuse.
class TextBuilder {
 public:
  TextBuilder() = default;
  TextBuilder(const TextBuilder&) = delete;
  TextBuilder& operator=(const TextBuilder&) = delete;
  ~TextBuilder();

  void append(std::string_view text) noexcept;
  bool failed() const noexcept { return failed_; }

  // The string as a counted block, owned by the caller; the builder is empty afterwards. Null:
  // exhausted.
  char* take() noexcept;

 private:
  bool reserve(std::size_t length) noexcept; // room for `length` bytes and the NUL

  char* text_ = nullptr;
  std::size_t length_ = 0;
  std::size_t capacity_ = 0;
  bool failed_ = false;
};

} // namespace standin

#endif
