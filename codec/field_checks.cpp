#include "codec/field_checks.hpp"

#include <cstdlib>
#include <cstring>
#include <string>

namespace com::velanto::connectivity::plugins::pulsar {

std::runtime_error problemWithKey(char const* key, const std::runtime_error& error) {
  return std::runtime_error("Problem with key '" + std::string(key) + "': " + error.what());
}

void noteNotAString(char const* key, Fault& fault) {
  if (fault) return;
  fault.note(std::runtime_error("Value for key '" + std::string(key) + "' is not a string."));
}

bool dataTConvertableToFloat(data_t const& value) {
  switch (value.type_tag()) {
    case VLT_TAG_DOUBLE:
    case VLT_TAG_INTEGER:
    case VLT_TAG_DECIMAL:
      return true;
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      break;
    default:
      return false;
  }
  const char* const text = text_or_empty(value.get<char const*>());
  char* end = nullptr;
  std::strtod(text, &end);
  return end != text && std::strpbrk(text, "xX") == nullptr;
}

} // namespace com::velanto::connectivity::plugins::pulsar
