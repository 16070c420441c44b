// A plug-in that does wrong what its configuration names under "tenantId": an operation that is to
// fail ("create", "start", "sendBatchTowardsHost" and so on), or
//
//   leak      each batch makes a block of the host that nobody frees
//   twice     each batch is sent on twice
//   silence   each batch vanishes without a word
//   greed     of a batch of several messages, the last one vanishes without a word
//   late      a message that nobody has sent comes out in shutdown
//
// With any other tenant it sends on whatever comes. It stands where the real plug-in would, so it
// bears that one's name.
#include <stdexcept>
#include <string>

#include "plugin/entry_points.hpp"
#include "tests/support/failing_operations.hpp"
#include "value/map_t.hpp"

namespace com::velanto::connectivity::test {

namespace {

class OstroviaNotifications2Codec final : public FailingOperations {
 public:
  explicit OstroviaNotifications2Codec(
      const PluginConstructorParameters::CodecConstructorParameters& params)
      : FailingOperations(params), fault_(tenantOf(params)) {
    OstroviaNotifications2Codec::failIn("create");
  }

  void sendBatchTowardsHost(Message* start, Message* end) override {
    if (fault_ == "leak") static_cast<void>(vlt_allocate_map(1));
    if (fault_ == "twice") FailingOperations::sendBatchTowardsHost(start, end);
    if (fault_ == "silence") end = start;
    if (fault_ == "greed" && end - start > 1) --end;
    FailingOperations::sendBatchTowardsHost(start, end);
  }
  void shutdown() override {
    FailingOperations::shutdown();
    if (fault_ != "late") return;
    Message unasked(data_t(true));
    FailingOperations::sendBatchTowardsHost(&unasked, &unasked + 1);
  }

 private:
  void failIn(const char* operation) const override {
    if (fault_ == operation) throw std::runtime_error("boom");
  }

  std::string fault_;
};

} // namespace

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(OstroviaNotifications2Codec);
