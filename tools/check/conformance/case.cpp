#include "tools/check/conformance/case.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <initializer_list>
#include <set>
#include <typeinfo>

#include "ndjson/json_reader.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/values.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

void checkMembers(const map_t& object, std::initializer_list<std::string_view> known) {
  for (const auto& [key, value] : object) {
    const std::string_view name = key.get<const char*>();
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    throw BadCase("unknown member \"" + std::string(name) + "\"");
  }
}

const data_t& requireMember(const map_t& object, const char* name) {
  const data_t* const member = findMember(object, name);
  if (member == nullptr) throw BadCase(std::string("lacks \"") + name + "\"");
  return *member;
}

void refuseMember(const map_t& object, const char* name, const char* beside) {
  if (findMember(object, name) == nullptr) return;
  throw BadCase(std::string("\"") + name + "\" makes no sense beside " + beside);
}

map_t mapOf(std::initializer_list<std::pair<const char*, const char*>> texts) {
  map_t map;
  for (const auto& [key, text] : texts) map[data_t(key)] = data_t(text);
  return map;
}

// (1) "metadata" as it is, or "path", or "event" with "channel"  (2) "payload"
map_t readMetadata(const map_t& message, ValueDecoder& decoder) {
  if (const data_t* const metadata = findMember(message, "metadata")) {
    for (const char* name : {"path", "event", "channel"}) refuseMember(message, name, "metadata");
    return decoder.decodeMap(*metadata, "metadata");
  }
  if (const data_t* const path = findMember(message, "path")) {
    for (const char* name : {"event", "channel"}) refuseMember(message, name, "path");
    return mapOf({{"pulsarPath", requireText(*path, "path")}});
  }
  if (const data_t* const event = findMember(message, "event")) {
    const std::string type = std::string("com.tivra.ostrovia.") + requireText(*event, "event");
    const char* const channel = requireText(requireMember(message, "channel"), "channel");
    return mapOf({{"vlt.type", type.c_str()}, {"vlt.channel", channel}});
  }
  refuseMember(message, "channel", "no event");
  return {};
}

Message readMessage(const data_t& json, ValueDecoder& decoder) {
  const map_t& message = requireMap(json, "a message");
  checkMembers(message, {"metadata", "path", "event", "channel", "payload"});
  map_t metadata = readMetadata(message, decoder);
  const data_t* const payload = findMember(message, "payload");
  return Message(payload == nullptr ? data_t() : decoder.decode(*payload), std::move(metadata));
}

std::vector<Message> readMessages(const map_t& line, const char* name, ValueDecoder& decoder) {
  std::vector<Message> messages;
  for (const data_t& message : requireList(requireMember(line, name), name)) {
    messages.push_back(readMessage(message, decoder));
  }
  return messages;
}

// gtest takes any name; the format wants names that fit a filter.
std::string readName(const map_t& line) {
  std::string name = requireText(requireMember(line, "name"), "name");
  const auto allowed = [](unsigned char c) { return c < 0x80 && std::isalnum(c) != 0; };
  if (name.empty() || !std::all_of(name.begin(), name.end(), allowed)) {
    throw BadCase(R"("name" must be ASCII letters and digits, not ")" + name + '"');
  }
  return name;
}

// "LEVEL TEXT", without the label of every line of the plug-in.
std::string readLogLine(const data_t& json) {
  const char* const written = requireText(json, "a log line");
  char* text = nullptr;
  const long level = std::strtol(written, &text, 10);
  if (text == written || *text != ' ') throw BadCase("a log line is a level, a blank and a text");
  return line(static_cast<vlt_log_level_t>(level), text + 1);
}

// The line of a typed get for `kind` on a value of another.
std::string wrongGet(const std::string& kind) {
  const char* type = nullptr;
  if (kind == "map") type = typeid(map_t).name();
  if (kind == "string") type = typeid(const char*).name();
  if (kind == "integer") type = typeid(std::int64_t).name();
  if (type == nullptr) throw BadCase("\"stderr\" takes map, string or integer, not " + kind);
  return std::string("GetVisitor<") + type + ">.operator()(" + type + ")";
}

void readConfiguration(const map_t& line, case_t& result) {
  const data_t* const config = findMember(line, "config");
  if (config == nullptr) {
    result.configuration = data_t(mapOf({{"tenantId", ""}}));
    return;
  }
  if (config->type_tag() == VLT_TAG_MAP && findMember(config->get<map_t>(), "$null_pointer")) {
    checkMembers(config->get<map_t>(), {"$null_pointer"});
    result.null_configuration = true;
    return;
  }
  result.configuration = result.decoder.decode(*config);
}

void readDirection(const map_t& line, case_t& result) {
  const data_t* const direction = findMember(line, "direction");
  if (direction == nullptr) return;
  const std::string name = requireText(*direction, "direction");
  if (name != "host" && name != "transport") throw BadCase("\"direction\" is host or transport");
  result.towards_transport = name == "transport";
}

void readExpectedOutput(const map_t& line, case_t& result) {
  if (const data_t* const log = findMember(line, "log")) {
    for (const data_t& entry : requireList(*log, "log")) result.log.push_back(readLogLine(entry));
  }
  if (const data_t* const written = findMember(line, "stderr")) {
    for (const data_t& kind : requireList(*written, "stderr")) {
      result.standard_error.push_back(wrongGet(requireText(kind, "stderr")));
    }
  }
}

} // namespace

std::string line_t::place() const {
  return file + ".ndjson:" + std::to_string(number) + " " + name;
}

std::vector<line_t> readLines(std::string_view file) {
  JsonReader reader;
  std::vector<line_t> lines;
  std::set<std::string> names;
  for (const embedded_t& embedded : embeddedLines()) {
    if (embedded.file != file) continue;
    line_t line{std::string(file), static_cast<int>(lines.size()) + 1, "", data_t()};
    try {
      line.json = reader.parseValue(embedded.text);
      line.name = readCase(line.json).name;
      if (!names.insert(line.name).second) throw BadCase("the name is taken");
    } catch (const std::exception& e) {
      throw BadCase(line.place() + ": " + e.what());
    }
    lines.push_back(std::move(line));
  }
  if (lines.empty()) throw BadCase("there is no file " + std::string(file) + ".ndjson");
  return lines;
}

case_t readCase(const data_t& line) {
  const map_t& members = requireMap(line, "a case");
  checkMembers(members, {"name", "note", "advised", "config", "created", "direction", "logLevel",
                         "in", "out", "dropped", "log", "stderr"});
  case_t result;
  result.name = readName(members);
  if (const data_t* const note = findMember(members, "note")) (void)requireText(*note, "note");
  if (const data_t* const advised = findMember(members, "advised")) {
    result.advised = requireTruth(*advised, "advised");
  }
  readConfiguration(members, result);
  if (const data_t* const level = findMember(members, "logLevel")) {
    result.log_level = static_cast<vlt_log_level_t>(requireInteger(*level, "logLevel"));
  }
  readExpectedOutput(members, result);
  if (const data_t* const created = findMember(members, "created")) {
    result.created = requireTruth(*created, "created");
  }
  if (!result.created) {
    for (const char* name : {"direction", "in", "out", "dropped"}) {
      refuseMember(members, name, "a codec that is not created");
    }
    return result;
  }
  readDirection(members, result);
  result.in = readMessages(members, "in", result.decoder);
  result.out = readMessages(members, "out", result.decoder);
  result.passes = *findMember(members, "in") == *findMember(members, "out");
  if (findMember(members, "dropped") != nullptr) {
    result.dropped = readMessages(members, "dropped", result.decoder);
  }
  return result;
}

} // namespace com::velanto::connectivity::tools::check
