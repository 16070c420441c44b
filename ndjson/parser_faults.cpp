#include "ndjson/parser_faults.hpp"

#include <cstddef>
#include <new>
#include <string>

#include "ndjson/json_reader.hpp"
#include "ndjson/utf8.hpp"

namespace com::velanto::connectivity {

namespace {

// The place of a string that has no end, or of a byte within one that needs an escape; 0 without
// either.
std::size_t findTextFault(std::string_view json) noexcept {
  bool in_text = false;
  std::size_t opening = 0;
  for (std::size_t i = 0; i < json.size(); ++i) {
    if (!in_text) {
      in_text = json[i] == '"';
      opening = i;
    } else if (json[i] == '\\') {
      ++i;
    } else if (json[i] == '"') {
      in_text = false;
    } else if (static_cast<unsigned char>(json[i]) < 0x20) {
      return i;
    }
  }
  return in_text ? opening : 0;
}

} // namespace

const char* reasonOf(simdjson::error_code error) noexcept {
  switch (error) {
    case simdjson::EMPTY:
      return "no JSON value";
    case simdjson::UTF8_ERROR:
      return "bytes that are not UTF-8";
    case simdjson::UNESCAPED_CHARS:
      return "control character in a string, not escaped";
    case simdjson::UNCLOSED_STRING:
      return "string without a closing quote";
    case simdjson::STRING_ERROR:
      return "bad escape in a string";
    case simdjson::NUMBER_ERROR:
    case simdjson::NUMBER_OUT_OF_RANGE:
      return "bad number, or one beyond the range of doubles";
    case simdjson::T_ATOM_ERROR:
    case simdjson::F_ATOM_ERROR:
    case simdjson::N_ATOM_ERROR:
      return "bad literal, expected true, false or null";
    case simdjson::TRAILING_CONTENT:
      return "content after the end of the JSON value";
    case simdjson::CAPACITY:
      return "longer than 4 GiB";
    default:
      return "not well-formed JSON";
  }
}

void refuse(simdjson::error_code error) {
  if (error == simdjson::MEMALLOC) throw std::bad_alloc();
  throw MalformedJson(reasonOf(error));
}

void refuseWhole(simdjson::error_code error, std::string_view json) {
  if (error == simdjson::MEMALLOC) throw std::bad_alloc();
  const std::size_t at =
      error == simdjson::UTF8_ERROR ? findInvalidUtf8(json) : findTextFault(json);
  throw MalformedJson(reasonOf(error), at + 1);
}

std::size_t findBracketFault(std::string_view json) {
  std::string open; // the brackets that would close
  bool in_text = false;
  for (std::size_t i = 0; i < json.size(); ++i) {
    const char c = json[i];
    if (c == '"') in_text = !in_text;
    if (in_text && c == '\\') ++i;
    if (in_text) continue;
    if (c == '{' || c == '[') open += c == '{' ? '}' : ']';
    if (c != '}' && c != ']') continue;
    if (!open.ends_with(c)) return i;
    open.pop_back();
    const std::size_t next = json.find_first_not_of(" \t\r\n", i + 1);
    if (open.empty() && next != std::string_view::npos) return next;
  }
  return open.empty() ? 0 : json.size();
}

} // namespace com::velanto::connectivity
