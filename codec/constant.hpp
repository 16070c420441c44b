// One word of the codec's vocabulary: a key with its hash, and a number of its own by which copies
// of it are told apart (codec/spare_parts.hpp).
//
// Constants are made while the library is loaded, where nobody could catch an exception: one that
// finds no memory stays empty, and that is remembered until somebody asks for all of them.
#ifndef VLT_CODEC_CONSTANT_HPP
#define VLT_CODEC_CONSTANT_HPP

#include <new>

#include "value/hashed_key.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class constant_t : public hashed_key_t {
 public:
  static constexpr unsigned MOST = 64;

  // To be called while the library is loaded only, at most MOST times. Copies the text, which must
  // not be null.
  explicit constant_t(const char* text) noexcept
      : hashed_key_t(copyOrNothing(text)), number_(made_++) {}

  // Below MOST, and different for every constant.
  [[nodiscard]] unsigned number() const noexcept { return number_; }

  // To be called before any constant is used. Throws std::bad_alloc when there was no memory for
  // one of them: the library is then of no use until it is loaded again.
  static void requireAll() {
    if (lacking_) throw std::bad_alloc();
  }

 private:
  static data_t copyOrNothing(const char* text) noexcept {
    try {
      return data_t(text);
    } catch (const std::bad_alloc&) {
      lacking_ = true;
      return {};
    }
  }

  // NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): change only during loading
  static inline unsigned made_ = 0;
  static inline bool lacking_ = false;
  // NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)
  unsigned number_;
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
