#include "tools/host/plugin_library.hpp"

#include <dlfcn.h>

#include <filesystem>

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::uint64_t API_VERSION = 4;

// What the loader takes for a file, not for a name to search for.
std::string asFile(const std::string& path) {
  return path.find('/') == std::string::npos ? "./" + path : path;
}

void* loaded(const std::string& path) {
  void* const handle = openLibrary(path);
  if (handle == nullptr) throw PluginError(std::string("cannot load ") + dlerror());
  return handle;
}

} // namespace

void* openLibrary(const std::string& path, int more_flags) {
  return dlopen(asFile(path).c_str(), RTLD_NOW | RTLD_LOCAL | more_flags);
}

void PluginLibrary::close_t::operator()(void* handle) const noexcept { dlclose(handle); }

PluginLibrary::PluginLibrary(const std::string& path, Version accepted,
                             const std::string& class_name)
    : path_(asFile(path)), handle_(loaded(path_)) {
  load(apiVersion, "vlt_plugin_api_version_" + class_name);
  // Before the others: another version may well have other functions.
  const std::uint64_t version = apiVersion();
  if (accepted == Version::OURS && version != API_VERSION) {
    throw PluginError(path_ + " has interface version " + std::to_string(version) + ", expected " +
                      std::to_string(API_VERSION));
  }
  load(productVersion, "vlt_plugin_product_version_" + class_name);
  load(checkIsCodec, "_vlt_plugin_checkIsCodec_" + class_name);
  load(create, "vlt_create_plugin_with_params_" + class_name);
  load(setNextTowardsHost, "vlt_plugin_setNextTowardsHost_" + class_name);
  load(setNextTowardsTransport, "vlt_plugin_setNextTowardsTransport_" + class_name);
  load(start, "vlt_plugin_start_" + class_name);
  load(hostReady, "vlt_plugin_hostReady_" + class_name);
  load(sendBatchTowardsHost, "vlt_plugin_sendBatchTowardsHost_" + class_name);
  load(sendBatchTowardsTransport, "vlt_plugin_sendBatchTowardsTransport_" + class_name);
  load(shutdown, "vlt_plugin_shutdown_" + class_name);
  load(destroy, "vlt_destroy_plugin_" + class_name);
}

std::string PluginLibrary::defaultPath(const char* class_name) {
  const std::filesystem::path folder =
      std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::string name = std::string("lib") + class_name + ".so";
  if (std::filesystem::exists(folder / name)) return folder / name;
  return (folder / VLT_PLUGIN_FROM_TOOLS / name).lexically_normal();
}

template <class Function>
void PluginLibrary::load(Function*& function, const std::string& name) {
  function = reinterpret_cast<Function*>(dlsym(handle_.get(), name.c_str()));
  if (function == nullptr) {
    throw PluginError(path_ + " is no plug-in: it has no function " + name);
  }
}

} // namespace com::velanto::connectivity::tools
