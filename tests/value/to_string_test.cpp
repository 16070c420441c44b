// Display texts: the host renders values; to_string cuts a message's text and keeps it on one line.
#include "value/to_string.hpp"

#include <gtest/gtest.h>

#include "tests/support/host_fixture.hpp"
#include "tests/value/kinds.hpp"
#include "tests/value/rendering.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ToString = HostFixture;

// The host's rendering of a string is two quotes longer.
data_t text_rendered_in(std::size_t length, char filling = 'x') {
  return data_t(std::string(length - 2, filling).c_str());
}

TEST_F(ToString, ValuesLookAsTheHostRendersThem) {
  EXPECT_EQ(to_string(data_t()), "null");
  EXPECT_EQ(to_string(whole(-3)), "-3");
  EXPECT_EQ(to_string(text("a")), "\"a\"");
  EXPECT_EQ(to_string(data_t(mapOf("k", listOf(truth(true))))), "{\"k\": [true]}");
}

TEST_F(ToString, NoKindThrows) {
  for (const kind_t& kind : KINDS) {
    EXPECT_EQ(errorOf([&] { static_cast<void>(to_string(kind.make())); }), "nothing thrown")
        << kind.name;
  }
  for (std::uint32_t tag = 5; tag <= 10; ++tag) {
    EXPECT_EQ(errorOf([&] { static_cast<void>(to_string(tagged(tag))); }), "nothing thrown")
        << "null block of tag " << tag;
  }
}

TEST_F(ToString, RenderingIsFreed) {
  const data_t value = listOf(text("a"));
  const std::int64_t before = standin_live_blocks_total();
  standin_reset_calls();
  EXPECT_EQ(to_string(value), "[\"a\"]");
  EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 1);
  EXPECT_EQ(standin_calls_total(), 2); // and the release of the rendering
  EXPECT_EQ(standin_live_blocks_total(), before);
}

TEST_F(ToString, MapIsViewedNotCopied) {
  const map_t map = mapOf("k", text("v"));
  standin_reset_calls();
  EXPECT_EQ(to_string(map), "{\"k\": \"v\"}");
  EXPECT_EQ(standin_calls(STANDIN_COPY_DATA), 0);
  EXPECT_EQ(standin_calls(STANDIN_FREE_MAP), 0);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(to_string(map_t()), "{}");
}

TEST_F(ToString, NullFromTheHostIsALogicError) {
  const Rendering none(nullptr);
  EXPECT_THROW(static_cast<void>(to_string(whole(1))), std::logic_error);
  EXPECT_THROW(static_cast<void>(to_string(map_t())), std::logic_error);
  EXPECT_THROW(static_cast<void>(to_string(Message(), true)), std::logic_error);
}

TEST_F(ToString, ExhaustedMemoryIsALogicError) {
  const data_t value = text("a");
  standin_fail_allocations_from(1);
  EXPECT_THROW(static_cast<void>(to_string(value)), std::logic_error);
}

// ---- messages

TEST_F(ToString, MessageShowsMetadataThenPayload) {
  const Message message(listOf(whole(1)), mapOf("k", text("v")));
  EXPECT_EQ(to_string(message, true), "Message<metadata={\"k\": \"v\"}, payload=[1]>");
  EXPECT_EQ(to_string(Message(), true), "Message<metadata={}, payload=null>");
}

TEST_F(ToString, PayloadOfTwoHundredBytesStaysWhole) {
  const Message message(text_rendered_in(200));
  EXPECT_EQ(to_string(message, true),
            "Message<metadata={}, payload=\"" + std::string(198, 'x') + "\">");
}

TEST_F(ToString, LongPayloadIsCutTo196Bytes) {
  const Message message(text_rendered_in(201));
  EXPECT_EQ(to_string(message, true),
            "Message<metadata={}, payload=\"" + std::string(195, 'x') + " ...>");
}

TEST_F(ToString, LengthsAreBytesNotCharacters) {
  const std::string hundred_umlauts = [] {
    std::string text;
    for (int i = 0; i < 100; ++i) text += "\xc3\xa4";
    return text;
  }();
  const Message message(data_t(hundred_umlauts.c_str())); // 202 bytes with the quotes
  EXPECT_EQ(to_string(message, true),
            "Message<metadata={}, payload=\"" + hundred_umlauts.substr(0, 195) + " ...>");
}

TEST_F(ToString, LongPayloadStaysWholeWithoutTruncation) {
  const Message message(text_rendered_in(5000));
  EXPECT_EQ(to_string(message, false),
            "Message<metadata={}, payload=\"" + std::string(4998, 'x') + "\">");
}

TEST_F(ToString, LineBreaksOfThePayloadAreEscaped) {
  const struct {
    const char* rendered;
    const char* shown;
  } rows[] = {{"a\nb", "a\\nb"},
              {"a\rb", "a\\rb"},
              {"\r\n", "\\r\\n"},
              {"\n\n\n", "\\n\\n\\n"},
              {"\n\r\n\r", "\\n\\r\\n\\r"},
              {"\\n\n", "\\n\\n"},
              {"\t\v", "\t\v"},
              {"", ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.shown);
    const Rendering host(row.rendered);
    EXPECT_EQ(to_string(whole(1)), row.rendered) << "a value's own text is not escaped";
    EXPECT_EQ(to_string(Message(whole(1)), true),
              std::string("Message<metadata=") + row.rendered + ", payload=" + row.shown + ">");
    EXPECT_EQ(to_string(Message(whole(1)), false), to_string(Message(whole(1)), true));
  }
}

TEST_F(ToString, CutComesBeforeEscaping) {
  const auto repeated = [](std::size_t count, const std::string& part) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += part;
    return text;
  };
  const std::string whole_breaks(200, '\n');
  const std::string cut_breaks(201, '\n');
  {
    const Rendering host(whole_breaks.c_str());
    EXPECT_EQ(to_string(Message(), true),
              "Message<metadata=" + whole_breaks + ", payload=" + repeated(200, "\\n") + ">");
  }
  const Rendering host(cut_breaks.c_str());
  EXPECT_EQ(to_string(Message(), true),
            "Message<metadata=" + cut_breaks + ", payload=" + repeated(196, "\\n") + " ...>");
}

TEST_F(ToString, MetadataIsNeverCut) {
  const std::string long_text(300, 'm');
  const Message message(whole(1), mapOf("k", data_t(long_text.c_str())));
  EXPECT_EQ(to_string(message, true),
            "Message<metadata={\"k\": \"" + long_text + "\"}, payload=1>");
}

TEST_F(ToString, BothFieldsAreRenderedOnce) {
  const Message message(text("p"), mapOf("k", text("v")));
  standin_reset_calls();
  EXPECT_FALSE(to_string(message, true).empty());
  EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 2);
}

} // namespace
} // namespace com::velanto::connectivity::test
