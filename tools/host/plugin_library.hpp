// A plug-in library as a host sees it: loaded at run time, known by its twelve C functions, here in
// the order of a host's calls. plugin/entry_points.hpp has their contracts.
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

// Loads the library at `path` with all its symbols bound and returns the handle for dlclose. Null:
// it does not load, and dlerror has the reason. A path without a slash is a file of the current
// directory, not one of the system's libraries. `more_flags` are further flags of dlopen.
[[nodiscard]] void* openLibrary(const std::string& path, int more_flags = 0);

class PluginLibrary {
 public:
  // The accepted interface versions: the one of these functions, or, for callers that check it
  // themselves, any.
  enum class Version { OURS, ANY };

  static constexpr const char* CLASS_NAME = "OstroviaNotifications2Codec";
  static constexpr const char* RECORDER_CLASS_NAME = "OstroviaNotificationsRecorder";

  // Loads the library at `path` as openLibrary does. `class_name` is in the names of its functions.
  // Throws PluginError when it does not load, lacks a function or has another interface version.
  // The host's client library must be loaded.
  explicit PluginLibrary(const std::string& path, Version accepted = Version::OURS,
                         const std::string& class_name = CLASS_NAME);

  // The library of a plug-in class for the running program: beside it, where a build leaves both,
  // otherwise at its place in an installation, found from the program's. It may not exist. Throws
  // std::filesystem::filesystem_error when the system does not tell the place of the program.
  static std::string defaultPath(const char* class_name = CLASS_NAME);

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
