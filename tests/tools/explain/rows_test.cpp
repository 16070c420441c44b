#include "tools/explain/rows.hpp"

#include <algorithm>
#include <set>
#include <sstream>

#include "tests/tools/explain/explain_fixture.hpp"

namespace com::velanto::connectivity::test {

namespace {

using RowsTest = ExplainFixture;

} // namespace

TEST_F(RowsTest, RowsHaveValues) {
  const tools::explanation_t told =
      explained(R"({"n":9007199254740993,"l":[1],"t":"é"})", onPayload([](map_t& payload) {
                  payload[text("m")] = taken(payload, "n");
                  payload[text("t2")] = real(0.1);
                }));
  ASSERT_EQ(told.rows.size(), 4u);
  EXPECT_EQ(told.rows[0].from.front().json, ""); // a list as a whole
  EXPECT_EQ(told.rows[1].from.front().json, "\"é\"");
  EXPECT_EQ(told.rows[2].to.front().json, "9007199254740993");
  EXPECT_EQ(told.rows[3].to.front().json, "0.1");
}

TEST_F(RowsTest, LostMapIsOneRow) {
  EXPECT_EQ(
      fates(R"({"a":{"b":{"c":1,"d":2},"e":"x"},"f":{"g":1,"h":2}})", onPayload([](map_t& payload) {
              taken(payload, "a");
              taken(at(payload, "f").get<map_t>(), "g");
            })),
      "unchanged f.h\nlost a\nlost f.g\n");
}

TEST_F(RowsTest, FieldsInACodecsMapAreGathered) {
  EXPECT_EQ(fates(R"({"f":{"T":{"value":1,"units":"C"}},"s":{"id":"1"},"p":{"x":1}})",
                  onPayload([](map_t& payload) {
                    data_t fragment = taken(payload, "f");
                    data_t series = taken(fragment.get<map_t>(), "T");
                    series.get<map_t>()[text("params")] = mapOf();
                    payload[text("all")] = mapOf("T", std::move(series));
                    data_t source = taken(payload, "s");
                    payload[text("s")] = taken(source.get<map_t>(), "id");
                    auto& p = at(payload, "p").get<map_t>();
                    p[text("y")] = taken(p, "x");
                  })),
            "renamed p.x → p.y\nrenamed s.id → s\ngathered f.T.units → all.T.units\n"
            "gathered f.T.value → all.T.value\nadded all.T.params\n");
}

TEST_F(RowsTest, FieldsWithACommonOutcomeShareARow) {
  EXPECT_EQ(fates(R"({"a":1,"b":2,"c":3,"d":4})", onPayload([](map_t& payload) {
                    const auto number = [&](const char* name) {
                      return taken(payload, name).get<std::int64_t>();
                    };
                    const auto a = number("a");
                    const auto b = number("b");
                    const auto c = number("c");
                    payload[text("ab")] = whole(a * 100 + b);
                    payload[text("bc")] = whole(b * 100 + c);
                    payload[text("dd")] = whole(number("d") * 100);
                  })),
            "converted a, b, c → ab, bc\nconverted d → dd\n");
}

// The larger of two equal numbers is both of them.
TEST_F(RowsTest, AmbiguousValueIsMadeFromBoth) {
  EXPECT_EQ(fates(R"({"a":5,"b":5})", onPayload([](map_t& payload) {
                    payload[text("most")] =
                        whole(std::max(taken(payload, "a").get<std::int64_t>(),
                                       taken(payload, "b").get<std::int64_t>()));
                  })),
            "converted a, b → most\n");
}

TEST_F(RowsTest, OfADroppedMessageEveryFieldIsLost) {
  EXPECT_EQ(textOf(explainedLine(R"({"metadata":{"p":1},"payload":{"a":{"b":1},"c":2}})",
                                 [](Message&) { return false; })
                       .rows),
            "lost metadata.p\nlost a\nlost c\n");
  EXPECT_EQ(textOf(explained("7", [](Message&) { return false; }).rows), "lost payload\n");
  EXPECT_EQ(textOf(explained("[7,8]", [](Message&) { return false; }).rows), "lost payload\n");
}

TEST_F(RowsTest, FieldsNotFollowedAreUnknown) {
  most_values_ = 100'000;
  std::string payload = "{\"out\":1,";
  for (int i = 0; i < 1000; ++i)
    payload += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  payload.back() = '}';
  const tools::explanation_t told =
      explained(payload, onPayload([](map_t& all) { at(all, "out") = whole(2); }));
  EXPECT_TRUE(told.limited);
  EXPECT_EQ(told.rows.back().fate, tools::Fate::UNKNOWN);
  EXPECT_EQ(told.rows.front().fate, tools::Fate::UNCHANGED);
  EXPECT_EQ(told.rows.size() - 1 + told.rows.back().from.size(), 1001u);
}

TEST_F(RowsTest, TopOfALargeMessageComesFirst) {
  most_values_ = 100'000;
  std::string payload = "{\"deep\":{";
  for (int i = 0; i < 1000; ++i)
    payload += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  payload.back() = '}';
  const tools::explanation_t told = explained(payload + ",\"top\":1}", onPayload([](map_t& all) {
                                                at(all, "deep").get<map_t>()[text("more")] =
                                                    whole(1);
                                                all[text("new")] = taken(all, "top");
                                              }));
  ASSERT_FALSE(told.rows.empty());
  EXPECT_TRUE(told.limited);
  const auto renamed =
      std::find_if(told.rows.begin(), told.rows.end(),
                   [](const tools::row_t& row) { return row.fate == tools::Fate::RENAMED; });
  ASSERT_NE(renamed, told.rows.end());
  EXPECT_EQ(tools::textOf(renamed->to.front().path), "new");
}

// Random codecs of known moves, copies, removals and conversions.
TEST_F(RowsTest, RowsTellTheKnownChanges) {
  std::uint32_t seed = 1;
  const auto dice = [&seed](std::uint32_t sides) {
    seed = seed * 1664525 + 1013904223;
    return (seed >> 16U) % sides;
  };
  const char* const values[] = {"\"x\"",     "\"y1\"",       "7", "7", "0.5", "true", "null",
                                "[1,\"x\"]", "{\"k\":\"x\"}"};
  for (int round = 0; round < 300; ++round) {
    std::string payload;
    std::vector<std::uint32_t> ways;
    std::multiset<std::string> expected;
    for (int i = 0; i < 8; ++i) {
      const std::string name = "k" + std::to_string(i);
      const std::uint32_t value = dice(9);
      payload += (payload.empty() ? "{\"" : ",\"") + name + "\":" + values[value];
      ways.push_back(dice(5));
      const char* const lines[] = {"unchanged K", "renamed K → rK", "lost K", "gathered K → g.m.K",
                                   "unchanged K"};
      std::string line = lines[ways.back()];
      for (std::size_t at = 0; (at = line.find('K', at)) != std::string::npos; at += name.size()) {
        line.replace(at, 1, name);
      }
      expected.insert(line);
      if (ways.back() == 4) expected.insert("added c" + name);
    }
    const codec_t codec = onPayload([&](map_t& all) {
      map_t gathered;
      for (int i = 0; i < 8; ++i) {
        const std::string name = "k" + std::to_string(i);
        const std::uint32_t way = ways[static_cast<std::size_t>(i)];
        if (way == 1) all[text(("r" + name).c_str())] = taken(all, name.c_str());
        if (way == 2) taken(all, name.c_str());
        if (way == 3) gathered[text(name.c_str())] = taken(all, name.c_str());
        if (way == 4) all[text(("c" + name).c_str())] = text("x");
      }
      if (!gathered.empty()) all[text("g")] = mapOf("m", data_t(std::move(gathered)));
    });
    std::istringstream lines(fates(payload + "}", codec));
    std::multiset<std::string> told;
    for (std::string line; std::getline(lines, line);) told.insert(line);
    EXPECT_EQ(told, expected) << payload;
  }
}

} // namespace com::velanto::connectivity::test
