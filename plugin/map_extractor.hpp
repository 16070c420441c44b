// Reads settings out of a plug-in's configuration, with errors that name the key and the section.
#ifndef VLT_PLUGIN_MAP_EXTRACTOR_HPP
#define VLT_PLUGIN_MAP_EXTRACTOR_HPP

#include <string>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

class MapExtractor {
 public:
  // `map` is not copied and must outlive the extractor. Throws std::runtime_error "displayName
  // cannot be empty".
  MapExtractor(const map_t& map, std::string display_name);

  // The value under `key`. Throws std::runtime_error "Key 'KEY' not found in NAME" or "Key 'KEY'
  // has an empty value in NAME".
  [[nodiscard]] const data_t& doGet(const data_t& key) const;

  // The value under `key` converted to T, or the default. The latter for a value that is absent,
  // empty or not convertible, for any reason, lack of memory included. Defined for std::string.
  template <class T>
  [[nodiscard]] T get(const data_t& key, const T& default_value) const;

  // The key's display text.
  [[nodiscard]] static std::string stringifyKey(const data_t& key);

 private:
  const map_t& map_;
  std::string display_name_;
};

template <>
[[nodiscard]] std::string MapExtractor::get<std::string>(const data_t& key,
                                                         const std::string& default_value) const;

} // namespace com::velanto::connectivity

#endif
