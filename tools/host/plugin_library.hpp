// A plug-in library as a host sees it: loaded at run time, known by its twelve C functions, which
// stand here in the order in which a host calls them. What each of them promises:
// plugin/entry_points.hpp.
#ifndef VLT_TOOLS_HOST_PLUGIN_LIBRARY_HPP
#define VLT_TOOLS_HOST_PLUGIN_LIBRARY_HPP

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

// A library that is no plug-in, or a call of a plug-in that failed.
class PluginError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class PluginLibrary {
 public:
  // Which interface version the library may have: that of these functions, or, for whoever looks at
  // it himself, any.
  enum class Version { ours, any };

  static constexpr const char* CLASS_NAME = "OstroviaNotifications2Codec";

  // Loads the library at `path`; a path without a slash is a file of the current directory, not
  // looked for among the system's libraries. Its functions are named after `class_name`. Throws PluginError when it cannot be loaded,
  // lacks a function or has another interface version. The host's client library must be loaded.
  explicit PluginLibrary(const std::string& path, Version accepted = Version::ours,
                         const std::string& class_name = CLASS_NAME);

  // The plug-in that came with the running program: beside it, where a build leaves both, otherwise
  // where an installation has it, found from the program's place; it may not exist. Throws
  // std::filesystem::filesystem_error when the system does not tell where the program lies.
  static std::string defaultPath();

  std::uint64_t (*apiVersion)() = nullptr;
  const char* (*productVersion)() = nullptr;
  void (*checkIsCodec)() = nullptr;
  void* (*create)(const char* plugin_name, const char* chain_id,
                  const vlt_underlying_data_t* configuration, void* handle1,
                  void* handle2) = nullptr;
  int (*setNextTowardsHost)(void* plugin, void* handle, vlt_batch_function next) = nullptr;
  int (*setNextTowardsTransport)(void* plugin, void* handle, vlt_batch_function next) = nullptr;
  int (*start)(void* plugin) = nullptr;
  int (*hostReady)(void* plugin) = nullptr;
  int (*sendBatchTowardsHost)(void* plugin, Message* start, Message* end) = nullptr;
  int (*sendBatchTowardsTransport)(void* plugin, Message* start, Message* end) = nullptr;
  int (*shutdown)(void* plugin) = nullptr;
  int (*destroy)(void* plugin) = nullptr;

 private:
  struct close_t {
    void operator()(void* handle) const noexcept;
  };

  template <class Function>
  void load(Function*& function, const std::string& name);

  std::string path_;
  std::unique_ptr<void, close_t> handle_;
};

} // namespace com::velanto::connectivity::tools

#endif
