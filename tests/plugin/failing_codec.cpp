// A plug-in that fails on demand, behind the real entry points. Its configuration maps the name of
// an operation to what the operation throws: "runtime_error", "integer" or "bad_alloc".
#include <functional>
#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include "plugin/abstract_simple_codec.hpp"
#include "plugin/entry_points.hpp"

namespace com::velanto::connectivity::test {

class FailingCodec final : public AbstractSimpleCodec {
 public:
  explicit FailingCodec(const PluginConstructorParameters::CodecConstructorParameters& params)
      : AbstractSimpleCodec(params) {
    for (const auto& [operation, failure] : params.getConfiguration()) {
      failures_[operation.get<const char*>()] = failure.get<const char*>();
    }
    failIn("create");
  }

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

 private:
  void failIn(const char* operation) const {
    const auto failure = failures_.find(operation);
    if (failure == failures_.end()) return;
    if (failure->second == "runtime_error") throw std::runtime_error("boom");
    if (failure->second == "bad_alloc") throw std::bad_alloc();
    throw 42;
  }

  // Looked up by plain texts, without memory for a key.
  std::map<std::string, std::string, std::less<>> failures_;
};

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::FailingCodec;

VLT_EXPORT_CODEC(FailingCodec);
