// The explanations for people.
#include "tests/tools/explain/explain_fixture.hpp"
#include "tools/record/columns.hpp"

#include <sstream>

namespace com::velanto::connectivity::test {

namespace {

class ExplanationTextTest : public ExplainFixture {
 protected:
  // The explanation of a payload, without the heading.
  std::string told(const std::string& payload, const codec_t& codec, bool colour = false) {
    const tools::explanation_t explanation = explained(payload, codec);
    if (record_.outputs.empty()) record_.outcome = tools::Outcome::DROPPED;
    const std::string text = tools::explanationText(record_, explanation, colour);
    return text.substr(text.find('\n') + 1);
  }
};

} // namespace

TEST_F(ExplanationTextTest, HeadingsHavePlaceKindAndOutcome) {
  const tools::explanation_t told = explained("{\"a\":1}", [](Message&) { return true; });
  EXPECT_EQ(tools::explanationText(record_, told, false),
            "in:1: no path, passed\n  unchanged  everything\n");
  record_.outcome = tools::Outcome::MALFORMED;
  EXPECT_EQ(tools::explanationText(record_, told, false), "");
}

TEST_F(ExplanationTextTest, EveryFateHasItsForm) {
  EXPECT_EQ(told(R"({"kept":{"a":1},"copy":"c","time":"08:00","tenant":"t9","name":"n","source":"s",
                     "old":"o","f":{"T":{"value":1,"units":"C"}},"gone":{"a":1,"b":2},"idle":1})",
                 onPayload([](map_t& payload) {
                   payload[text("new")] = taken(payload, "old");
                   const data_t copy = taken(payload, "copy");
                   payload[text("copy")] = data_t(copy);
                   const data_t time = taken(payload, "time");
                   payload[text("first")] = real(time.get<const char*>()[0] * 1.5);
                   payload[text("tenant")] = text("t1");
                   taken(payload, has(payload, "source") ? "name" : "nothing");
                   data_t fragment = taken(payload, "f");
                   payload[text("all")] = mapOf("T", taken(fragment.get<map_t>(), "T"));
                   taken(at(payload, "gone").get<map_t>(), "a");
                   taken(payload, "idle");
                   payload[text("type")] = text("T");
                 })),
            "  unchanged  gone.b, kept, source, copy (copied)\n"
            "  renamed    old → new\n"
            "  gathered   f.T → all.T\n"
            "  converted  time \"08:00\" → first 72.0\n"
            "  replaced   name \"n\" by source\n"
            "             tenant \"t9\" → \"t1\"\n"
            "  added      type \"T\"\n"
            "  lost       gone.a, idle\n");
}

TEST_F(ExplanationTextTest, FieldsWithTheSameWayShareAnEntry) {
  EXPECT_EQ(told(R"({"f":{"a":1,"b":2,"c":"x"},"g":{"a":{"v":1},"b":{"v":2}}})",
                 onPayload([](map_t& payload) {
                   data_t f = taken(payload, "f");
                   data_t g = taken(payload, "g");
                   auto& from = f.get<map_t>();
                   payload[text("q")] = mapOf("a", taken(from, "a"), "b", taken(from, "b"));
                   map_t all;
                   for (const char* const name : {"a", "b"}) {
                     data_t series = taken(g.get<map_t>(), name);
                     series.get<map_t>()[text("p")] = mapOf();
                     all[text(name)] = std::move(series);
                   }
                   payload[text("all")] = std::move(all);
                 })),
            "  gathered   f.{a,b} → q\n"
            "             g.a → all.a\n"
            "             g.b → all.b\n"
            "  added      all.{a,b}.p {}\n"
            "  lost       f.c\n");
}

TEST_F(ExplanationTextTest, DroppedMessagesShowLogFaultAndFields) {
  const codec_t codec = onPayload([](map_t& payload) {
    if (!has(payload, "text")) throw std::runtime_error("<codec> no key 'text'");
    payload[text("type")] = text("T");
  });
  EXPECT_EQ(told(R"({"b":1,"a":{"c":2}})", codec),
            "  logged     <codec> no key 'text'\n"
            "  at fault   text is missing; \"x\" would do\n"
            "  lost       a, b\n");
}

TEST_F(ExplanationTextTest, SuspectsAppearWithoutAProvenFault) {
  const codec_t codec = onPayload([](map_t& payload) {
    throw std::runtime_error(std::string("bad ") + at(payload, "a").get<const char*>());
  });
  EXPECT_EQ(told(R"({"a":"xyz","b":{}})", codec),
            "  logged     bad xyz\n  suspect    a \"xyz\"\n  lost       a, b\n");
}

TEST_F(ExplanationTextTest, AnUnstablePluginIsSaidToBeOne) {
  tools::explanation_t explanation;
  explanation.stable = false;
  const std::string file = "in";
  record_.file = &file;
  EXPECT_EQ(tools::explanationText(record_, explanation, false),
            "in:0: no path, dropped\n"
            "  unknown    when asked again, the plug-in gives something else\n");
}

TEST_F(ExplanationTextTest, ColoursTellFates) {
  EXPECT_EQ(told(R"({"a":1,"b":2})", onPayload([](map_t& payload) {
                   taken(payload, "b");
                   payload[text("c")] = mapOf();
                 }),
                 true),
            "  \x1B[2munchanged\x1B[0m  a\n  \x1B[32madded\x1B[0m      c {}\n"
            "  \x1B[31mlost\x1B[0m       b\n");
}

TEST_F(ExplanationTextTest, LinesFit79ColumnsWithWholeNumbers) {
  const std::string name(100, 'n');
  const std::string text_of_100 = "\"" + std::string(100, 't') + "\"";
  std::string payload = "{\"in\":{";
  for (int i = 0; i < 40; ++i) {
    payload.append("\"").append(name).append(std::to_string(i)).append("\":");
    payload.append(text_of_100).append(",");
  }
  payload.back() = '}';
  payload += ",\"number" + name + "\":-1.7976931348623157e+308,\"x\":" + text_of_100 + "}";
  const std::string text_told = told(
      payload, onPayload([&](map_t& all) {
        data_t in = taken(all, "in");
        map_t out;
        int i = 0;
        for (auto&& [key, value] : in.get<map_t>()) {
          if (++i % 2 == 0) out[data_t(key)] = data_t(value);
          if (i % 5 == 0) all[data_t(key)] = text(name.c_str());
        }
        all[text("out")] = std::move(out);
        map_t alike;
        for (const char* const series : {"1", "2", "3"}) {
          alike[text((name + series).c_str())] = mapOf(name.c_str(), real(-1.234567890123457e-300));
        }
        all[text("alike")] = std::move(alike);
        data_t number = taken(all, ("number" + name).c_str());
        all[text(("b" + name).c_str())] = real(number.get<double>() / 2);
      }));
  std::istringstream lines(text_told);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(tools::widthOf(line), 79u) << line;
  EXPECT_NE(text_told.find("-1.7976931348623157e+308"), std::string::npos);
  EXPECT_NE(text_told.find("-8.988465674311579e+307"), std::string::npos);
  EXPECT_NE(text_told.find("alike.{nnnnn"), std::string::npos);
  EXPECT_NE(text_told.find("….nnnnnnnnnnn… -1.234567890123457e-300"), std::string::npos);
}

} // namespace com::velanto::connectivity::test
