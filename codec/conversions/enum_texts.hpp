// The words of an enumeration whose values count from 0: one row a value, in the order of the
// values, each a constant that events copy.
#ifndef VLT_CODEC_CONVERSIONS_ENUM_TEXTS_HPP
#define VLT_CODEC_CONVERSIONS_ENUM_TEXTS_HPP

#include <array>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>

#include "codec/fault.hpp"
#include "codec/vocabulary.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

template <class Enum, std::size_t ROWS>
struct EnumTexts {
  std::array<constant_t const*, ROWS> texts;

  // The value of the word equal to `text` (not null), case included. Any other string is a fault,
  // "Unrecognized WHAT: TEXT". With a fault the result means nothing.
  [[nodiscard]] Enum fromString(char const* text, char const* what, Fault& fault) const {
    if (fault) return Enum();
    for (std::size_t row = 0; row < ROWS; ++row) {
      if (std::strcmp(text, texts[row]->text()) == 0) return static_cast<Enum>(row);
    }
    fault.note(std::runtime_error(std::string("Unrecognized ") + what + ": " + text));
    return Enum();
  }

  // The word of `value`. Throws std::runtime_error "Unrecognized enum value.".
  [[nodiscard]] constant_t const& toDataTString(Enum value) const {
    const auto row = static_cast<std::size_t>(value);
    if (row >= ROWS) throw std::runtime_error("Unrecognized enum value.");
    return *texts[row];
  }
};

} // namespace com::velanto::connectivity::plugins::pulsar

#endif
