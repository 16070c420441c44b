#include "value/to_string.hpp"

#include "value/get_visitor.hpp"

namespace com::velanto::connectivity {

namespace {

constexpr std::size_t LONGEST_PAYLOAD = 200; // bytes
constexpr const char* ELLIPSIS = " ...";
constexpr std::size_t ELLIPSIS_LENGTH = 4;

std::string render(const vlt_underlying_data_t& value) {
  const data_t text = data_t::adopt(vlt_data_to_string(&value));
  return text.get<const char*>(); // a null string is the library's std::logic_error
}

void replace_all(std::string& text, char what, const char* with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 2)) {
    text.replace(at, 1, with);
  }
}

} // namespace

std::string to_string(const data_t& value) { return render(*value.underlying()); }

std::string to_string(const map_t& map) {
  vlt_underlying_data_t view{};
  view.tag = VLT_TAG_MAP;
  view.value.map = const_cast<vlt_underlying_map_table_t*>(map.table());
  return render(view);
}

std::string to_string(const Message& message, bool truncate) {
  std::string payload = to_string(message.getPayload());
  if (truncate && payload.size() > LONGEST_PAYLOAD) {
    payload.resize(LONGEST_PAYLOAD - ELLIPSIS_LENGTH);
    payload += ELLIPSIS;
  }
  replace_all(payload, '\n', "\\n");
  replace_all(payload, '\r', "\\r");
  return "Message<metadata=" + to_string(message.getMetadataMap()) + ", payload=" + payload + ">";
}

} // namespace com::velanto::connectivity
