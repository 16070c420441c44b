// The places of a message whose strings a recording leaves out, as a tree of names that the writer
// goes down together with the message:
//
//   payload.text              the member "text", and everything in it
//   metadata."vlt.type"       in quotes, escaped as in JSON: names other than letters, digits, _, -
//   payload.contacts.name     a list has the place of its elements: "name" of each contact
//
// A path begins with payload or metadata, and may end there.
#ifndef VLT_NDJSON_OMISSION_HPP
#define VLT_NDJSON_OMISSION_HPP

#include <forward_list> // std::vector asks for the C++ library of GCC 11
#include <string>
#include <string_view>

namespace com::velanto::connectivity {

class Omission {
 public:
  struct node_t {
    std::string name;
    bool is_omitted = false;
    std::forward_list<node_t> members;
  };
  // A node, or null where nothing is left out. Valid until the next add, and while the object is.
  using place_t = const node_t*;

  // Leaves nothing out.
  Omission() : payload_{"payload", false, {}}, metadata_{"metadata", false, {}} {}

  // Throws std::invalid_argument "path '…': reason", std::bad_alloc; nothing is added then.
  void add(std::string_view path);

  [[nodiscard]] place_t payload() const noexcept { return &payload_; }
  [[nodiscard]] place_t metadata() const noexcept { return &metadata_; }

  // The place of the member `name` of a map at `place`.
  [[nodiscard]] static place_t below(place_t place, std::string_view name) noexcept {
    if (place == nullptr || place->is_omitted) return place;
    for (const node_t& member : place->members) {
      if (member.name == name) return &member;
    }
    return nullptr;
  }
  // Whether a string there is left out.
  [[nodiscard]] static bool covers(place_t place) noexcept {
    return place != nullptr && place->is_omitted;
  }

 private:
  node_t payload_;
  node_t metadata_;
};

} // namespace com::velanto::connectivity

#endif
