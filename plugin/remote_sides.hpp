// Links that lead out of the plug-in: each passes its batches to a C function of the host, with the
// handle that the host gave for it and nothing else. The handle is never dereferenced here.
#ifndef VLT_PLUGIN_REMOTE_SIDES_HPP
#define VLT_PLUGIN_REMOTE_SIDES_HPP

#include "plugin/sides.hpp"

namespace com::velanto::connectivity {

class RemoteHostSide final : public HostSide {
 public:
  // Throws std::runtime_error when `function` is null.
  RemoteHostSide(void* handle, vlt_batch_function function);
  void sendBatchTowardsHost(Message* start, Message* end) override;

 private:
  void* handle_;
  vlt_batch_function function_;
};

class RemoteTransportSide final : public TransportSide {
 public:
  // Throws std::runtime_error when `function` is null.
  RemoteTransportSide(void* handle, vlt_batch_function function);
  void sendBatchTowardsTransport(Message* start, Message* end) override;

 private:
  void* handle_;
  vlt_batch_function function_;
};

} // namespace com::velanto::connectivity

#endif
