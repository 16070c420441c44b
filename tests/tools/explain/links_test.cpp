#include "tools/explain/links.hpp"

#include "tests/tools/explain/explain_fixture.hpp"

namespace com::velanto::connectivity::test {

namespace {

using LinksTest = ExplainFixture;

} // namespace

TEST_F(LinksTest, SameBlockIsTheSameString) {
  EXPECT_EQ(fates(R"({"a":"x","b":"x"})", onPayload([](map_t& payload) {
                    payload[text("c")] = taken(payload, "b");
                    taken(payload, "a");
                  })),
            "renamed b → c\nlost a\n");
}

TEST_F(LinksTest, ChangesTellEqualNumbersApart) {
  EXPECT_EQ(fates(R"({"a":7,"b":7,"c":true,"d":true,"e":null,"f":null,"g":0.5,"h":0.5})",
                  onPayload([](map_t& payload) {
                    for (const char* const name : {"b", "d", "f", "h"}) {
                      payload[text((std::string(name) + "2").c_str())] = taken(payload, name);
                    }
                    for (const char* const name : {"a", "c", "e", "g"}) taken(payload, name);
                  })),
            "renamed b → b2\nrenamed d → d2\nrenamed f → f2\nrenamed h → h2\n"
            "lost a\nlost c\nlost e\nlost g\n");
}

TEST_F(LinksTest, CopiedStringIsFollowedAndMarked) {
  EXPECT_EQ(fates(R"({"a":"x"})", onPayload([](map_t& payload) {
                    const data_t a = taken(payload, "a");
                    payload[text("b")] = data_t(a); // made while the other is still there
                  })),
            "renamed a → b (copied)\n");
}

// The allocator hands the block freed last to the next string of its size.
TEST_F(LinksTest, ReusedBlockIsNotItsOldString) {
  EXPECT_EQ(fates(R"({"a":"tenant","b":1})", onPayload([](map_t& payload) {
                    taken(payload, "a");
                    payload[text("c")] = text("tenant");
                  })),
            "unchanged b\nadded c\nlost a\n");
}

TEST_F(LinksTest, ListsAndMapsMoveAsAWhole) {
  EXPECT_EQ(fates(R"({"m":{"x":[1,{"y":"z"}],"n":null},"l":[1,1]})", onPayload([](map_t& payload) {
                    payload[text("k")] = mapOf("in", taken(payload, "m"));
                  })),
            "unchanged l\ngathered m → k.in\n");
}

TEST_F(LinksTest, EntriesOfAChangedMapAreFollowed) {
  EXPECT_EQ(fates(R"({"m":{"a":"1","b":2,"c":"3"}})", onPayload([](map_t& payload) {
                    auto& inner = at(payload, "m").get<map_t>();
                    taken(inner, "c");
                    inner[text("d")] = whole(4);
                  })),
            "unchanged m.a\nunchanged m.b\nadded m.d\nlost m.c\n");
}

TEST_F(LinksTest, ElementsOfListsAreFollowed) {
  EXPECT_EQ(fates(R"({"l":["a",2,"c"]})", onPayload([](map_t& payload) {
                    auto& list = at(payload, "l").get<list_t>();
                    if (list.size() != 3) return; // one has been left out
                    std::swap(list[0], list[2]);
                    list[1] = real(2.5);
                  })),
            "renamed l[0] → l[2]\nrenamed l[2] → l[0]\nreplaced l[1] (without: passed)\n");
}

TEST_F(LinksTest, AValueMadeFromAnotherIsConverted) {
  EXPECT_EQ(fates(R"({"a":"abc","n":2})", onPayload([](map_t& payload) {
                    const data_t a = taken(payload, "a");
                    payload[text("last")] =
                        whole(a.get<const char*>()[std::strlen(a.get<const char*>()) - 1]);
                    at(payload, "n") = whole(at(payload, "n").get<std::int64_t>() * 2);
                  })),
            "converted a → last\nconverted n\n");
}

TEST_F(LinksTest, ValueEqualByChanceIsConverted) {
  EXPECT_EQ(fates(R"({"a":1})", onPayload([](map_t& payload) {
                    const auto a = taken(payload, "a").get<std::int64_t>();
                    payload[text("square")] = whole(a * a);
                  })),
            "converted a → square\n");
}

TEST_F(LinksTest, EachPartOfAStringIsFollowed) {
  const codec_t split = onPayload([](map_t& payload) {
    const std::string all = at(payload, "a").get<const char*>();
    payload[text("hours")] = text(all.substr(0, 2).c_str());
    payload[text("minutes")] = text(all.substr(3).c_str());
  });
  EXPECT_EQ(fates(R"({"a":"08:30"})", split),
            "unchanged a\nconverted → hours ⇐ a\nconverted → minutes ⇐ a\n");
  EXPECT_EQ(fates(R"({"a":"08:30"})",
                  [&](Message& message) {
                    split(message);
                    taken(message.getPayload().get<map_t>(), "a");
                    return true;
                  }),
            "converted a → hours, minutes\n");
}

TEST_F(LinksTest, ValueMadeFromSeveralHasThemAll) {
  EXPECT_EQ(fates(R"({"a":1,"b":2,"c":3})", onPayload([](map_t& payload) {
                    const auto sum = taken(payload, "a").get<std::int64_t>() +
                                     taken(payload, "b").get<std::int64_t>();
                    payload[text("sum")] = whole(sum);
                  })),
            "unchanged c\nconverted a, b → sum\n");
}

TEST_F(LinksTest, ValueMadeFromAMovedOneNamesIt) {
  EXPECT_EQ(fates(R"({"a":"abc","l":[1,2]})", onPayload([](map_t& payload) {
                    payload[text("length")] = whole(static_cast<std::int64_t>(
                        std::strlen(at(payload, "a").get<const char*>())));
                    payload[text("first")] = whole(at(payload, "a").get<const char*>()[0]);
                    const data_t* const list = payload.find_value(text("l"));
                    payload[text("has")] = truth(list != nullptr);
                  })),
            "unchanged a\nunchanged l\nconverted → first ⇐ a\nconverted → has ⇐ l\n"
            "converted → length ⇐ a\n");
}

TEST_F(LinksTest, ASecondCopyRefersToTheFirst) {
  EXPECT_EQ(fates(R"({"a":"x","n":1})", onPayload([](map_t& payload) {
                    payload[text("a2")] = data_t(at(payload, "a"));
                    payload[text("n2")] = data_t(at(payload, "n"));
                  })),
            "unchanged a\nunchanged n\ncopied → a2 ⇐ a\ncopied → n2 ⇐ n\n");
}

TEST_F(LinksTest, RemovalShowsEmptyListsAndMaps) {
  EXPECT_EQ(fates(R"({"l":[],"m":{},"x":[],"y":{}})", onPayload([](map_t& payload) {
                    if (has(payload, "l")) payload[text("l2")] = taken(payload, "l");
                    taken(payload, "y");
                    payload[text("z")] = mapOf();
                  })),
            "unchanged m\nunchanged x\nrenamed l → l2\nadded z\nlost y\n");
}

TEST_F(LinksTest, ValueInTheWayIsNamed) {
  EXPECT_EQ(fates(R"({"name":"a","source":"b","time":1,"first":2})", onPayload([](map_t& payload) {
                    data_t name = taken(payload, "name");
                    if (!has(payload, "source")) payload[text("source")] = std::move(name);
                    const data_t time = taken(payload, "time");
                    if (!has(payload, "first")) {
                      payload[text("first")] = real(static_cast<double>(time.get<std::int64_t>()));
                    }
                  })),
            "unchanged first\nunchanged source\nreplaced name ⇐ source\nreplaced time ⇐ first\n");
}

TEST_F(LinksTest, ValueInTheSamePlaceReplacesIt) {
  EXPECT_EQ(fates(R"({"tenant":"t9","name":"a","source":"b"})", onPayload([](map_t& payload) {
                    payload[text("tenant")] = text("t1");
                    payload[text("source")] = taken(payload, "name");
                  })),
            "renamed name → source\nreplaced source ⇐ name\nreplaced tenant\n");
}

TEST_F(LinksTest, LostFieldsHaveTheResultWithoutThem) {
  const codec_t codec = [](Message& message) {
    auto& payload = message.getPayload().get<map_t>();
    if (!has(payload, "path")) return true;
    if (!has(payload, "needed")) return false;
    if (has(payload, "mode")) payload[text("moded")] = whole(1);
    for (const char* const name : {"path", "needed", "mode", "idle"}) taken(payload, name);
    payload[text("type")] = text("T");
    return true;
  };
  EXPECT_EQ(fates(R"({"path":"p","needed":"n","mode":"m","idle":"i"})", codec),
            "added moded\nadded type\nlost idle\nlost mode (without: different)\n"
            "lost needed (without: dropped)\nlost path (without: passed)\n");
}

TEST_F(LinksTest, ChangesThatAreRefusedAreTriedOtherwise) {
  const codec_t digits_first = onPayload([](map_t& payload) {
    const data_t a = taken(payload, "a");
    if (a.get<const char*>()[0] != '1') throw std::runtime_error("must begin with 1");
    payload[text("b")] = whole(a.get<const char*>()[2]);
  });
  EXPECT_EQ(fates(R"({"a":"1-2"})", digits_first), "converted a → b\n");
}

TEST_F(LinksTest, MetadataIsFollowedToo) {
  const codec_t codec = [](Message& message) {
    map_t& metadata = message.getMetadataMap();
    message.getPayload().get<map_t>()[text("path")] = taken(metadata, "path");
    metadata[text("type")] = text("T");
    return true;
  };
  EXPECT_EQ(
      textOf(explainedLine(R"({"metadata":{"path":"p","n":1},"payload":{"a":1}})", codec).rows),
      "unchanged metadata.n\nunchanged a\nrenamed metadata.path → path\nadded metadata.type\n");
}

TEST_F(LinksTest, PayloadsNeedNotBeMaps) {
  const codec_t wrap = [](Message& message) {
    message.getPayload() = mapOf("value", std::move(message.getPayload()));
    return true;
  };
  EXPECT_EQ(fates("7", wrap), "renamed payload → value\n");
  EXPECT_EQ(fates("[1,2]", wrap), "renamed payload → value\n");
  EXPECT_EQ(fates("\"a\"", wrap), "renamed payload → value\n");
  EXPECT_EQ(textOf(explainedLine("{}",
                                 [](Message& message) {
                                   message.getPayload() = whole(1);
                                   return true;
                                 })
                       .rows),
            "added payload\n");
}

} // namespace com::velanto::connectivity::test
