#include "ndjson/field_set.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <list>
#include <stdexcept>

namespace com::velanto::connectivity {

namespace {

[[noreturn]] void refuse(std::string_view path, const std::string& reason) {
  throw std::invalid_argument("path '" + std::string(path) + "': " + reason);
}

bool isPlain(char c) noexcept {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
}

// Takes the names off a path, one by one.
class PathReader {
 public:
  explicit PathReader(std::string_view path) noexcept : path_(path) {}

  // From "payload" or "metadata" down.
  std::list<std::string> names() {
    std::list<std::string> result{name()};
    while (at_ < path_.size()) {
      if (path_[at_] == '[') refuse(path_, "a list has no index here, all its elements count");
      if (path_[at_] != '.') refuse(path_, "expected a dot at byte " + place());
      ++at_;
      result.push_back(name());
    }
    const bool has_root =
        path_[0] != '"' && (result.front() == "payload" || result.front() == "metadata");
    if (!has_root) result.emplace_front("payload");
    return result;
  }

 private:
  [[nodiscard]] std::string place() const { return std::to_string(at_ + 1); }

  std::string name() {
    if (at_ < path_.size() && path_[at_] == '"') return quoted();

    const std::size_t begin = at_;
    while (at_ < path_.size() && isPlain(path_[at_])) ++at_;
    if (at_ == begin) refuse(path_, "expected a name at byte " + place() + ", or one in quotes");
    return std::string(path_.substr(begin, at_ - begin));
  }

  std::string quoted() {
    std::string name;
    for (++at_; at_ < path_.size(); ++at_) {
      if (path_[at_] == '"') {
        ++at_;
        return name;
      }
      name += path_[at_] == '\\' ? escaped() : path_[at_];
    }
    refuse(path_, "expected a quote at its end");
  }

  // Stays on the last byte of the escape.
  char escaped() {
    constexpr std::string_view LETTERS = "\"\\/bfnrt";
    constexpr std::string_view MEANINGS = "\"\\/\b\f\n\r\t";
    const std::size_t begin = at_++;
    if (at_ < path_.size()) {
      const std::size_t letter = LETTERS.find(path_[at_]);
      if (letter != std::string_view::npos) return MEANINGS[letter];
    }
    const std::string_view code = path_.substr(begin).substr(0, 6);
    unsigned value = 0x80; // ASCII only: other characters need no escape
    if (code.starts_with("\\u00")) {
      const std::from_chars_result end = std::from_chars(&code[4], code.end(), value, 16);
      if (end.ptr != code.end()) value = 0x80;
    }
    if (value >= 0x80) refuse(path_, "bad escape at byte " + std::to_string(begin + 1));
    at_ = begin + 5;
    return static_cast<char>(value);
  }

  std::string_view path_;
  std::size_t at_ = 0;
};

} // namespace

void FieldSet::add(std::string_view path) {
  std::list<std::string> names = PathReader(path).names();
  node_t* node = names.front() == payload_.name ? &payload_ : &metadata_;
  names.pop_front();
  for (const std::string& name : names) {
    std::forward_list<node_t>& fields = node->fields;
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const node_t& field) { return field.name == name; });
    node = found != fields.end() ? &*found : &fields.emplace_front(node_t{name, false, {}});
  }
  node->is_listed = true;
}

FieldSet::place_t FieldSet::at(std::string_view path) const {
  std::list<std::string> names = PathReader(path).names();
  place_t place = names.front() == payload_.name ? &payload_ : &metadata_;
  names.pop_front();
  for (const std::string& name : names) place = below(place, name);
  return place;
}

} // namespace com::velanto::connectivity
