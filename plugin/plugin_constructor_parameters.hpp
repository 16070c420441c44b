// The arguments of a plug-in's constructor: copies of everything that the host passed to create.
// The names and the configuration belong to the caller and may change or vanish after the call.
#ifndef VLT_PLUGIN_PLUGIN_CONSTRUCTOR_PARAMETERS_HPP
#define VLT_PLUGIN_PLUGIN_CONSTRUCTOR_PARAMETERS_HPP

#include <string>

#include "value/map_t.hpp"

namespace com::velanto::connectivity {

class PluginConstructorParameters {
 public:
  // The view of the parameters that a codec's constructor takes.
  using CodecConstructorParameters = PluginConstructorParameters;

  // Copies `configuration`. Keeps the handles and never dereferences them. Throws std::bad_alloc.
  PluginConstructorParameters(std::string plugin_name, std::string chain_id,
                              const map_t& configuration, void* handle1, void* handle2)
      : plugin_name_(std::move(plugin_name)),
        chain_id_(std::move(chain_id)),
        configuration_(configuration.copy()),
        handle1_(handle1),
        handle2_(handle2) {}

  [[nodiscard]] const std::string& getPluginName() const noexcept { return plugin_name_; }
  [[nodiscard]] const std::string& getChainId() const noexcept { return chain_id_; }
  [[nodiscard]] const map_t& getConfiguration() const noexcept { return configuration_; }
  [[nodiscard]] void* getFirstHandle() const noexcept { return handle1_; }
  [[nodiscard]] void* getSecondHandle() const noexcept { return handle2_; }

 private:
  std::string plugin_name_;
  std::string chain_id_;
  map_t configuration_;
  void* handle1_;
  void* handle2_;
};

} // namespace com::velanto::connectivity

#endif
