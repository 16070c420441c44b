#include "tools/explain/links.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <unordered_map>
#include <utility>

namespace com::velanto::connectivity::tools {

namespace {

// The place of the value of `node` in `trace`, in its own block.
std::vector<path_t> pathsOfBlock(const Trace& trace, const node_t& node) {
  std::vector<path_t> paths;
  if (node.block == nullptr) return paths;
  for (const node_t& other : trace.nodes()) {
    if (other.block == node.block && other.sameValue(node)) paths.push_back(other.path);
  }
  return paths;
}

bool contains(const std::vector<std::size_t>& numbers, std::size_t number) {
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

class Linker {
 public:
  Linker(Probe& probe, const answer_t& base) : probe_(probe), base_(base) {}

  links_t link() && {
    do {
      links_ = {};
      matchBlocks();
      for (source_t* const source : shallowFirst()) probeSource(*source);
    } while (std::exchange(mistaken_, false));
    askWithout();
    findReplaced();
    return std::move(links_);
  }

 private:
  void matchBlocks();
  void addOpenSources(const std::vector<char>& matched);
  [[nodiscard]] std::vector<source_t*> shallowFirst();
  void probeSource(source_t& source);
  void note(source_t& source, const answer_t& answer);
  void check(const source_t& moved, const answer_t& answer);
  void askWithout();
  void findReplaced();
  void findReplacedBy(std::size_t number);
  bool showsWithout(const source_t& lost, const source_t& other, const answer_t& without_other);

  [[nodiscard]] const node_t& nodeOf(const source_t& source) const {
    return base_.before[source.node];
  }

  Probe& probe_;
  const answer_t& base_;
  links_t links_;
  std::set<std::size_t> made_anew_; // nodes before whose block came out with another string
  bool mistaken_ = false;           // it has found one more of them
};

// From the top of the outcome down: a match settles a value and all values in it.
void Linker::matchBlocks() {
  std::unordered_map<const void*, std::size_t> before;
  const std::vector<node_t>& nodes = base_.before.nodes();
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i].block != nullptr) before.emplace(nodes[i].block, i);
  }
  std::vector<char> matched(nodes.size(), 0);
  for (std::size_t i = 0; i < base_.after.nodes().size();) {
    const node_t& node = base_.after[i];
    const auto found = before.find(node.block);
    const bool moved = node.block != nullptr && found != before.end() &&
                       matched[found->second] == 0 && !made_anew_.contains(found->second) &&
                       base_.before.same(found->second, base_.after, i, Trace::Compare::BLOCKS);
    if (moved) {
      const std::size_t from = found->second;
      std::fill(matched.begin() + static_cast<std::ptrdiff_t>(from),
                matched.begin() + static_cast<std::ptrdiff_t>(nodes[from].end), 1);
      links_.sources.push_back(source_t{from, true, {i}});
    } else if (node.isLeaf()) {
      links_.made.push_back(i);
    }
    i = moved ? node.end : i + 1;
  }
  addOpenSources(matched);
}

void Linker::addOpenSources(const std::vector<char>& matched) {
  for (std::size_t i = 0; i < matched.size(); ++i) {
    if (matched[i] == 0 && base_.before[i].isLeaf()) links_.sources.push_back(source_t{i});
  }
  std::sort(links_.sources.begin(), links_.sources.end(),
            [](const source_t& one, const source_t& two) { return one.node < two.node; });
}

// Of a message too large for all, it follows the fields at the top rather than deep ones.
std::vector<source_t*> Linker::shallowFirst() {
  std::vector<source_t*> sources;
  sources.reserve(links_.sources.size());
  for (source_t& source : links_.sources) sources.push_back(&source);
  std::stable_sort(sources.begin(), sources.end(),
                   [this](const source_t* one, const source_t* two) {
                     return nodeOf(*one).path.size() < nodeOf(*two).path.size();
                   });
  return sources;
}

// Runs the message with `source` changed in one way after the other: each may show something else.
void Linker::probeSource(source_t& source) {
  if (links_.made.empty() && source.moved) return;
  const path_t& path = nodeOf(source).path;
  const data_t* const value = valueAt(probe_.message(), path);
  std::vector<change_t> changes;
  if (value != nullptr) {
    for (data_t& changed : changedValues(*value)) changes.push_back({path, std::move(changed)});
  }
  if (changes.empty()) changes.push_back(change_t::removal(path));
  for (const change_t& change : changes) {
    const std::optional<answer_t> answer = probe_.ask(change);
    if (!answer) {
      source.followed = false;
      return;
    }
    if (!answer->cameOut()) continue;
    if (source.moved) check(source, *answer);
    note(source, *answer);
  }
  std::erase_if(source.carried,
                [&](std::size_t number) { return contains(source.shaped, number); });
}

// Notes which of the made leaves differ in `answer`, which is with `source` changed.
void Linker::note(source_t& source, const answer_t& answer) {
  const node_t& was = nodeOf(source);
  const node_t* const is = answer.before.find(was.path); // null: the change was to leave it out
  for (const std::size_t number : links_.made) {
    const node_t& before = base_.after[number];
    const node_t* const after = answer.after.find(before.path);
    if (after != nullptr && after->sameValue(before)) continue;
    const bool follows =
        is == nullptr ? after == nullptr : after != nullptr && after->sameValue(*is);
    std::vector<std::size_t>& numbers =
        before.sameValue(was) && follows ? source.carried : source.shaped;
    if (!contains(numbers, number)) numbers.push_back(number);
  }
  source.steers = source.steers || !answer.after.sameContent(base_.after);
}

// Whether the match of `moved` is right: otherwise it does not come out in its new block either.
void Linker::check(const source_t& moved, const answer_t& answer) {
  const node_t* const is = answer.before.find(nodeOf(moved).path);
  if (is == nullptr || !is->isLeaf()) return;
  const node_t* const there = answer.after.find(base_.after[moved.carried.front()].path);
  if (there != nullptr && there->sameValue(*is)) return;
  if (!pathsOfBlock(answer.after, *is).empty()) return;
  made_anew_.insert(moved.node);
  mistaken_ = true;
}

void Linker::askWithout() {
  for (source_t& source : links_.sources) {
    if (!source.isLost()) continue;
    const std::optional<answer_t> answer = probe_.ask(change_t::removal(nodeOf(source).path));
    if (!answer) return;
    if (!answer->cameOut()) {
      source.without = Without::DROPPED;
    } else if (answer->passed()) {
      source.without = Without::PASSED;
    } else if (source.steers || !answer->after.sameContent(base_.after)) {
      source.without = Without::DIFFERENT;
    }
  }
}

void Linker::findReplaced() {
  const auto lost = [](const source_t& source) { return source.isLost(); };
  if (std::none_of(links_.sources.begin(), links_.sources.end(), lost)) return;
  for (std::size_t i = 0; i < links_.sources.size(); ++i) {
    if (!links_.sources[i].isLost() && links_.sources[i].followed) findReplacedBy(i);
  }
}

void Linker::findReplacedBy(std::size_t number) {
  const source_t& other = links_.sources[number];
  const std::optional<answer_t> answer = probe_.ask(change_t::removal(nodeOf(other).path));
  if (!answer || !answer->cameOut() || answer->passed()) return;
  for (source_t& source : links_.sources) {
    if (!source.isLost() || source.replaced_by) continue;
    if (showsWithout(source, other, *answer)) source.replaced_by = number;
  }
}

// The places where `lost` may have come out without `other`: the place of its block, and the place
// of `other`. A plug-in may also have freed a block and used it again, so only a change proves it.
bool Linker::showsWithout(const source_t& lost, const source_t& other,
                          const answer_t& without_other) {
  constexpr std::size_t TRIES = 3; // changes
  const node_t* const node = without_other.before.find(nodeOf(lost).path);
  if (node == nullptr) return false;
  std::vector<path_t> places = pathsOfBlock(without_other.after, *node);
  const bool has_block = !places.empty();
  for (const std::vector<std::size_t>* numbers : {&other.carried, &other.shaped}) {
    for (const std::size_t number : *numbers) places.push_back(base_.after[number].path);
  }
  std::erase_if(places,
                [&](const path_t& path) { return without_other.after.find(path) == nullptr; });
  if (places.empty()) return false;
  bool came_out = false;
  std::vector<data_t> values = changedValues(*valueAt(probe_.message(), node->path));
  values.resize(std::min(values.size(), TRIES));
  for (data_t& value : values) {
    const std::array<change_t, 2> changes = {change_t::removal(nodeOf(other).path),
                                             change_t{node->path, std::move(value)}};
    const std::optional<answer_t> answer = probe_.ask(changes);
    if (!answer || !answer->cameOut()) continue;
    came_out = true;
    const auto differs = [&](const path_t& path) {
      return !answer->after.sameBelow(path, without_other.after);
    };
    if (std::any_of(places.begin(), places.end(), differs)) return true;
  }
  return has_block && !came_out;
}

} // namespace

bool links_t::complete() const noexcept {
  return std::all_of(sources.begin(), sources.end(),
                     [](const source_t& source) { return source.followed; });
}

links_t linksOf(Probe& probe, const answer_t& base) { return Linker(probe, base).link(); }

} // namespace com::velanto::connectivity::tools
