// A plug-in with the fault that its configuration names under "tenantId": an operation that has to
// fail ("create", "start", "sendBatchTowardsHost" and so on), or
//
//   leak      makes a block of the host for each batch and frees none
//   twice     sends each batch on twice
//   silence   drops each batch without a word
//   greed     drops the last of several messages of a batch without a word
//   late      makes up a message in shutdown
//   talk      writes to standard error: at its creation, for each batch, and 2 MiB for a batch of two
//   abort     writes to standard error and aborts
//   exit      the same, but exits
//
// With any other tenant it passes all messages on. It takes the place of the real plug-in, so it
// bears its name.
#include <cstdio>
#include <cstdlib>
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
    if (fault_ == "talk") std::fputs("created\n", stderr);
  }

  void sendBatchTowardsHost(Message* start, Message* end) override {
    if (fault_ == "leak") static_cast<void>(vlt_allocate_map(1));
    if (fault_ == "talk") talk(end - start);
    if (fault_ == "abort" || fault_ == "exit") std::fputs("last \x1b words\n", stderr);
    if (fault_ == "abort") std::abort();
    if (fault_ == "exit") std::exit(3); // NOLINT(concurrency-mt-unsafe): one thread
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
  static void talk(std::ptrdiff_t messages) {
    std::fputs("a batch\n", stderr);
    if (messages > 1) std::fputs((std::string(2 << 20, 'x') + "\n").c_str(), stderr);
  }
  void failIn(const char* operation) const override {
    if (fault_ == operation) throw std::runtime_error("boom");
  }

  std::string fault_;
};

} // namespace

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::OstroviaNotifications2Codec;

VLT_EXPORT_CODEC(OstroviaNotifications2Codec);
