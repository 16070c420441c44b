// The entry points after create: every failure becomes a 1 and one line at the entry point's level.
#include "plugin/entry_points.hpp"

#include <unistd.h>

#include <csignal>
#include <functional>
#include <stdexcept>
#include <tuple>

#include "tests/plugin/failing_library.hpp"
#include "tests/support/allocations.hpp"

namespace com::velanto::connectivity::test {
namespace {

struct operation_t {
  const char* name;
  vlt_log_level_t level;
  std::function<int(const PluginLibrary&, void* plugin)> call;
};
void PrintTo(const operation_t& row, std::ostream* out) { *out << row.name; }

void ignore(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {}

const std::vector<operation_t> OPERATIONS = {
    {"start", 2, [](const auto& l, void* p) { return l.start(p); }},
    {"setNextTowardsHost", 2,
     [](const auto& l, void* p) { return l.setNextTowardsHost(p, nullptr, ignore); }},
    {"setNextTowardsTransport", 2,
     [](const auto& l, void* p) { return l.setNextTowardsTransport(p, nullptr, ignore); }},
    {"shutdown", 3, [](const auto& l, void* p) { return l.shutdown(p); }},
    {"hostReady", 3, [](const auto& l, void* p) { return l.hostReady(p); }},
    {"sendBatchTowardsHost", 3,
     [](const auto& l, void* p) { return l.sendBatchTowardsHost(p, nullptr, nullptr); }},
    {"sendBatchTowardsTransport", 3,
     [](const auto& l, void* p) { return l.sendBatchTowardsTransport(p, nullptr, nullptr); }},
};

class OperationTest : public FailingLibrary, public ::testing::WithParamInterface<operation_t> {
 protected:
  // The operation, on a codec with an operation of that name that throws `failure`.
  int callFailing(const char* failure) {
    void* const plugin = create(mapOf(GetParam().name, text(failure)));
    const int result = GetParam().call(library_, plugin);
    library_.destroy(plugin);
    return result;
  }
};

INSTANTIATE_TEST_SUITE_P(Entry, OperationTest, ::testing::ValuesIn(OPERATIONS),
                         [](const auto& row) { return row.param.name; });

TEST_P(OperationTest, SuccessIsZeroAndSilent) {
  void* const plugin = create(map_t());
  EXPECT_EQ(GetParam().call(library_, plugin), 0);
  EXPECT_EQ(takeLog(), lines_t{});
  library_.destroy(plugin);
}

TEST_P(OperationTest, ExceptionIsLoggedWithItsMessage) {
  EXPECT_EQ(callFailing("runtime_error"), 1);
  EXPECT_EQ(takeLog(), (lines_t{line(GetParam().level, std::string("Exception from ") +
                                                           GetParam().name + ": boom")}));
}

TEST_P(OperationTest, ThrownIntegerIsLoggedAsUnknown) {
  EXPECT_EQ(callFailing("integer"), 1);
  EXPECT_EQ(
      takeLog(),
      (lines_t{line(GetParam().level, std::string("Unknown exception from ") + GetParam().name)}));
}

TEST_P(OperationTest, ExhaustedMemoryIsLoggedLikeAnyFailure) {
  EXPECT_EQ(callFailing("bad_alloc"), 1);
  EXPECT_EQ(takeLog(), (lines_t{line(GetParam().level, std::string("Exception from ") +
                                                           GetParam().name + ": std::bad_alloc")}));
}

TEST_P(OperationTest, FailureBelowTheLevelIsSilent) {
  standin_set_log_level("connectivity.codec.chain", GetParam().level - 1);
  EXPECT_EQ(callFailing("runtime_error"), 1);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_P(OperationTest, FailureIsReportedWithoutMemory) {
  void* const plugin = create(mapOf(GetParam().name, text("integer")));
  int result = 0;
  standin_set_log_sink(nullptr, nullptr); // the test's own would take memory
  standin_reset_calls();
  {
    const NoMemory memory;
    result = GetParam().call(library_, plugin);
  }
  EXPECT_EQ(result, 1);
  EXPECT_EQ(standin_calls(STANDIN_LOG_AT), 1);
  library_.destroy(plugin);
}

TEST_P(OperationTest, PluginStaysUsableAfterAFailure) {
  void* const plugin = create(mapOf(GetParam().name, text("runtime_error")));
  EXPECT_EQ(GetParam().call(library_, plugin), 1);
  for (const operation_t& other : OPERATIONS) {
    const bool fails = std::string(other.name) == GetParam().name;
    EXPECT_EQ(other.call(library_, plugin), fails ? 1 : 0) << other.name;
  }
  EXPECT_EQ(takeLog().size(), 2U);
  library_.destroy(plugin);
}

TEST_P(OperationTest, FailureLeaksNoMemory) {
  standin_set_default_log_level(0);
  void* const plugin = create(mapOf(GetParam().name, text("runtime_error")));
  const std::int64_t before = allocationsHeld();
  EXPECT_EQ(GetParam().call(library_, plugin), 1);
  EXPECT_EQ(allocationsHeld(), before) << "a refused link goes down with the exception";
  library_.destroy(plugin);
}

TEST_P(OperationTest, NullPluginGivesOneInSilence) {
  EXPECT_EQ(GetParam().call(library_, nullptr), 1);
  EXPECT_EQ(takeLog(), lines_t{});
}

// All twelve entry points, each in a process of its own that ends with 0 once the call has returned.
class EntryPointsInAProcess : public FailingLibrary {
 protected:
  // Ends the process: with 1 when an exception leaves `call`, which gets a codec with an operation
  // of that name that throws.
  template <class Call>
  [[noreturn]] void run(const char* operation, const Call& call) const {
    const data_t settings = mapOf(operation, text("integer"));
    void* const plugin = create(operation == std::string("create") ? map_t() : settings);
    int left = 0;
    try {
      call(plugin, settings);
    } catch (...) {
      left = 1;
    }
    _exit(left);
  }
};

TEST_F(EntryPointsInAProcess, NoExceptionLeavesAnyOfThem) {
  const ::testing::ExitedWithCode returned(0);
  for (const operation_t& row : OPERATIONS) {
    EXPECT_EXIT(run(row.name, [&](void* codec, const data_t&) { row.call(library_, codec); }),
                returned, "");
  }
  EXPECT_EXIT(run("create", [&](void*, const data_t& settings) { (void)create(settings); }),
              returned, "");
  EXPECT_EXIT(run("none", [&](void*, const data_t&) { library_.apiVersion(); }), returned, "");
  EXPECT_EXIT(run("none", [&](void*, const data_t&) { library_.productVersion(); }), returned, "");
  EXPECT_EXIT(run("none", [&](void*, const data_t&) { library_.checkIsCodec(); }), returned, "");
}

// A destructor that throws ends any C++ program, so there is nothing to report.
TEST_F(EntryPointsInAProcess, ThrowingDestructorEndsTheProcess) {
  EXPECT_EXIT(run("destroy", [&](void* codec, const data_t&) { library_.destroy(codec); }),
              ::testing::KilledBySignal(SIGABRT), "");
}

class EntryPointsTest : public FailingLibrary {};

TEST_F(EntryPointsTest, DestroyOfNullIsZero) {
  standin_reset_calls();
  EXPECT_EQ(library_.destroy(nullptr), 0);
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(EntryPointsTest, NullBatchFunctionKeepsThePreviousLink) {
  Received host;
  Received transport;
  void* const plugin = create(map_t());
  library_.setNextTowardsHost(plugin, &host, Received::take);
  library_.setNextTowardsTransport(plugin, &transport, Received::take);
  EXPECT_EQ(library_.setNextTowardsHost(plugin, nullptr, nullptr), 1);
  EXPECT_EQ(library_.setNextTowardsTransport(plugin, nullptr, nullptr), 1);
  const char* const why = ": Cannot use a null batch function as a link";
  EXPECT_EQ(takeLog(),
            (lines_t{line(2, std::string("Exception from setNextTowardsHost") + why),
                     line(2, std::string("Exception from setNextTowardsTransport") + why)}));
  library_.sendBatchTowardsHost(plugin, nullptr, nullptr);
  library_.sendBatchTowardsTransport(plugin, nullptr, nullptr);
  EXPECT_EQ(host.calls, 1);
  EXPECT_EQ(transport.calls, 1);
  library_.destroy(plugin);
}

TEST_F(EntryPointsTest, BatchReachesTheLinkOfItsDirection) {
  Received host;
  Received transport;
  void* const plugin = create(map_t());
  library_.setNextTowardsHost(plugin, &host, Received::take);
  library_.setNextTowardsTransport(plugin, &transport, Received::take);
  Message message(whole(1));
  EXPECT_EQ(library_.sendBatchTowardsHost(plugin, &message, &message + 1), 0);
  EXPECT_EQ(host.messages.size(), 1U);
  EXPECT_EQ(transport.messages.size(), 0U);
  message = Message(whole(2));
  EXPECT_EQ(library_.sendBatchTowardsTransport(plugin, &message, &message + 1), 0);
  EXPECT_EQ(host.messages.size(), 1U);
  ASSERT_EQ(transport.messages.size(), 1U);
  EXPECT_EQ(transport.messages[0].getPayload(), whole(2));
  library_.destroy(plugin);
}

TEST_F(EntryPointsTest, NewLinkReplacesThePreviousOne) {
  Received first;
  Received second;
  void* const plugin = create(map_t());
  library_.setNextTowardsHost(plugin, &first, Received::take);
  library_.setNextTowardsHost(plugin, &second, Received::take);
  library_.sendBatchTowardsHost(plugin, nullptr, nullptr);
  EXPECT_EQ(first.calls, 0);
  EXPECT_EQ(second.calls, 1);
  library_.destroy(plugin);
}

TEST_F(EntryPointsTest, EntryPointCatchesAThrowingLink) {
  const auto jam = [](void* handle, vlt_underlying_message_t*, vlt_underlying_message_t*) {
    if (handle == nullptr) throw std::runtime_error("jam");
    throw 42;
  };
  int handle = 0;
  void* const plugin = create(map_t());
  library_.setNextTowardsHost(plugin, nullptr, jam);
  library_.setNextTowardsTransport(plugin, &handle, jam);
  EXPECT_EQ(library_.sendBatchTowardsHost(plugin, nullptr, nullptr), 1);
  EXPECT_EQ(library_.sendBatchTowardsTransport(plugin, nullptr, nullptr), 1);
  EXPECT_EQ(takeLog(), (lines_t{line(3, "Exception from sendBatchTowardsHost: jam"),
                                line(3, "Unknown exception from sendBatchTowardsTransport")}));
  EXPECT_EQ(library_.hostReady(plugin), 0) << "the plug-in stays usable";
  library_.destroy(plugin);
}

} // namespace
} // namespace com::velanto::connectivity::test
