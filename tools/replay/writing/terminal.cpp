#include "tools/replay/writing/terminal.hpp"

#include <string_view>

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::string_view ERASE = "\r\x1B[K";

void put(std::streambuf& out, std::string_view text) {
  out.sputn(text.data(), static_cast<std::streamsize>(text.size()));
}

} // namespace

void Terminal::show(const std::string& line) {
  put(out_, std::string(ERASE) + line);
  out_.pubsync();
  shown_ = true;
}

void Terminal::hide() {
  if (shown_) put(out_, ERASE);
  shown_ = false;
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
