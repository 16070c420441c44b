#include "recorder/configuration.hpp"

#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

#include "ndjson/json_text.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::recorder {

namespace {

constexpr std::uint64_t ANY = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t MEBIBYTE = 1U << 20U;
constexpr std::size_t LONGEST_NAME = 200;   // a file's name adds 13 bytes; most systems take 255
constexpr std::size_t LONGEST_JSON = 65536; // every file begins with it

std::string quoted(const char* text) {
  std::string json;
  appendJsonText(json, text);
  return json;
}

// Reads settings one by one, and keeps them as JSON.
class Settings {
 public:
  explicit Settings(const map_t& map) noexcept : map_(map) {}

  // The string, or the default; an empty default is none, and not kept. What it must be: "a string".
  std::string text(const char* key, const std::string& fallback) {
    const data_t* const value = map_.find_value(data_t(key));
    if (value == nullptr && fallback.empty()) return fallback;
    if (value != nullptr) requireText(key, "a string", *value);
    std::string content = value == nullptr ? fallback : value->get<const char*>();
    keep(key, quoted(content.c_str()));
    return content;
  }

  std::uint64_t integer(const char* key, std::uint64_t fallback, std::uint64_t highest) {
    const data_t* const value = map_.find_value(data_t(key));
    std::uint64_t content = fallback;
    if (value != nullptr) {
      const auto* const number = value->get_if<std::int64_t>();
      if (number == nullptr || *number < 1 || static_cast<std::uint64_t>(*number) > highest) {
        refuse(key, "an integer from 1 to " + std::to_string(highest), describe(*value));
      }
      content = static_cast<std::uint64_t>(*number);
    }
    if (content != 0) keep(key, std::to_string(content));
    return content;
  }

  // Hands each string of the list to `take`, which returns whether it is a right one. Returns the
  // list as JSON.
  template <class Take>
  std::string list(const char* key, const std::string& needed, const Take& take) {
    const data_t* const value = map_.find_value(data_t(key));
    if (value == nullptr) return "[]";
    const auto* const elements = value->get_if<list_t>();
    if (elements == nullptr) refuse(key, needed, describe(*value));
    if (elements->size() == 0) refuse(key, needed, "an empty list");
    std::string json;
    for (const data_t& element : *elements) {
      requireText(key, needed, element);
      const char* const content = element.get<const char*>();
      if (!take(content)) refuse(key, needed, describe(element));
      json += (json.empty() ? '[' : ',') + quoted(content);
    }
    json += ']';
    keep(key, json);
    return json;
  }

  [[noreturn]] static void refuse(const char* key, const std::string& needed,
                                  const std::string& found) {
    throw std::runtime_error(std::string("Setting '") + key + "' must be " + needed + ", not " +
                             found);
  }

  [[nodiscard]] std::string& json() noexcept { return json_; }

 private:
  static void requireText(const char* key, const std::string& needed, const data_t& value) {
    if (!value.is_string() || *text_or_empty(value.get<const char*>()) == '\0') {
      refuse(key, needed, describe(value));
    }
  }

  static std::string describe(const data_t& value) {
    if (value.is_string()) return quoted(text_or_empty(value.get<const char*>()));
    if (const auto* const number = value.get_if<std::int64_t>()) return std::to_string(*number);
    return std::string("a value of kind ") + kind_name(value.type_tag());
  }

  void keep(const char* key, const std::string& content) {
    json_ += (json_.empty() ? "\"" : ",\"") + std::string(key) + "\":" + content;
    if (json_.size() > LONGEST_JSON) throw std::runtime_error("The settings are too long");
  }

  const map_t& map_;
  std::string json_;
};

// As part of a file's name.
std::string asName(std::string text) {
  if (text.size() > LONGEST_NAME) text.resize(LONGEST_NAME);
  for (char& c : text) {
    const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (!is_letter && (c < '0' || c > '9') && std::strchr("-_.", c) == nullptr) c = '_';
  }
  return text;
}

// The bits of the list's words in `words`; 0 without the setting.
template <class Words, class WordOf>
unsigned readBits(Settings& settings, const char* key, const Words& words, const WordOf& word_of) {
  std::string needed = "a list of";
  for (const auto& word : words) needed += " '" + std::string(word_of(word)) + "'";
  unsigned bits = 0;
  settings.list(key, needed, [&](const char* name) {
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (name != word_of(words[i])) continue;
      bits |= 1U << i;
      return true;
    }
    return false;
  });
  return bits;
}

bool readWhenFull(Settings& settings) {
  const char* const key = "whenFull";
  const std::string choice = settings.text(key, "ring");
  if (choice != "ring" && choice != "stop") {
    Settings::refuse(key, "'ring' or 'stop'", quoted(choice.c_str()));
  }
  return choice == "ring";
}

std::string readOmitted(Settings& settings, FieldSet& omitted) {
  return settings.list("omit", "a list of paths", [&](const char* path) {
    try {
      omitted.add(path);
    } catch (const std::invalid_argument& e) {
      throw std::runtime_error(std::string("Setting 'omit': ") + e.what());
    }
    return true;
  });
}

} // namespace

configuration_t readConfiguration(const map_t& settings, const std::string& plugin_name,
                                  const std::string& chain_id) {
  Settings reader(settings);
  configuration_t read;
  read.folder = reader.text("recordingFolder", "");
  if (read.folder.empty()) throw std::runtime_error("Setting 'recordingFolder' is missing");
  read.name = asName(reader.text("recordingName", asName(plugin_name + "-" + chain_id)));
  read.max_file_bytes = MEBIBYTE * reader.integer("maxFileMebibytes", 64, 1048576);
  read.max_files = reader.integer("maxFiles", 16, 100000);
  read.is_ring = readWhenFull(reader);
  read.stop_after_messages = reader.integer("stopAfterMessages", 0, ANY);
  read.stop_after_seconds = reader.integer("stopAfterSeconds", 0, 1000000000);
  read.directions =
      readBits(reader, "directions", DIRECTIONS, [](std::string_view word) { return word; });
  if (read.directions == 0) read.directions = 3;
  read.kinds = readBits(reader, "kinds", KINDS, [](const kind_t& kind) { return kind.word; });
  read.path_prefix = reader.text("pathPrefix", "");
  read.one_in = reader.integer("oneIn", 1, ANY);
  read.omit_json = readOmitted(reader, read.omitted);
  read.while_file_exists = reader.text("whileFileExists", "");
  read.json = std::move(reader.json());
  return read;
}

} // namespace com::velanto::connectivity::recorder
