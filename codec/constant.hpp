// One word of the codec's vocabulary: a key with its hash, and a number of its own by which copies
// of it are told apart (codec/spare_parts.hpp).
#ifndef VLT_CODEC_CONSTANT_HPP
#define VLT_CODEC_CONSTANT_HPP

#include "value/hashed_key.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class constant_t : public hashed_key_t {
 public:
  static constexpr unsigned MOST = 64;

  // To be called while the library is loaded only, at most MOST times. Copies the text. Throws
  // std::bad_alloc.
  explicit constant_t(const char* text) : hashed_key_t(text), number_(made_++) {}

  // Below MOST, and different for every constant.
  [[nodiscard]] unsigned number() const noexcept { return number_; }

 private:
  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): changes only during loading
  static inline unsigned made_ = 0;
  unsigned number_;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
