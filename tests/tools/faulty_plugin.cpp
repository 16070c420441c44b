// A plug-in that does wrong what its configuration names under "tenantId": an operation that is to
// fail ("create", "start", "sendBatchTowardsHost" and so on), or
//
//   leak     each batch makes a block of the host that nobody frees
//   twice    each batch is sent on twice
//
// With any other tenant it sends on whatever comes. It stands where the real plug-in would, so it
// bears that one's name.
#include <stdexcept>
#include <string>

#include "plugin/abstract_simple_codec.hpp"
#include "plugin/entry_points.hpp"
#include "value/map_t.hpp"

namespace com::velanto::connectivity::test {

namespace {

class OstroviaNotifications2Codec final : public AbstractSimpleCodec {
 public:
  explicit OstroviaNotifications2Codec(
      const PluginConstructorParameters::CodecConstructorParameters& params)
      : AbstractSimpleCodec(params) {
    for (const auto& [key, value] : params.getConfiguration()) {
      if (key == data_t("tenantId")) fault_ = value.get<const char*>();
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
    if (fault_ == "leak") static_cast<void>(vlt_allocate_map(1));
    if (fault_ == "twice") AbstractSimpleCodec::sendBatchTowardsHost(start, end);
    AbstractSimpleCodec::sendBatchTowardsHost(start, end);
  }

  bool transformMessageTowardsHost(Message&) override { return true; }
  bool transformMessageTowardsTransport(Message&) override { return true; }
  bool handleException(Message&, bool) override { return false; }

 private:
  void failIn(const char* operation) const {
    if (fault_ == operation) throw std::runtime_error("boom");
  }

  std::string fault_;
};

} // namespace

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(OstroviaNotifications2Codec);
