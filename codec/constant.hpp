// One word of the codec's vocabulary: a key with its hash, and a number of its own by which copies
// of it are told apart (codec/spare_parts.hpp).
//
// Constants are made while the library is loaded, where nobody could catch an exception: one that
// finds no memory stays empty, and that is remembered until a codec asks for all of them.
//
// They live as long as the library and every codec: when a process ends, the library's destructors
// run while threads still convert and before the host's destructors. So the last user frees them.
#ifndef VLT_CODEC_CONSTANT_HPP
#define VLT_CODEC_CONSTANT_HPP

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <new>

#include "value/hashed_key.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

class constant_t : public hashed_key_t {
 public:
  static constexpr unsigned MOST = 64;

  // To be called while the library is loaded only, at most MOST times. Copies the text, which must
  // not be null.
  explicit constant_t(const char* text) noexcept
      : hashed_key_t(copyOrNothing(text)), number_(made_++) {
    all_[number_] = this;
  }

  // Below MOST, and different for every constant.
  [[nodiscard]] unsigned number() const noexcept { return number_; }

 private:
  friend class ConstantsUser;

  static data_t copyOrNothing(const char* text) noexcept {
    try {
      return data_t(text);
    } catch (const std::bad_alloc&) {
      lacking_ = true;
      return {};
    }
  }
  static void destroyAll() noexcept {
    for (unsigned i = 0; i < made_; ++i) all_[i]->~constant_t();
  }

  // NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): no batch changes them
  static inline const constant_t* all_[MOST] = {};
  static inline unsigned made_ = 0;
  static inline bool lacking_ = false;
  static inline std::atomic<unsigned> users_ = 1; // the loaded library
  // NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)
  unsigned number_;
};

// Keeps the constants alive while it lives: every codec has one, and so has the loaded library.
class ConstantsUser {
 public:
  // Throws std::bad_alloc when there was no memory for one of the constants, or when the last user
  // has freed them: the library is then of no use until it is loaded again.
  ConstantsUser() {
    unsigned users = constant_t::users_;
    do {
      if (constant_t::lacking_ || users == 0) throw std::bad_alloc();
    } while (!constant_t::users_.compare_exchange_weak(users, users + 1));
  }
  ConstantsUser(const ConstantsUser&) = delete;
  ConstantsUser& operator=(const ConstantsUser&) = delete;
  ~ConstantsUser() {
    if (--constant_t::users_ == 0) constant_t::destroyAll();
  }

 private:
  struct counted_t {};
  explicit ConstantsUser(counted_t) noexcept {}
  static const ConstantsUser library_;
};
inline const ConstantsUser ConstantsUser::library_{counted_t()};

// A constant that is not destroyed with the other variables of the library.
union lasting_constant_t {
  explicit lasting_constant_t(const char* text) noexcept : constant(text) {}
  lasting_constant_t(const lasting_constant_t&) = delete;
  lasting_constant_t& operator=(const lasting_constant_t&) = delete;
  ~lasting_constant_t() {} // NOLINT(modernize-use-equals-default): a defaulted one would be deleted
  constant_t constant;
};

// A text as an argument of a template.
template <std::size_t SIZE>
struct literal_t {
  consteval literal_t(const char (&literal)[SIZE]) { std::copy_n(literal, SIZE, text); }
  char text[SIZE];
};
template <literal_t TEXT>
inline const lasting_constant_t lasting(TEXT.text);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
