// A plug-in that changes messages as its configuration says under "tenantId":
//
//   swap      the payload's a and b change places
//   sum       the payload's a and b become sum
//   refuse    drops a message whose payload has no string under key, with a line that says so
//   whisper   as refuse, without a line
//   noise     writes to standard error for each message
//   numbers   gives each message the number of messages so far
//   leak      leaks a block of the host for each message
//
// With any other tenant messages pass. It takes the place of the real plug-in, so it bears its
// name.
#include <cstdio>
#include <stdexcept>
#include <string>

#include "plugin/entry_points.hpp"
#include "plugin/logger.hpp"
#include "tests/support/failing_operations.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class OstroviaNotifications2Codec final : public FailingOperations {
 public:
  explicit OstroviaNotifications2Codec(
      const PluginConstructorParameters::CodecConstructorParameters& params)
      : FailingOperations(params), way_(tenantOf(params)) {}

  bool transformMessageTowardsHost(Message& message) override {
    if (way_ == "noise") std::fputs("noise\n", stderr);
    if (way_ == "leak") static_cast<void>(vlt_allocate_map(1));
    auto* const payload = message.getPayload().get_if<map_t>();
    if (payload == nullptr) return true;
    if (way_ == "swap") swap(*payload);
    if (way_ == "sum") add(*payload);
    if (way_ == "numbers") (*payload)[data_t("number")] = data_t(++messages_);
    if (way_ == "refuse" || way_ == "whisper") return accepts(*payload);
    return true;
  }

 private:
  void failIn(const char*) const override {}

  static void swap(map_t& payload) {
    data_t a = extracted(payload, data_t("a")).value;
    data_t b = extracted(payload, data_t("b")).value;
    payload[data_t("a")] = std::move(b);
    payload[data_t("b")] = std::move(a);
  }
  static void add(map_t& payload) {
    const data_t a = extracted(payload, data_t("a")).value;
    const data_t b = extracted(payload, data_t("b")).value;
    payload[data_t("sum")] = data_t(a.get<std::int64_t>() + b.get<std::int64_t>());
  }
  bool accepts(const map_t& payload) {
    const data_t* const key = payload.find_value(data_t("key"));
    if (key != nullptr && key->is_string()) return true;
    if (way_ == "refuse") getLogger().log(3, "no %s", "'key'");
    return false;
  }

  std::string way_;
  std::int64_t messages_ = 0;
};

} // namespace

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(OstroviaNotifications2Codec);
