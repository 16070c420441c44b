#include "tests/tools/check/check_plugin_program.hpp"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

#include "ndjson/json_reader.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

CheckPluginProgram::CheckPluginProgram() {
  for (const char* const name : {"libOstroviaNotifications2Codec.so", "next.so"}) {
    std::filesystem::create_symlink(VLT_PLUGIN_PATH, folder_.path(name));
  }
}

run_t CheckPluginProgram::shell(const std::string& command) const {
  const std::string bin = std::filesystem::path(VLT_CHECK_PLUGIN_PATH).parent_path();
  const std::string line = "cd '" + folder_.path("") + "' && PATH='" + bin + "':\"$PATH\" && { " +
                           command + "; } > out 2> diagnostics";
  const int status = std::system(line.c_str()); // NOLINT(cert-env33-c): a shell is the subject
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder_.read("out"),
          folder_.read("diagnostics")};
}

run_t CheckPluginProgram::run(const std::string& arguments) const {
  return shell("ostrovia-check-plugin " + arguments);
}

std::string goodPlugin() { return VLT_PLUGIN_PATH; }

std::string faultyPlugin(const std::string& fault) {
  return std::string(VLT_FAULTY_PLUGINS) + "/" + fault + ".so";
}

std::map<std::string, std::string> outcomesOf(const std::string& json) {
  JsonReader reader;
  data_t document = reader.parseValue(json);
  const auto& checks = at(document.get<map_t>(), "checks").get<list_t>();
  std::map<std::string, std::string> outcomes;
  for (data_t check : checks) {
    auto& members = check.get<map_t>();
    outcomes[at(members, "name").get<const char*>()] = at(members, "outcome").get<const char*>();
  }
  return outcomes;
}

bool heapIsReplaced() noexcept {
#ifdef VLT_SANITIZED
  return true;
#else
  return false;
#endif
}

} // namespace com::velanto::connectivity::test
