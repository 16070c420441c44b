#include "tools/replay/input/recording_files.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <tuple>

#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t LEAST_DIGITS = 6; // at least; more after a million files
constexpr std::array<std::string_view, 3> SUFFIXES = {".ndjson", ".ndjson.gz", ".ndjson.zst"};

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// The shorter path of two with the same name and number is not compressed.
bool comesBefore(const recording_file_t& a, const recording_file_t& b) {
  return std::make_tuple(std::string_view(a.name), a.number, a.path.size()) <
         std::make_tuple(std::string_view(b.name), b.number, b.path.size());
}

// A hint at the files that are no part of a recording, if there are some.
std::string otherFilesIn(const fs::path& folder) {
  for (const std::string_view suffix : SUFFIXES) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (!entry.path().native().ends_with(suffix)) continue;
      return "; for its other files: " + (folder / "*").string().append(suffix);
    }
  }
  return "";
}

// Whether nothing is there, in a folder.
bool mayBeName(const std::string& path) {
  std::error_code ignored;
  const std::string folder = folderOf(path);
  return !fs::exists(path, ignored) && fs::is_directory(folder.empty() ? "." : folder, ignored);
}

} // namespace

std::optional<recording_file_t> recordingFile(const std::string& path) {
  recording_file_t file{folderOf(path), {}, 0, path};
  std::string_view rest = std::string_view(path).substr(file.folder.size());
  const auto* const suffix =
      std::find_if(SUFFIXES.begin(), SUFFIXES.end(),
                   [&](std::string_view each) { return rest.ends_with(each); });
  if (suffix == SUFFIXES.end()) return {};
  rest.remove_suffix(suffix->size());
  const std::size_t dot = rest.rfind('.');
  if (dot == std::string_view::npos || dot == 0 || rest.size() - dot - 1 < LEAST_DIGITS) return {};
  const char* const end = rest.data() + rest.size();
  const std::from_chars_result result = std::from_chars(rest.data() + dot + 1, end, file.number);
  if (result.ec != std::errc() || result.ptr != end || file.number == 0) return {};
  file.name = rest.substr(0, dot);
  return file;
}

std::vector<recording_file_t> recordingFilesIn(const std::string& folder) {
  std::error_code error;
  std::vector<recording_file_t> files;
  const std::string prefix = folder.empty() || folder.ends_with('/') ? folder : folder + "/";
  for (const auto& entry : fs::directory_iterator(folder.empty() ? "." : folder, error)) {
    std::optional<recording_file_t> file = recordingFile(prefix + entry.path().filename().string());
    if (file) files.push_back(std::move(*file));
  }
  if (error) throw ReplayError(EXIT_IO, folder + ": " + error.message());
  std::sort(files.begin(), files.end(), comesBefore);
  const auto is_same = [](const recording_file_t& a, const recording_file_t& b) {
    return a.name == b.name && a.number == b.number;
  };
  files.erase(std::unique(files.begin(), files.end(), is_same), files.end());
  return files;
}

std::vector<recording_file_t> recordingFilesIn(const std::string& folder, const std::string& name) {
  std::vector<recording_file_t> files = recordingFilesIn(folder);
  std::erase_if(files, [&name](const recording_file_t& file) { return file.name != name; });
  return files;
}

bool mayComeLater(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored) ? recordingFilesIn(path).empty()
                                         : mayBeName(path) && recordingAt(path).empty();
}

std::vector<recording_file_t> recordingAt(const std::string& path) {
  std::error_code ignored; // a path that cannot be looked at names no folder
  if (!fs::is_directory(path, ignored)) {
    if (!mayBeName(path)) return {};
    const std::string folder = folderOf(path);
    return recordingFilesIn(folder, path.substr(folder.size()));
  }
  std::vector<recording_file_t> files = recordingFilesIn(path);
  if (files.empty()) {
    throw ReplayError(EXIT_USAGE,
                      path + " has no recording, no file NAME.000001.ndjson" + otherFilesIn(path));
  }
  if (files.front().name == files.back().name) return files;
  std::set<std::string> choices;
  for (const recording_file_t& file : files) choices.insert(file.folder + file.name);
  std::string list;
  for (const std::string& choice : choices) list += (list.empty() ? "" : ", ") + choice;
  throw ReplayError(EXIT_USAGE, path + " has several recordings, choose one: " + list);
}

} // namespace com::velanto::connectivity::tools
