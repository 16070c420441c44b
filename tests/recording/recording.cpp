#include "tests/recording/recording.hpp"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "ndjson/json_reader.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::test {

namespace {

const data_t* member(const data_t& object, const char* key) {
  return object.type_tag() == VLT_TAG_MAP ? object.get<map_t>().find_value(data_t(key)) : nullptr;
}

std::int64_t numberAt(const data_t& object, const char* key) {
  const data_t* const found = member(object, key);
  if (found == nullptr) throw std::runtime_error(std::string("no ") + key);
  return found->get<std::int64_t>();
}

void readRemark(const data_t& about, recorded_file_t& file) {
  if (const data_t* const head = member(about, "head")) {
    file.run = member(*head, "run")->get<const char*>();
  } else if (const data_t* const gap = member(about, "gap")) {
    file.numbers.push_back({numberAt(*gap, "first"), numberAt(*gap, "last"), -1});
    const numbers_t& last = file.numbers.back();
    if (numberAt(*gap, "lost") != last.last - last.first + 1) {
      throw std::runtime_error("a gap has another width than its loss");
    }
  } else if (const data_t* const foot = member(about, "foot")) {
    file.foot = {numberAt(*foot, "seen"), numberAt(*foot, "recorded"), numberAt(*foot, "filtered"),
                 numberAt(*foot, "lost"), member(*foot, "next") != nullptr};
  } else {
    throw std::runtime_error("an unknown remark");
  }
}

void readLine(const data_t& line, const std::string& text, recorded_file_t& file) {
  if (const data_t* const about = member(line, "recording")) return readRemark(*about, file);
  const data_t* const recorded = member(line, "recorded");
  if (recorded == nullptr) throw std::runtime_error("a line without a mark");
  const std::int64_t number = numberAt(*recorded, "number");
  file.numbers.push_back({number, number, numberAt(*recorded, "batch")});
  file.records.push_back(text);
}

recorded_file_t readFile(const std::filesystem::path& path) {
  recorded_file_t file;
  file.path = path;
  std::ifstream stream(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(stream), {}};
  file.bytes = content.size();
  JsonReader reader;
  std::size_t at = 0;
  for (std::size_t end = 0; (end = content.find('\n', at)) != std::string::npos; at = end + 1) {
    const std::string line = content.substr(at, end - at);
    readLine(reader.parseValue(line), line, file);
  }
  file.left_over = content.size() - at;
  return file;
}

// Follows the numbers of one life through its files.
class Follower {
 public:
  std::string follow(const recorded_file_t& file) {
    if (file.run.empty()) return file.numbers.empty() ? "" : "records without a head";
    if (file.run != run_) {
      run_ = file.run;
      last_ = -1; // of an unknown beginning
    }
    for (const numbers_t& numbers : file.numbers) {
      if (last_ >= 0 && numbers.first != last_ + 1) {
        return "number " + std::to_string(numbers.first) + " after " + std::to_string(last_);
      }
      last_ = numbers.last;
    }
    if (!file.foot) return "";
    std::string breach = judge(*file.foot);
    if (!file.foot->next) last_ = -1; // another recorder, or this one switched on again
    return breach;
  }

 private:
  [[nodiscard]] std::string judge(const foot_t& foot) const {
    if (foot.seen != foot.recorded + foot.filtered + foot.lost) return "a foot does not add up";
    if (last_ >= 0 && foot.seen != last_) {
      return "a foot has seen " + std::to_string(foot.seen) + " messages after number " +
             std::to_string(last_);
    }
    return "";
  }

  std::string run_;
  std::int64_t last_ = -1;
};

} // namespace

std::vector<recorded_file_t> readRecording(const std::filesystem::path& folder,
                                           const std::string& name) {
  constexpr std::size_t NUMBER_AND_EXTENSION = sizeof ".000001.ndjson" - 1;
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string file = entry.path().filename();
    if (file.ends_with(".ndjson") && file.size() == name.size() + NUMBER_AND_EXTENSION &&
        file.starts_with(name + ".")) {
      paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());
  std::vector<recorded_file_t> files;
  files.reserve(paths.size());
  for (const std::filesystem::path& path : paths) files.push_back(readFile(path));
  return files;
}

std::string breachIn(const std::vector<recorded_file_t>& files) {
  Follower follower;
  for (const recorded_file_t& file : files) {
    const std::string breach = follower.follow(file);
    if (!breach.empty()) return file.path.filename().string() + ": " + breach;
  }
  return "";
}

std::int64_t recordsIn(const std::vector<recorded_file_t>& files) {
  std::int64_t records = 0;
  for (const recorded_file_t& file : files) {
    records += static_cast<std::int64_t>(file.records.size());
  }
  return records;
}

std::uintmax_t bytesIn(const std::filesystem::path& folder) {
  std::uintmax_t bytes = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::error_code gone; // a recorder at work removes files
    const std::uintmax_t size = std::filesystem::file_size(entry.path(), gone);
    if (!gone) bytes += size;
  }
  return bytes;
}

} // namespace com::velanto::connectivity::test
