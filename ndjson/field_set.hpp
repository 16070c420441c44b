// A set of places in messages, each given as a path, as a tree of names that a writer goes down
// together with the message:
//
//   source.name, payload.source.name   a field of the payload, and everything in it
//   metadata."vlt.type"                one of the metadata; in quotes, escaped as in JSON, any name
//                                      but letters, digits, _ and -
//   contacts.name                      a list is at the place of its elements: the name of each
//                                      contact
//   payload, metadata                  all of it; in quotes, a field of the payload by that name
#ifndef VLT_NDJSON_FIELD_SET_HPP
#define VLT_NDJSON_FIELD_SET_HPP

#include <forward_list> // std::vector asks for the C++ library of GCC 11
#include <string>
#include <string_view>

namespace com::velanto::connectivity {

class FieldSet {
 public:
  struct node_t {
    std::string name;
    bool is_listed = false;
    std::forward_list<node_t> fields;
  };
  // A node, or null where nothing is in the set. Valid until the next add, and while the set is.
  using place_t = const node_t*;

  FieldSet() : payload_{"payload", false, {}}, metadata_{"metadata", false, {}} {}

  // Throws std::invalid_argument "path '…': reason", std::bad_alloc; nothing is added then.
  void add(std::string_view path);

  // The place of the values that `path`, once added, stands for: its own, or that of a shorter path
  // in the set. Null when neither is. Throws as add does.
  [[nodiscard]] place_t at(std::string_view path) const;

  [[nodiscard]] place_t payload() const noexcept { return &payload_; }
  [[nodiscard]] place_t metadata() const noexcept { return &metadata_; }

  // The place of the entry `name` of a map at `place`.
  [[nodiscard]] static place_t below(place_t place, std::string_view name) noexcept {
    if (place == nullptr || place->is_listed) return place;
    for (const node_t& field : place->fields) {
      if (field.name == name) return &field;
    }
    return nullptr;
  }
  // Whether a value there is in the set.
  [[nodiscard]] static bool covers(place_t place) noexcept {
    return place != nullptr && place->is_listed;
  }

 private:
  node_t payload_;
  node_t metadata_;
};

} // namespace com::velanto::connectivity

#endif
