#include "tools/explain/faults.hpp"

#include <algorithm>
#include <cstdint>
#include <set>
#include <tuple>
#include <utility>

#include "ndjson/json_writer.hpp"
#include "tools/explain/echo.hpp"
#include "tools/explain/mending.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t MOST_FAULTS = 4;     // in one message
constexpr std::size_t MOST_RUNS = 1500;    // for one message
constexpr std::size_t MOST_SUSPECTS = 100; // values of a message that it looks at
constexpr std::size_t MOST_CHANGES = 4;    // of one value
constexpr std::size_t MOST_CANDIDATES = 6; // to go on from one state

bool contains(const std::vector<path_t>& paths, const path_t& path) {
  return std::find(paths.begin(), paths.end(), path) != paths.end();
}

// A scalar as a log line would show it.
std::string plainText(const data_t& value) {
  if (value.is_string()) return text_or_empty(value.get<const char*>());
  std::string json;
  writeJson(json, value);
  return json;
}

struct mending_t {
  change_t change;
  std::string defect; // of the value that it replaces, if it names one
};

// A state of the message on the way to one that comes out: the changes so far, and the log lines
// with them.
class Stage {
 public:
  Stage(Probe& probe, std::vector<change_t> changes, const answer_t& answer)
      : probe_(probe),
        changes_(std::move(changes)),
        answer_(answer),
        message_(copyOf(probe.message())),
        reason_(answer.log) {
    for (const change_t& change : changes_) apply(message_, change);
    findSuspects();
  }

  // Whether at most `faults_left` mendings lead to a message that comes out; `faults` then has
  // them.
  bool solve(std::size_t faults_left, std::vector<faulty_place_t>& faults);

  // From now on it tries to mend every leaf.
  void suspectAll();

  // The ones with the closest link to the log lines, among all that it tried to mend.
  [[nodiscard]] std::vector<faulty_place_t> suspects() const;

 private:
  struct candidate_t {
    mending_t mending;
    answer_t answer;
  };

  void findSuspects();
  void look(const node_t& leaf);
  bool isOnlyMentioned(const path_t& path);
  [[nodiscard]] std::vector<mending_t> mendings() const;
  void addMissing(std::vector<mending_t>& mendings) const;
  [[nodiscard]] std::optional<answer_t> askWith(const change_t& change);
  [[nodiscard]] bool saysSomethingElse(const change_t& change, const answer_t& answer) const;
  [[nodiscard]] faulty_place_t faultAt(const path_t& path) const;
  [[nodiscard]] faulty_place_t faultOf(const mending_t& mending) const;

  Probe& probe_;
  std::vector<change_t> changes_;
  const answer_t& answer_;
  Message message_;
  std::string reason_;             // the log text without its parts of no importance
  std::vector<std::string> names_; // quoted in it
  std::vector<path_t> named_;      // the value under one of them, or a value that the text repeats
  std::vector<path_t> altering_;   // leaves that change the text
  std::vector<path_t> leaves_;
  std::vector<path_t> suspects_;        // that it tries to mend
  std::vector<candidate_t> candidates_; // changes that lead to another reason
};

std::optional<answer_t> Stage::askWith(const change_t& change) {
  if (probe_.runs() >= MOST_RUNS) return std::nullopt;
  changes_.push_back(change);
  std::optional<answer_t> answer = probe_.ask(changes_);
  changes_.pop_back();
  return answer;
}

void Stage::findSuspects() {
  for (const node_t& node : answer_.before.nodes()) {
    if (!node.isLeaf() || leaves_.size() == MOST_SUSPECTS) continue;
    leaves_.push_back(node.path);
    look(node);
  }
  std::erase_if(named_, [this](const path_t& path) { return isOnlyMentioned(path); });
  names_ = quotedNames(reason_);
  for (const node_t& node : answer_.before.nodes()) {
    if (node.path.size() < 2 || contains(named_, node.path)) continue;
    if (std::find(names_.begin(), names_.end(), node.path.back().key) == names_.end()) continue;
    named_.push_back(node.path);
  }
  suspects_ = named_;
  if (named_.empty()) suspectAll();
}

void Stage::suspectAll() {
  for (const path_t& path : leaves_) {
    if (!contains(suspects_, path)) suspects_.push_back(path);
  }
}

void Stage::look(const node_t& leaf) {
  const data_t& value = *valueAt(message_, leaf.path);
  std::vector<data_t> values = changedValues(value);
  values.resize(std::min(values.size(), MOST_CHANGES));
  for (data_t& changed : values) {
    const std::string text = plainText(changed);
    const std::optional<answer_t> answer = askWith({leaf.path, std::move(changed)});
    if (!answer || (answer->log == answer_.log && !answer->cameOut())) continue;
    const bool repeated = isEcho(answer_.log, answer->log, plainText(value), text);
    (repeated ? named_ : altering_).push_back(leaf.path);
    return;
  }
}

// Whether the log has the same reason without the value at `path`, when that is of another kind;
// the reason is then known without it.
bool Stage::isOnlyMentioned(const path_t& path) {
  const std::string text = plainText(*valueAt(message_, path));
  std::optional<answer_t> answer = askWith({path, data_t(true)});
  if (!answer || answer->cameOut()) return false;
  if (!isWithoutMention(answer_.log, answer->log, text)) return false;
  reason_ = std::move(answer->log);
  return true;
}

std::vector<faulty_place_t> Stage::suspects() const {
  std::vector<path_t> paths = named_;
  const auto add_candidates = [&](bool missing) {
    for (const candidate_t& candidate : candidates_) {
      const path_t& path = candidate.mending.change.path;
      const bool is_missing = answer_.before.find(path) == nullptr;
      if (is_missing == missing && !contains(paths, path)) paths.push_back(path);
    }
  };
  add_candidates(true);
  if (paths.empty()) paths = altering_;
  if (paths.empty()) add_candidates(false);
  std::vector<faulty_place_t> suspects;
  suspects.reserve(paths.size());
  for (const path_t& path : paths) suspects.push_back(faultAt(path));
  return suspects;
}

std::vector<mending_t> Stage::mendings() const {
  std::vector<mending_t> mendings;
  addMissing(mendings);
  for (const path_t& path : suspects_) {
    for (mended_t& mended : mendedValues(*valueAt(message_, path))) {
      mendings.push_back({{path, std::move(mended.value)}, std::move(mended.defect)});
    }
  }
  const std::vector<std::size_t> donors = differentLeaves(answer_.before);
  for (const path_t& path : suspects_) {
    for (const std::size_t donor : donors) {
      const path_t& from = answer_.before[donor].path;
      if (from != path) mendings.push_back({{path, *valueAt(message_, from)}, ""});
    }
  }
  return mendings;
}

// A quoted name into each map that does not have it.
void Stage::addMissing(std::vector<mending_t>& mendings) const {
  const std::vector<std::size_t> donors = differentLeaves(answer_.before);
  std::size_t maps = 0;
  for (const node_t& node : answer_.before.nodes()) {
    if (node.tag != VLT_TAG_MAP || ++maps > MOST_SUSPECTS) continue;
    for (const std::string& name : names_) {
      path_t path = node.path;
      path.push_back({name});
      if (answer_.before.find(path) != nullptr) continue;
      for (data_t& value : anyValues()) mendings.push_back({{path, std::move(value)}, ""});
      for (const std::size_t donor : donors) {
        mendings.push_back({{path, *valueAt(message_, answer_.before[donor].path)}, ""});
      }
    }
  }
}

bool Stage::saysSomethingElse(const change_t& change, const answer_t& answer) const {
  if (answer.cameOut() || answer.log == answer_.log) return false;
  const data_t* const old_value = valueAt(message_, change.path);
  if (old_value == nullptr) return true;
  const std::string old_text = plainText(*old_value);
  return !isEcho(answer_.log, answer.log, old_text, plainText(*change.value)) &&
         !isWithoutMention(answer_.log, answer.log, old_text);
}

faulty_place_t Stage::faultAt(const path_t& path) const {
  const node_t* const found = answer_.before.find(path);
  return {path, found == nullptr ? "" : found->json, found == nullptr};
}

faulty_place_t Stage::faultOf(const mending_t& mending) const {
  faulty_place_t fault = faultAt(mending.change.path);
  writeJson(fault.mended, *mending.change.value);
  fault.defect = mending.defect;
  return fault;
}

bool Stage::solve(std::size_t faults_left, std::vector<faulty_place_t>& faults) {
  std::set<std::tuple<std::string, path_t, std::uint32_t>> tried; // reason, place, kind
  candidates_.clear();
  for (const mending_t& mending : mendings()) {
    const change_t& change = mending.change;
    std::optional<answer_t> answer = askWith(change);
    if (!answer) return false;
    if (answer->cameOut() && !answer->passed()) {
      faults.insert(faults.begin(), faultOf(mending));
      return true;
    }
    if (candidates_.size() == MOST_CANDIDATES || !saysSomethingElse(change, *answer)) continue;
    if (tried.emplace(answer->log, change.path, change.value->type_tag()).second) {
      candidates_.push_back({mending, std::move(*answer)});
    }
  }
  if (faults_left == 1) return false;
  for (const candidate_t& candidate : candidates_) {
    std::vector<change_t> changes = changes_;
    changes.push_back(candidate.mending.change);
    Stage next(probe_, std::move(changes), candidate.answer);
    if (!next.solve(faults_left - 1, faults)) continue;
    faults.insert(faults.begin(), faultOf(candidate.mending));
    return true;
  }
  return false;
}

} // namespace

// Few faults are likelier than many, so they come first.
blame_t blameFor(Probe& probe, const answer_t& base) {
  Stage stage(probe, {}, base);
  blame_t blame;
  if (stage.solve(1, blame.faults)) return blame;
  std::vector<faulty_place_t> suspects = stage.suspects();
  stage.suspectAll();
  for (std::size_t faults = 1; faults <= MOST_FAULTS; ++faults) {
    if (stage.solve(faults, blame.faults)) return blame;
  }
  blame.suspects = std::move(suspects);
  return blame;
}

} // namespace com::velanto::connectivity::tools
