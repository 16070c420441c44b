// Operations: the worked example, the two ids, the status and its texts.
#include "codec/conversions/operation.hpp"

#include <limits>

#include "tests/codec/examples.hpp"
#include "tests/codec/faults.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class OperationConversion : public HostFixture {};
class OperationBuilder : public HostFixture {};
class OperationTexts : public HostFixture {};

TEST_F(OperationConversion, WorkedExampleBecomesTheWholeEvent) {
  const Message message = converted(convertOperation, operation_example());
  EXPECT_TRUE(same(message.getPayload(), operation_fields()));
  EXPECT_TRUE(
      same(message.getMetadataMap(), map_of("vlt.type", text("com.tivra.ostrovia.Operation"))));
}

TEST_F(OperationConversion, FirstFaultInTheOrderOfTheStepsIsReported) {
  std::vector<fault_t> faults;
  faults.push_back({"source", {}, "Required key 'source' missing from message payload"});
  faults.push_back({"deviceId", {}, "Required key 'deviceId' missing from message payload"});
  faults.push_back({"source", list_of(), wrong_kind("source", "map", "list")});
  faults.push_back({"source.id", {}, "Required key 'id' missing from source"});
  faults.push_back({"status", {}, "Required key 'status' missing from message payload"});
  faults.push_back({"status", whole(1), wrong_kind("status", "string", "integer")});
  faults.push_back({"status", text("DONE"), "Unrecognized operation status: DONE"});
  faults.push_back({"deviceId", whole(7), "Value for key 'id' is not a string."});
  faults.push_back({"source.id", whole(7), "Value for key 'source' is not a string."});
  expectReportedInOrder(convertOperation, operation_example, faults);
}

TEST_F(OperationConversion, DeviceIdStandsInForAMissingId) {
  map_t payload = operation_example();
  remove(payload, "id");
  payload[text("deviceId")] = text("dev7");
  map_t expected = operation_fields();
  expected[text("id")] = text("dev7");
  EXPECT_TRUE(same(fields_of(convertOperation, std::move(payload)), expected));
}

TEST_F(OperationConversion, IdOfThePayloadReplacesTheDeviceIdWhateverItsKind) {
  map_t payload = operation_example();
  payload[text("id")] = whole(11);
  map_t expected = operation_fields();
  expected[text("id")] = whole(11);
  EXPECT_TRUE(same(fields_of(convertOperation, std::move(payload)), expected));
}

TEST_F(OperationConversion, AllThreeDatesAreConverted) {
  map_t payload = operation_example();
  payload[text("firstOccurrenceTime")] = text("2023-04-05T06:07:09Z");
  payload[text("lastUpdated")] = text("2023-04-05T06:07:10Z");
  payload[text("creationTime")] = whole(12);
  map_t expected = operation_fields();
  expected[text("firstOccurrenceTime")] = real(EXAMPLE_SECONDS + 1);
  expected[text("lastUpdated")] = real(EXAMPLE_SECONDS + 2);
  expected[text("creationTime")] = whole(12);
  EXPECT_TRUE(same(fields_of(convertOperation, std::move(payload)), expected));
}

TEST_F(OperationConversion, TimeTextAndTypeAreOrdinaryFields) {
  map_t payload = operation_example();
  payload[text("time")] = text(EXAMPLE_TIME);
  payload[text("text")] = whole(1);
  payload[text("type")] = list_of();
  payload[text("measurements")] = text("mine");
  map_t expected = operation_fields();
  expected[text("time")] = text(EXAMPLE_TIME);
  expected[text("text")] = whole(1);
  expected[text("type")] = list_of();
  expected[text("measurements")] = text("mine");
  EXPECT_TRUE(same(fields_of(convertOperation, std::move(payload)), expected));
}

TEST_F(OperationConversion, BlocksAreTheNotificationsOwn) {
  map_t payload = operation_example();
  at(payload, "o6a_Restart") = map_of("a", whole(1));
  const std::uint64_t id = block_of(at(payload, "id"));
  const std::uint64_t source_id = block_of(at(at(payload, "source").get<map_t>(), "id"));
  const std::uint64_t restart = block_of(at(payload, "o6a_Restart"));
  const std::uint64_t key = key_block_of(payload, text("o6a_Restart"));
  map_t fields = fields_of(convertOperation, std::move(payload));
  EXPECT_EQ(block_of(at(fields, "id")), id);
  EXPECT_EQ(block_of(at(fields, "source")), source_id);
  EXPECT_EQ(block_of(at(fields, "o6a_Restart")), restart);
  EXPECT_EQ(key_block_of(fields, text("o6a_Restart")), key);
}

TEST_F(OperationConversion, BorrowedStringsAreReadAndTheStatusBecomesOwned) {
  const map_t fields = fields_of(
      convertOperation, map_of("deviceId", borrowed("7"), "source", map_of("id", borrowed("8")),
                               "status", borrowed("FAILED"), "creationTime", borrowed(EXAMPLE_TIME),
                               "failure", borrowed("why")));
  EXPECT_TRUE(same(fields, map_of("id", borrowed("7"), "source", borrowed("8"), "status",
                                  text("FAILED"), "creationTime", real(EXAMPLE_SECONDS), "failure",
                                  borrowed("why"), "measurements", map_of())));
}

TEST_F(OperationConversion, NullStatusReadsAsTheEmptyText) {
  for (const bool owned : {true, false}) {
    map_t payload = operation_example();
    payload[text("status")] = owned ? null_text() : borrowed(nullptr);
    EXPECT_EQ(conversion_error(convertOperation, std::move(payload)),
              "Unrecognized operation status: ");
  }
}

TEST_F(OperationBuilder, AddsNoMembersAndChecksInOrder) {
  static_assert(sizeof(OperationMessageBuilder) == sizeof(TivraMessageBuilder));
  const auto unknown = static_cast<OperationStatus>(4);
  const auto error = [&](data_t&& id, data_t&& source) {
    return error_of(
        [&] { const OperationMessageBuilder made(std::move(id), std::move(source), unknown); });
  };
  EXPECT_EQ(error(whole(1), whole(1)), "Value for key 'id' is not a string.");
  EXPECT_EQ(error(text("1"), whole(1)), "Value for key 'source' is not a string.");
  EXPECT_EQ(error(text("1"), text("1")), "Unrecognized enum value.");
}

TEST_F(OperationBuilder, SetsItsFieldsAndNoMore) {
  const OperationMessageBuilder builder(text("1"), text("2"), OperationStatus::EXECUTING);
  EXPECT_TRUE(same(builder.fields,
                   map_of("id", text("1"), "source", text("2"), "status", text("EXECUTING"))));
  EXPECT_TRUE(builder.measurements.empty());
}

constexpr const char* OPERATION_STATUSES[] = {"SUCCESSFUL", "FAILED", "EXECUTING", "PENDING"};

TEST_F(OperationTexts, ValuesAndTextsMatchInOrder) {
  for (int i = 0; i < 4; ++i) {
    const auto status = static_cast<OperationStatus>(i);
    EXPECT_EQ(operationStatusFromString(OPERATION_STATUSES[i]), status);
    EXPECT_TRUE(same(operationStatusToDataTString(status), text(OPERATION_STATUSES[i])));
  }
  EXPECT_EQ(static_cast<int>(OperationStatus::SUCCESSFUL), 0);
  EXPECT_EQ(static_cast<int>(OperationStatus::FAILED), 1);
  EXPECT_EQ(static_cast<int>(OperationStatus::EXECUTING), 2);
  EXPECT_EQ(static_cast<int>(OperationStatus::PENDING), 3);
}

TEST_F(OperationTexts, AnyOtherTextIsRefused) {
  for (const char* const status : {"pending", "SUCCESS", "SUCCESSFULL", "Failed", "FAILED ", "",
                                   " PENDING", "E", "DONE", "EXECUTINg", "100%s"}) {
    EXPECT_EQ(error_of([&] { (void)operationStatusFromString(status); }),
              std::string("Unrecognized operation status: ") + status);
  }
}

TEST_F(OperationTexts, ValueOutsideTheEnumerationIsRefused) {
  for (const int value : {4, 5, 255, -1, std::numeric_limits<int>::max()}) {
    const auto status = static_cast<OperationStatus>(value);
    EXPECT_EQ(error_of([&] { (void)operationStatusToDataTString(status); }),
              "Unrecognized enum value.");
  }
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
