// A folder for the files of one test, removed with all that is in it.
#ifndef VLT_TESTS_TOOLS_TEMPORARY_FOLDER_HPP
#define VLT_TESTS_TOOLS_TEMPORARY_FOLDER_HPP

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace com::velanto::connectivity::test {

class TemporaryFolder {
 public:
  TemporaryFolder() : path_(std::filesystem::temp_directory_path() / "tools_tests.XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string path(const std::string& name) const { return path_ + "/" + name; }

  // Returns the path of the file.
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }
  std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_;
};

} // namespace com::velanto::connectivity::test

#endif
