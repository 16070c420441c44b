// A codec that passes all messages on, the base of plug-ins that fail on demand. Before each operation
// it asks whether to fail.
#ifndef VLT_TESTS_SUPPORT_FAILING_OPERATIONS_HPP
#define VLT_TESTS_SUPPORT_FAILING_OPERATIONS_HPP

#include <memory>
#include <string>
#include <utility>

#include "plugin/abstract_simple_codec.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::test {

class FailingOperations : public AbstractSimpleCodec {
 public:
  using AbstractSimpleCodec::AbstractSimpleCodec;

  void start() override { failIn("start"); }
  void hostReady() override { failIn("hostReady"); }
  void shutdown() override { failIn("shutdown"); }
  void setNextTowardsHost(std::unique_ptr<HostSide>&& next) override {
    failIn("setNextTowardsHost");
    AbstractSimpleCodec::setNextTowardsHost(std::move(next));
  }
  void setNextTowardsTransport(std::unique_ptr<TransportSide>&& next) override {
    failIn("setNextTowardsTransport");
    AbstractSimpleCodec::setNextTowardsTransport(std::move(next));
  }
  void sendBatchTowardsHost(Message* start, Message* end) override {
    failIn("sendBatchTowardsHost");
    AbstractSimpleCodec::sendBatchTowardsHost(start, end);
  }
  void sendBatchTowardsTransport(Message* start, Message* end) override {
    failIn("sendBatchTowardsTransport");
    AbstractSimpleCodec::sendBatchTowardsTransport(start, end);
  }

  bool transformMessageTowardsHost(Message&) override { return true; }
  bool transformMessageTowardsTransport(Message&) override { return true; }
  bool handleException(Message&, bool) override { return false; }

 protected:
  // The string under "tenantId" in the configuration, which tells such a plug-in its part; empty
  // for none.
  static std::string tenantOf(
      const PluginConstructorParameters::CodecConstructorParameters& params) {
    for (const auto& [key, value] : params.getConfiguration()) {
      if (key == data_t("tenantId")) return value.get<const char*>();
    }
    return "";
  }

  // Throws if `operation`, one of the functions above, is to fail. A constructor that is to fail
  // asks for "create" itself: here it would be too early.
  virtual void failIn(const char* operation) const = 0;
};

} // namespace com::velanto::connectivity::test

#endif
