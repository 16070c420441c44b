// A plug-in between two neighbours of a chain: it keeps the link to the next element on each side.
#ifndef VLT_PLUGIN_ABSTRACT_CODEC_HPP
#define VLT_PLUGIN_ABSTRACT_CODEC_HPP

#include <memory>

#include "plugin/plugin.hpp"
#include "plugin/sides.hpp"

namespace com::velanto::connectivity {

class AbstractCodec : public Plugin, public HostSide, public TransportSide {
 public:
  explicit AbstractCodec(const PluginConstructorParameters::CodecConstructorParameters& params)
      : Plugin(params) {}

  // Take the new link and destroy the previous one. Not within a batch.
  virtual void setNextTowardsHost(std::unique_ptr<HostSide>&& next) { hostSide = std::move(next); }
  virtual void setNextTowardsTransport(std::unique_ptr<TransportSide>&& next) {
    transportSide = std::move(next);
  }

 protected:
  // Empty until the host sets them.
  std::unique_ptr<HostSide> hostSide;
  std::unique_ptr<TransportSide> transportSide;
};

} // namespace com::velanto::connectivity

#endif
