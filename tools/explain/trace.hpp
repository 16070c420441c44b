// The places of all values of messages at one moment: every value with its path, its kind and the
// block that holds it. One is made before the plug-in gets a message, and one of the outcome; a
// block that is in both has moved, and is not new.
//
//   leaf        a value without values in it: a scalar, or an empty list or map
//   container   a list or map that is not empty; its values follow it, sorted by their paths
//
// The metadata as a whole and a payload that is absent are no leaves: nothing is there.
#ifndef VLT_TOOLS_EXPLAIN_TRACE_HPP
#define VLT_TOOLS_EXPLAIN_TRACE_HPP

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tools/explain/path.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

struct node_t {
  path_t path;
  std::uint32_t tag;
  const void* block; // null: the value has none. Only to compare: it may be gone by now
  std::string json;  // of a leaf, exact; empty for a container
  std::size_t end;   // the number of the first node after this one and all within it

  [[nodiscard]] bool isLeaf() const noexcept { return !json.empty(); }
  [[nodiscard]] bool sameValue(const node_t& other) const noexcept {
    return tag == other.tag && json == other.json;
  }
};

class Trace {
 public:
  Trace() = default;
  // Of several messages, the second is below "metadata 2" and "payload 2", and so on.
  explicit Trace(std::span<const Message> messages);
  explicit Trace(const Message& message) : Trace(std::span(&message, 1)) {}

  // Sorted by their paths.
  [[nodiscard]] const std::vector<node_t>& nodes() const noexcept { return nodes_; }
  [[nodiscard]] const node_t& operator[](std::size_t number) const { return nodes_[number]; }
  // Null when nothing is there.
  [[nodiscard]] const node_t* find(const path_t& path) const;

  // Whether the values below two nodes, here and in `other`, are the same and in the same blocks;
  // the latter does not matter when only the content counts.
  enum class Compare { CONTENT, BLOCKS };
  [[nodiscard]] bool same(std::size_t number, const Trace& other, std::size_t of_other,
                          Compare compare) const;
  // Whether both have the same content at `path`, or nothing.
  [[nodiscard]] bool sameBelow(const path_t& path, const Trace& other) const;
  // The same for all there is, paths included.
  [[nodiscard]] bool sameContent(const Trace& other) const;

  // How much looking at it takes, in nodes with a short path and a small value.
  [[nodiscard]] std::size_t effort() const noexcept;

 private:
  void add(path_t& path, const data_t& value);
  void addMap(path_t& path, const map_t& map);
  void addList(path_t& path, const list_t& list);

  std::vector<node_t> nodes_;
};

} // namespace com::velanto::connectivity::tools

#endif
