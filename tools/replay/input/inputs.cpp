#include "tools/replay/input/inputs.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

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

input_t fileInput(const std::string& path) {
  checkReadable(path);
  return {path,
          [path]() -> std::unique_ptr<std::istream> {
            errno = 0;
            auto file = std::make_unique<std::ifstream>(path, std::ios::binary);
            if (!file->is_open()) refuse(path, errno);
            return file;
          },
          sizeOf(path)};
}

input_t standardInput() {
  return {"<stdin>", [] { return std::make_unique<std::istream>(std::cin.rdbuf()); }, 0, true};
}

} // namespace

std::vector<input_t> inputsFrom(const std::vector<std::string>& paths) {
  if (paths.empty()) return {standardInput()};
  std::vector<input_t> inputs;
  inputs.reserve(paths.size());
  for (const std::string& path : paths) {
    inputs.push_back(path == "-" ? standardInput() : fileInput(path));
  }
  return inputs;
}

void refuseToOverwrite(const std::vector<std::string>& inputs, const std::string& output) {
  for (const std::string& input : inputs) {
    std::error_code ignored; // a file that does not exist is not the same as any other
    if (std::filesystem::equivalent(input, output, ignored)) {
      throw ReplayError(EXIT_USAGE, output + " is read and cannot be written, too");
    }
  }
}

} // namespace com::velanto::connectivity::tools
