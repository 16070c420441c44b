#include "tools/replay/input/inputs.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>
#include <utility>

#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

[[noreturn]] void refuse(const std::string& path, int error) {
  throw ReplayError(EXIT_IO, path + ": " + std::generic_category().message(error));
}

void checkReadable(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) refuse(path, errno);
  if (S_ISDIR(status.st_mode)) refuse(path, EISDIR);
}

std::uintmax_t sizeOf(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

// Null with the reason in errno when it does not open.
std::unique_ptr<std::istream> openFile(const std::string& path) {
  errno = 0;
  auto file = std::make_unique<std::ifstream>(path, std::ios::binary);
  if (!file->is_open()) file.reset();
  return file;
}

// The file as it is now, under the path or compressed beside it; nothing when it is gone.
std::optional<recording_file_t> presentForm(const recording_file_t& file) {
  std::vector<recording_file_t> files = recordingFilesIn(file.folder, file.name);
  for (recording_file_t& each : files) {
    if (each.number == file.number) return std::move(each);
  }
  return {};
}

input_t recordingInput(recording_file_t file) {
  input_t input;
  input.name = file.path;
  input.size = sizeOf(file.path);
  input.open = [file]() -> std::unique_ptr<std::istream> {
    std::unique_ptr<std::istream> stream = openFile(file.path);
    if (stream == nullptr && errno != ENOENT) refuse(file.path, errno);
    if (stream != nullptr) return stream;
    const std::optional<recording_file_t> present = presentForm(file);
    return present ? openFile(present->path) : nullptr;
  };
  input.successor = [file](std::uintmax_t) -> std::optional<input_t> {
    for (recording_file_t& next : recordingFilesIn(file.folder, file.name)) {
      if (next.number > file.number) return recordingInput(std::move(next));
    }
    return {};
  };
  input.file = std::move(file);
  return input;
}

input_t fileInput(const std::string& path) {
  const auto opened = std::make_shared<ino_t>();
  const auto identity = [path]() -> std::optional<ino_t> {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    return status.st_ino;
  };
  input_t input;
  input.name = path;
  input.size = sizeOf(path);
  input.open = [path, opened, identity] {
    std::unique_ptr<std::istream> file = openFile(path);
    if (file == nullptr) refuse(path, errno);
    *opened = identity().value_or(0);
    return file;
  };
  std::error_code ignored; // a pipe has its end
  if (!std::filesystem::is_regular_file(path, ignored)) return input;
  input.successor = [path, opened, identity](std::uintmax_t end) -> std::optional<input_t> {
    const std::optional<ino_t> now = identity();
    if (!now || (*now == *opened && sizeOf(path) >= end)) return {};
    return fileInput(path);
  };
  return input;
}

input_t standardInput() {
  input_t input;
  input.name = "<stdin>";
  input.open = [] { return std::make_unique<std::istream>(std::cin.rdbuf()); };
  input.is_standard_input = true;
  return input;
}

std::vector<input_t> inputsAt(const std::string& path) {
  if (path == "-") return {standardInput()};
  std::vector<recording_file_t> files = recordingAt(path);
  if (files.empty()) {
    checkReadable(path);
    std::optional<recording_file_t> file = recordingFile(path);
    return {file ? recordingInput(std::move(*file)) : fileInput(path)};
  }
  std::vector<input_t> inputs;
  for (recording_file_t& file : files) {
    // A recorder may delete its oldest files at any moment.
    if (access(file.path.c_str(), R_OK) != 0 && errno != ENOENT) refuse(file.path, errno);
    inputs.push_back(recordingInput(std::move(file)));
  }
  return inputs;
}

} // namespace

std::vector<input_t> inputsFrom(const std::vector<std::string>& paths) {
  if (paths.empty()) return {standardInput()};
  std::vector<input_t> inputs;
  inputs.reserve(paths.size());
  for (const std::string& path : paths) {
    std::vector<input_t> more = inputsAt(path);
    std::move(more.begin(), more.end(), std::back_inserter(inputs));
  }
  return inputs;
}

} // namespace com::velanto::connectivity::tools
