#include "plugin/map_extractor.hpp"

#include <exception>
#include <stdexcept>
#include <utility>

#include "value/convert_to.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity {

MapExtractor::MapExtractor(const map_t& map, std::string display_name)
    : map_(map), display_name_(std::move(display_name)) {
  if (display_name_.empty()) throw std::runtime_error("displayName cannot be empty");
}

const data_t& MapExtractor::doGet(const data_t& key) const {
  const map_t::const_iterator entry = map_.find(key);
  if (entry == map_.end()) {
    throw std::runtime_error("Key '" + stringifyKey(key) + "' not found in " + display_name_);
  }
  const data_t& value = (*entry).second;
  if (value.empty()) {
    throw std::runtime_error("Key '" + stringifyKey(key) + "' has an empty value in " +
                             display_name_);
  }
  return value;
}

template <>
std::string MapExtractor::get<std::string>(const data_t& key,
                                           const std::string& default_value) const {
  try {
    return convert_to<std::string>(doGet(key));
  } catch (const std::exception&) {
    return default_value;
  }
}

std::string MapExtractor::stringifyKey(const data_t& key) { return to_string(key); }

} // namespace com::velanto::connectivity
