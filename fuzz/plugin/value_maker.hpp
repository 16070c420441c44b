// Bytes read as values of every kind and shape: any sequence of bytes is valid, and after its end
// there are zeros.
//
//   text    mostly a word of the samples, otherwise up to 31 characters of any kind
//   key     mostly a string, owned or borrowed, otherwise any value
//   value   byte: kind, and whether its block is null; then the content
#ifndef VLT_FUZZ_PLUGIN_VALUE_MAKER_HPP
#define VLT_FUZZ_PLUGIN_VALUE_MAKER_HPP

#include <cstdint>
#include <span>
#include <string>

#include "fuzz/plugin/message_model.hpp"

namespace com::velanto::connectivity::fuzz {

class ValueMaker {
 public:
  explicit ValueMaker(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  [[nodiscard]] bool atEnd() const { return bytes_.empty(); }
  std::uint8_t byte();
  // A number below `limit`, 0 when there is none; limits up to 65536.
  std::size_t below(std::size_t limit);

  std::string text();
  model::value_t key(int depth = 0);
  model::value_t value(int depth = 0);
  // Gives a table another number of slots: just enough, or some more; none if there is no entry.
  void chooseCapacity(model::table_t& table);

 private:
  static model::value_t of(std::uint32_t tag, std::uint64_t bits);
  std::uint64_t bits();
  model::value_t content(unsigned tag, int depth);
  model::value_t list(int depth);
  model::value_t map(int depth);

  std::span<const std::uint8_t> bytes_;
};

} // namespace com::velanto::connectivity::fuzz

#endif
