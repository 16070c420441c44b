#include "tools/check/subject.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "tools/host/elf_file.hpp"
#include "tools/host/plugin_library.hpp"

namespace com::velanto::connectivity::tools::check {

const char* classNameOf(Plugin plugin) noexcept {
  return plugin == Plugin::CODEC ? PluginLibrary::CLASS_NAME : PluginLibrary::RECORDER_CLASS_NAME;
}

Plugin pluginIn(const std::string& path) {
  try {
    const elf_file_t file = readElfFile(path);
    const std::string suffix = std::string("_") + classNameOf(Plugin::RECORDER);
    const bool records =
        std::any_of(file.exported.begin(), file.exported.end(),
                    [&](const exported_t& symbol) { return symbol.name.ends_with(suffix); });
    return records ? Plugin::RECORDER : Plugin::CODEC;
  } catch (const NoElf& error) {
    throw std::runtime_error(path + ": " + error.what());
  } catch (const MalformedElf&) {
    return Plugin::CODEC; // the checks of the file report the reason
  }
}

TemporaryFolder::TemporaryFolder()
    : path_(std::filesystem::temp_directory_path() / "ostrovia-check-plugin.XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), "mkdtemp");
  }
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

} // namespace com::velanto::connectivity::tools::check
