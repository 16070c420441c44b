// Growth by doubling.
#include "standin/text_builder.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "standin/accounting.hpp"
#include "standin/failures.hpp"

namespace standin {

TextBuilder::~TextBuilder() { std::free(text_); }

bool TextBuilder::reserve(std::size_t length) noexcept {
  if (failed_) return false;
  if (length < capacity_) return true;
  const auto capacity = std::max<std::size_t>({64, 2 * capacity_, length + 1});
  void* grown = allocationRefused() ? nullptr : std::realloc(text_, capacity);
  if (grown == nullptr) {
    failed_ = true;
    return false;
  }
  text_ = static_cast<char*>(grown);
  capacity_ = capacity;
  return true;
}

void TextBuilder::append(std::string_view text) noexcept {
  if (text.empty() || !reserve(length_ + text.size())) return;
  std::memcpy(text_ + length_, text.data(), text.size());
  length_ += text.size();
}

char* TextBuilder::take() noexcept {
  if (!reserve(length_)) return nullptr;
  text_[length_] = '\0';
  countMade(STANDIN_BLOCK_STRING);
  char* taken = text_;
  text_ = nullptr;
  length_ = capacity_ = 0;
  return taken;
}

} // namespace standin
