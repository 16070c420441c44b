#include "tools/explain/faults.hpp"

#include "tests/tools/explain/explain_fixture.hpp"

namespace com::velanto::connectivity::test {

namespace {

class FaultsTest : public ExplainFixture {
 protected:
  // A line for each fault, "PATH VALUE → MENDED", or "? PATH VALUE" for each suspect.
  std::string faults(const std::string& payload, const codec_t& codec) {
    const tools::blame_t blame = explained(payload, codec).blame;
    std::string text;
    const auto append = [&text](const tools::faulty_place_t& fault) {
      text += tools::textOf(fault.path) + (fault.missing ? " missing" : " " + fault.found);
    };
    for (const tools::faulty_place_t& fault : blame.faults) {
      append(fault);
      text += " → " + fault.mended + "\n";
    }
    for (const tools::faulty_place_t& fault : blame.suspects) {
      text += "? ";
      append(fault);
      text += "\n";
    }
    return text;
  }
};

// Refuses in words that begin with the message's id, and gives accepted messages a type.
codec_t checking(const std::function<void(map_t& payload)>& check) {
  return onPayload([check](map_t& payload) {
    const data_t* const id = payload.find_value(text("id"));
    const std::string about = id != nullptr && id->is_string()
                                  ? std::string(" ('id' = '") + id->get<const char*>() + "')"
                                  : "";
    try {
      check(payload);
    } catch (const std::exception& e) {
      throw std::runtime_error("failed" + about + ": " + e.what());
    }
    payload[text("type")] = text("T");
  });
}

void require(bool good, const std::string& reason) {
  if (!good) throw std::runtime_error(reason);
}

bool isText(const map_t& payload, const char* key) {
  const data_t* const value = payload.find_value(text(key));
  return value != nullptr && value->is_string();
}

std::string textOf(const map_t& payload, const char* key) {
  return payload.find_value(text(key))->get<const char*>();
}

} // namespace

TEST_F(FaultsTest, AMissingNameIsProvenByAddingIt) {
  EXPECT_EQ(faults(R"({"id":"7","a":1})", checking([](const map_t& payload) {
                     require(has(payload, "text"), "no key 'text'");
                   })),
            "text missing → \"x\"\n");
  EXPECT_EQ(faults(R"({"id":"7","s":{"a":1}})", checking([](map_t& payload) {
                     require(has(at(payload, "s").get<map_t>(), "id"), "no key 'id' in source");
                   })),
            "s.id missing → \"x\"\n");
}

TEST_F(FaultsTest, RightKindProvesAWrongOne) {
  EXPECT_EQ(faults(R"({"id":"7","count":"4"})", checking([](map_t& payload) {
                     require(at(payload, "count").type_tag() == VLT_TAG_INTEGER, "'count' is none");
                   })),
            "count \"4\" → 4\n");
}

TEST_F(FaultsTest, AWordIsProvenByItsLetters) {
  EXPECT_EQ(faults(R"({"id":"7","severity":"Warning"})", checking([](map_t& payload) {
                     const std::string severity = textOf(payload, "severity");
                     require(severity == "WARNING", "unknown severity: " + severity);
                   })),
            "severity \"Warning\" → \"WARNING\"\n");
}

TEST_F(FaultsTest, ValueWithTheFormProvesIt) {
  EXPECT_EQ(faults(R"({"id":"7","made":"08:00Z","time":"08:00"})", checking([](map_t& payload) {
                     const std::string time = textOf(payload, "time");
                     require(time.size() == 6 && time.ends_with('Z'), "cannot read " + time);
                   })),
            "time \"08:00\" → \"08:00Z\"\n");
}

TEST_F(FaultsTest, AMisleadingNameDoesNotHideTheField) {
  EXPECT_EQ(faults(R"({"id":"7","name":12,"other":true})", checking([](map_t& payload) {
                     require(isText(payload, "name"), "key 'source' is no text");
                   })),
            "name 12 → \"12\"\n");
}

TEST_F(FaultsTest, SeveralFaultsComeInOrderOfDiscovery) {
  EXPECT_EQ(faults(R"({"id":"7","b":3})", checking([](map_t& payload) {
                     require(has(payload, "a"), "no key 'a'");
                     require(isText(payload, "b"), "key 'b' is no text");
                     require(at(payload, "a").type_tag() == VLT_TAG_MAP, "key 'a' is no map");
                   })),
            "a missing → {}\nb 3 → \"3\"\n");
}

TEST_F(FaultsTest, FieldThatNothingMendsIsASuspect) {
  EXPECT_EQ(faults(R"({"id":"7","kind":"a/inventory/7","x":"y"})", checking([](map_t& payload) {
                     const std::string kind = textOf(payload, "kind");
                     const std::string word = kind.substr(2, kind.rfind('/') - 2);
                     require(word == "events", "unknown kind: " + word);
                   })),
            "? kind \"a/inventory/7\"\n");
  EXPECT_EQ(faults(R"({"id":"7","x":"y"})", checking([](map_t& payload) {
                     require(has(payload, "status"), "no key 'status'");
                     require(textOf(payload, "status") == "OPEN",
                             "unknown " + textOf(payload, "status"));
                   })),
            "? status missing\n");
}

// There is no log line and no quote: only the outcome can tell.
TEST_F(FaultsTest, SilentRefusalsAreProvenJustTheSame) {
  EXPECT_EQ(faults(R"({"a":"1","b":2})",
                   [](Message& message) {
                     auto& payload = message.getPayload().get<map_t>();
                     payload[text("type")] = text("T");
                     return isText(payload, "b");
                   }),
            "b 2 → \"2\"\n");
  EXPECT_EQ(faults(R"({"a":"1"})", [](Message&) { return false; }), "");
}

TEST_F(FaultsTest, PassingUnchangedProvesNothing) {
  EXPECT_EQ(faults(R"({"path":7,"a":1})",
                   [](Message& message) {
                     auto& payload = message.getPayload().get<map_t>();
                     if (at(payload, "path").type_tag() != VLT_TAG_INTEGER) return true;
                     throw std::runtime_error("never for " + to_string(at(payload, "path")));
                   }),
            "? path 7\n");
}

TEST_F(FaultsTest, PayloadsNeedNotBeMaps) {
  EXPECT_EQ(faults("[1]",
                   [](Message& message) {
                     require(message.getPayload().type_tag() == VLT_TAG_MAP, "payload is no map");
                     return false;
                   }),
            "");
  EXPECT_EQ(faults("\"a\"",
                   [](Message& message) {
                     require(message.getPayload().type_tag() == VLT_TAG_MAP, "payload is no map");
                     message.getPayload().get<map_t>()[text("type")] = text("T");
                     return true;
                   }),
            "payload \"a\" → {}\n");
}

} // namespace com::velanto::connectivity::test
