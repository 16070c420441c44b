#include "tools/explain/rows.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace com::velanto::connectivity::tools {

namespace {

place_t placeOf(const node_t& node) { return {node.path, node.json}; }

Fate fateOfMove(const path_t& from, const path_t& to) {
  constexpr std::size_t TOP = 2; // steps: the payload or the metadata, and a name in it
  if (from == to) return Fate::UNCHANGED;
  const bool among_its_own = from.size() > 1 && to.size() > 1 && parentOf(from) == parentOf(to);
  return among_its_own || to.size() <= TOP ? Fate::RENAMED : Fate::GATHERED;
}

class RowMaker {
 public:
  RowMaker(const answer_t& base, const links_t& links) : base_(base), links_(links) {}

  std::vector<row_t> make() && {
    findCarriers();
    addMoves();
    addConversions();
    addReplaced();
    addLost();
    addLeftovers();
    std::stable_sort(rows_.begin(), rows_.end(), [](const row_t& one, const row_t& two) {
      const auto key = [](const row_t& row) {
        return std::tie(row.fate, row.from.empty() ? row.to.front().path : row.from.front().path);
      };
      return key(one) < key(two);
    });
    return std::move(rows_);
  }

 private:
  using numbers_t = std::vector<std::size_t>;

  void findCarriers();
  void addMoves();
  void addConversions();
  void addReplaced();
  void addLost();
  void addLeftovers();
  [[nodiscard]] numbers_t ownersOf(const node_t& node) const;

  [[nodiscard]] const node_t& before(std::size_t source) const {
    return base_.before[links_.sources[source].node];
  }
  row_t& add(Fate fate) { return rows_.emplace_back(row_t{fate, {}, {}, {}}); }

  const answer_t& base_;
  const links_t& links_;
  std::map<std::size_t, numbers_t> carriers_; // of a node after: the sources that it is
  std::map<std::size_t, numbers_t> shapers_;  // the sources of its value
  std::set<std::size_t> told_from_;           // sources and
  std::set<std::size_t> told_to_;             // nodes after that have a row
  std::vector<row_t> rows_;
};

// A value that seems to be several values at once is none of them, but made from all.
void RowMaker::findCarriers() {
  for (std::size_t i = 0; i < links_.sources.size(); ++i) {
    for (const std::size_t node : links_.sources[i].carried) carriers_[node].push_back(i);
    for (const std::size_t node : links_.sources[i].shaped) shapers_[node].push_back(i);
  }
  for (auto carried = carriers_.begin(); carried != carriers_.end();) {
    if (carried->second.size() == 1) {
      ++carried;
      continue;
    }
    numbers_t& shapers = shapers_[carried->first];
    shapers.insert(shapers.end(), carried->second.begin(), carried->second.end());
    carried = carriers_.erase(carried);
  }
}

// A value that came out at several places belongs to its old place, or else to its new one.
void RowMaker::addMoves() {
  for (std::size_t i = 0; i < links_.sources.size(); ++i) {
    const source_t& source = links_.sources[i];
    numbers_t places = source.carried;
    std::erase_if(places, [this](std::size_t node) { return !carriers_.contains(node); });
    if (places.empty()) continue;
    const auto home = std::find_if(places.begin(), places.end(), [&](std::size_t node) {
      return base_.after[node].path == before(i).path;
    });
    if (home != places.end()) std::iter_swap(places.begin(), home);
    const node_t& first = base_.after[places.front()];
    row_t& row = add(fateOfMove(before(i).path, first.path));
    row.from = {placeOf(before(i))};
    row.to = {placeOf(first)};
    row.new_block = first.block != nullptr && before(i).block != nullptr && before(i).isLeaf() &&
                    first.block != before(i).block;
    told_from_.insert(i);
    told_to_.insert(places.begin(), places.end());
    for (std::size_t k = 1; k < places.size(); ++k) {
      row_t& copy = add(Fate::COPIED);
      copy.to = {placeOf(base_.after[places[k]])};
      copy.with = {placeOf(before(i))};
    }
  }
}

// Rows that share a field without a fate become one.
void RowMaker::addConversions() {
  struct conversion_t {
    std::set<std::size_t> from;
    std::set<std::size_t> to;
    std::set<std::size_t> with;
  };
  std::vector<conversion_t> conversions;
  for (const auto& [node, shapers] : shapers_) {
    if (told_to_.contains(node)) continue;
    conversion_t conversion{{}, {node}, {}};
    for (const std::size_t source : shapers) {
      (told_from_.contains(source) ? conversion.with : conversion.from).insert(source);
    }
    std::erase_if(conversions, [&](conversion_t& other) {
      const bool shared = std::any_of(other.from.begin(), other.from.end(), [&](std::size_t one) {
        return conversion.from.contains(one);
      });
      if (!shared) return false;
      conversion.from.merge(other.from);
      conversion.to.merge(other.to);
      conversion.with.merge(other.with);
      return true;
    });
    conversions.push_back(std::move(conversion));
  }
  for (const conversion_t& conversion : conversions) {
    row_t& row = add(Fate::CONVERTED);
    for (const std::size_t source : conversion.from) row.from.push_back(placeOf(before(source)));
    for (const std::size_t node : conversion.to) row.to.push_back(placeOf(base_.after[node]));
    for (const std::size_t source : conversion.with) row.with.push_back(placeOf(before(source)));
    told_from_.insert(conversion.from.begin(), conversion.from.end());
    told_to_.insert(conversion.to.begin(), conversion.to.end());
  }
}

// The sources that are a node after, or that it is made from.
RowMaker::numbers_t RowMaker::ownersOf(const node_t& node) const {
  const auto number = static_cast<std::size_t>(&node - base_.after.nodes().data());
  if (const auto found = carriers_.find(number); found != carriers_.end()) return found->second;
  if (const auto found = shapers_.find(number); found != shapers_.end()) return found->second;
  return {};
}

// The value at its own place replaces a lost value, or the value that keeps it from coming out.
void RowMaker::addReplaced() {
  for (std::size_t i = 0; i < links_.sources.size(); ++i) {
    const source_t& source = links_.sources[i];
    if (!source.followed || told_from_.contains(i)) continue;
    const node_t* const there = base_.after.find(before(i).path);
    if (!source.replaced_by && (there == nullptr || !there->isLeaf())) continue;
    row_t& row = add(Fate::REPLACED);
    row.from = {placeOf(before(i))};
    row.without = source.without;
    told_from_.insert(i);
    if (source.replaced_by) {
      row.with = {placeOf(before(*source.replaced_by))};
      continue;
    }
    const numbers_t owners = ownersOf(*there);
    for (const std::size_t owner : owners) row.with.push_back(placeOf(before(owner)));
    const auto number = static_cast<std::size_t>(there - base_.after.nodes().data());
    if (owners.empty() && told_to_.insert(number).second) row.to = {placeOf(*there)};
  }
}

// A list or map that is lost with all its content is one row.
void RowMaker::addLost() {
  std::map<std::size_t, Without> lost; // leaves before
  for (std::size_t i = 0; i < links_.sources.size(); ++i) {
    const source_t& source = links_.sources[i];
    if (!source.followed || told_from_.contains(i)) continue;
    lost.emplace(source.node, source.without);
    told_from_.insert(i);
  }
  const std::vector<node_t>& nodes = base_.before.nodes();
  for (std::size_t i = 0; i < nodes.size();) {
    const bool below_root = nodes[i].path.size() > 1;
    bool whole = below_root || nodes[i].isLeaf();
    for (std::size_t k = i; whole && k < nodes[i].end; ++k) {
      if (!nodes[k].isLeaf()) continue;
      const auto found = lost.find(k);
      whole = found != lost.end() && (nodes[i].isLeaf() || found->second == Without::SAME);
    }
    if (whole) {
      row_t& row = add(Fate::LOST);
      row.from = {placeOf(nodes[i])};
      if (nodes[i].isLeaf()) row.without = lost.at(i);
    }
    i = whole ? nodes[i].end : i + 1;
  }
}

// A value without any link was added, provided that everything has been tried.
void RowMaker::addLeftovers() {
  row_t unknown{Fate::UNKNOWN, {}, {}, {}};
  for (std::size_t i = 0; i < links_.sources.size(); ++i) {
    if (!told_from_.contains(i)) unknown.from.push_back(placeOf(before(i)));
  }
  for (const std::size_t node : links_.made) {
    if (told_to_.contains(node)) continue;
    if (links_.complete()) {
      add(Fate::ADDED).to = {placeOf(base_.after[node])};
    } else {
      unknown.to.push_back(placeOf(base_.after[node]));
    }
  }
  if (!unknown.from.empty() || !unknown.to.empty()) rows_.push_back(std::move(unknown));
}

} // namespace

std::vector<row_t> rowsOf(const answer_t& base, const links_t& links) {
  return RowMaker(base, links).make();
}

std::vector<row_t> lostRowsOf(const Trace& before) {
  std::vector<row_t> rows;
  for (std::size_t i = 0; i < before.nodes().size();) {
    const node_t& node = before[i];
    const bool has_fields = node.path.size() == 1 && node.tag == VLT_TAG_MAP && !node.isLeaf();
    if (!has_fields) rows.push_back({Fate::LOST, {placeOf(node)}, {}, {}});
    i = has_fields ? i + 1 : node.end;
  }
  return rows;
}

} // namespace com::velanto::connectivity::tools
