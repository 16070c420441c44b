#include "tools/explain/trace.hpp"

#include <algorithm>
#include <utility>

#include "ndjson/json_writer.hpp"
#include "value/get_visitor.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity::tools {

namespace {

const void* blockOf(const data_t& value) noexcept {
  const vlt_underlying_data_t& raw = *value.underlying();
  switch (raw.tag) {
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return raw.value.string;
    case VLT_TAG_LIST:
      return raw.value.list;
    case VLT_TAG_MAP:
      return raw.value.map;
    case VLT_TAG_BUFFER:
      return raw.value.buffer;
    case VLT_TAG_CUSTOM:
      return raw.value.custom.object;
    default:
      return nullptr;
  }
}

std::string numbered(const char* root, std::size_t message) {
  return message == 0 ? root : std::string(root) + " " + std::to_string(message + 1);
}

} // namespace

Trace::Trace(std::span<const Message> messages) {
  path_t path(1);
  for (std::size_t i = 0; i < messages.size(); ++i) {
    const map_t& metadata = messages[i].getMetadataMap();
    if (metadata.empty()) continue;
    path.front().key = numbered(METADATA, i);
    nodes_.push_back({path, VLT_TAG_MAP, metadata.table(), "", 0});
    const std::size_t root = nodes_.size() - 1;
    addMap(path, metadata);
    nodes_[root].end = nodes_.size();
  }
  for (std::size_t i = 0; i < messages.size(); ++i) {
    path.front().key = numbered(PAYLOAD, i);
    if (!messages[i].getPayload().empty()) add(path, messages[i].getPayload());
  }
}

void Trace::add(path_t& path, const data_t& value) {
  const std::size_t number = nodes_.size();
  nodes_.push_back({path, value.type_tag(), blockOf(value), "", 0});
  if (value.type_tag() == VLT_TAG_MAP && !value.get<map_t>().empty()) {
    addMap(path, value.get<map_t>());
  } else if (value.type_tag() == VLT_TAG_LIST && value.get<list_t>().size() > 0) {
    addList(path, value.get<list_t>());
  } else {
    writeJson(nodes_[number].json, value);
  }
  nodes_[number].end = nodes_.size();
}

void Trace::addMap(path_t& path, const map_t& map) {
  std::vector<std::pair<std::string, const data_t*>> entries;
  entries.reserve(map.size());
  for (const auto& [key, value] : map) {
    entries.emplace_back(key.is_string() ? text_or_empty(key.get<const char*>()) : to_string(key),
                         &value);
  }
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& one, const auto& two) { return one.first < two.first; });
  path.emplace_back();
  for (auto& [name, value] : entries) {
    path.back().key = std::move(name);
    add(path, *value);
  }
  path.pop_back();
}

void Trace::addList(path_t& path, const list_t& list) {
  path.push_back({"", 0, true});
  for (std::size_t i = 0; i < list.size(); ++i) {
    path.back().index = i;
    add(path, list[i]);
  }
  path.pop_back();
}

const node_t* Trace::find(const path_t& path) const {
  const auto found =
      std::lower_bound(nodes_.begin(), nodes_.end(), path,
                       [](const node_t& node, const path_t& wanted) { return node.path < wanted; });
  return found != nodes_.end() && found->path == path ? &*found : nullptr;
}

bool Trace::same(std::size_t number, const Trace& other, std::size_t of_other,
                 Compare compare) const {
  const std::size_t count = nodes_[number].end - number;
  if (other.nodes_[of_other].end - of_other != count) return false;
  const auto above = static_cast<std::ptrdiff_t>(nodes_[number].path.size());
  const auto above_other = static_cast<std::ptrdiff_t>(other.nodes_[of_other].path.size());
  for (std::size_t i = 0; i < count; ++i) {
    const node_t& one = nodes_[number + i];
    const node_t& two = other.nodes_[of_other + i];
    if (!one.sameValue(two) || (compare == Compare::BLOCKS && one.block != two.block)) return false;
    if (!std::equal(one.path.begin() + above, one.path.end(), two.path.begin() + above_other,
                    two.path.end())) {
      return false;
    }
  }
  return true;
}

bool Trace::sameBelow(const path_t& path, const Trace& other) const {
  const node_t* const here = find(path);
  const node_t* const there = other.find(path);
  if (here == nullptr || there == nullptr) return here == there;
  return same(static_cast<std::size_t>(here - nodes_.data()), other,
              static_cast<std::size_t>(there - other.nodes_.data()), Compare::CONTENT);
}

std::size_t Trace::effort() const noexcept {
  constexpr std::size_t STEPS = 64;  // of a path, that take as long as a node,
  constexpr std::size_t BYTES = 256; // and of a value
  std::size_t steps = 0;
  std::size_t bytes = 0;
  for (const node_t& node : nodes_) {
    steps += node.path.size();
    bytes += node.json.size();
  }
  return nodes_.size() + steps / STEPS + bytes / BYTES;
}

bool Trace::sameContent(const Trace& other) const {
  return std::equal(nodes_.begin(), nodes_.end(), other.nodes_.begin(), other.nodes_.end(),
                    [](const node_t& one, const node_t& two) {
                      return one.path == two.path && one.sameValue(two);
                    });
}

} // namespace com::velanto::connectivity::tools
