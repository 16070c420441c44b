#include "tools/replay/writing/terminal.hpp"

#include <algorithm>
#include <string_view>

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::string_view ERASE = "\r\x1B[K";
constexpr std::string_view UP = "\x1B[A";

void put(std::streambuf& out, std::string_view text) {
  out.sputn(text.data(), static_cast<std::streamsize>(text.size()));
}

} // namespace

void Terminal::show(const std::string& lines) {
  std::string text;
  for (; shown_ > 1; --shown_) text.append(ERASE).append(UP);
  put(out_, text.append(ERASE).append(lines));
  out_.pubsync();
  shown_ = 1 + std::count(lines.begin(), lines.end(), '\n');
}

void Terminal::hide() {
  for (; shown_ > 1; --shown_) put(out_, std::string(ERASE).append(UP));
  if (shown_ > 0) put(out_, ERASE);
  shown_ = 0;
}

Terminal::int_type Terminal::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  hide();
  return out_.sputc(traits_type::to_char_type(c));
}

std::streamsize Terminal::xsputn(const char* text, std::streamsize count) {
  hide();
  return out_.sputn(text, count);
}

} // namespace com::velanto::connectivity::tools
