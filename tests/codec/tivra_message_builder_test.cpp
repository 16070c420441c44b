// The common base of the five builders.
#include "codec/tivra_message_builder.hpp"

#include "tests/codec/examples.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class Builder : public HostFixture {};

TEST_F(Builder, IdAndTypeAreMoved) {
  data_t id = text("42");
  data_t type = borrowed("t");
  const std::uint64_t id_block = blockOf(id);
  const std::uint64_t type_block = blockOf(type);
  Message message = TivraMessageBuilder::getResult(
      std::make_unique<PlainBuilder>(std::move(id), std::move(type)));
  EXPECT_EQ(blockOf(at(message.getPayload().get<map_t>(), "id")), id_block);
  EXPECT_EQ(blockOf(at(message.getMetadataMap(), "vlt.type")), type_block);
  EXPECT_EQ(at(message.getMetadataMap(), "vlt.type").type_tag(),
            static_cast<std::uint32_t>(VLT_TAG_BORROWED_STRING));
}

TEST_F(Builder, NewMetadataMovesInBesideTheType) {
  data_t value = listOf(whole(1));
  const std::uint64_t block = blockOf(value);
  auto builder = std::make_unique<PlainBuilder>();
  standin_reset_calls();
  builder->insertIntoMetadata(DATA_T_vltDOTchannel, std::move(value));
  EXPECT_EQ(standin_calls_total(), 1) << "the copy of the key";
  Message message = TivraMessageBuilder::getResult(std::move(builder));
  map_t& metadata = message.getMetadataMap();
  EXPECT_TRUE(same(metadata, mapOf("vlt.type", text("a.b.Type"), "vlt.channel", listOf(whole(1)))));
  EXPECT_EQ(blockOf(at(metadata, "vlt.channel")), block);
}

TEST_F(Builder, IsEmptiedButStaysWithTheCaller) {
  std::unique_ptr<TivraMessageBuilder> builder = std::make_unique<PlainBuilder>();
  builder->measurements[text("T")] = real(1);
  (void)TivraMessageBuilder::getResult(std::move(builder));
  ASSERT_NE(builder, nullptr);
  EXPECT_EQ(blockOf(builder->fields), 0U);
  EXPECT_EQ(blockOf(builder->measurements), 0U);
}

static_assert(sizeof(AlarmMessageBuilder) == sizeof(TivraMessageBuilder));
static_assert(sizeof(EventMessageBuilder) == sizeof(TivraMessageBuilder));
static_assert(sizeof(MeasurementMessageBuilder) == sizeof(TivraMessageBuilder));
static_assert(sizeof(OperationMessageBuilder) == sizeof(TivraMessageBuilder));
static_assert(sizeof(ManagedObjectBuilder) == sizeof(TivraMessageBuilder));

TEST_F(Builder, MembersAreMeasurementsMessageFieldsInOrder) {
  const PlainBuilder builder;
  const auto offset = [&](const map_t& member) {
    return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&builder);
  };
  EXPECT_EQ(offset(builder.measurements), 8); // after the virtual table's pointer
  EXPECT_EQ(offset(builder.fields), 8 + 8 + 24);
}

TEST_F(Builder, UnfinishedOneFreesAllThatItHolds) {
  auto builder = std::make_unique<PlainBuilder>();
  builder->fields[text("a")] = listOf(text("x"));
  builder->measurements[text("T")] = bytes("x");
  builder->insertIntoMetadata(DATA_T_vltDOTchannel, custom());
  const std::unique_ptr<TivraMessageBuilder> base = std::move(builder); // the fixture counts
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar
