#include "tests/soak/traffic.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <span>
#include <stdexcept>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "standin/standin.h"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::soak {

namespace {

constexpr std::array<std::size_t, 4> BATCH_SIZES = {1, 7, 64, 256};
constexpr vlt_log_level_t QUIET = 3;
constexpr vlt_log_level_t TRACE = 6;

data_t configuration() {
  map_t map;
  map[data_t("tenantId")] = data_t("t4100");
  map[data_t("towardsHostChannelPrefix")] = data_t("soak.");
  return map;
}

constexpr std::int64_t FILES = 3; // of a mebibyte, for each recorder

data_t recorderConfiguration(const std::string& folder) {
  map_t map;
  map[data_t("recordingFolder")] = data_t(folder.c_str());
  map[data_t("maxFileMebibytes")] = data_t(std::int64_t{1});
  map[data_t("maxFiles")] = data_t(FILES);
  return map;
}

template <tools::Direction DIRECTION>
void pass(void* next, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
  const std::span batch(reinterpret_cast<Message*>(start), reinterpret_cast<Message*>(end));
  if (!static_cast<tools::HostedPlugin*>(next)->send(DIRECTION, batch)) {
    throw std::runtime_error("the next plug-in failed to send");
  }
}
constexpr vlt_batch_function PASS_TO_HOST = pass<tools::Direction::TOWARDS_HOST>;
constexpr vlt_batch_function PASS_TO_TRANSPORT = pass<tools::Direction::TOWARDS_TRANSPORT>;

std::int64_t numberAt(const data_t* map, const char* key) {
  const data_t* const found = map == nullptr ? nullptr : map->get<map_t>().find_value(data_t(key));
  return found == nullptr ? -1 : found->get<std::int64_t>();
}

// Checks the last foot and the sizes of a recorder's files.
void judgeRecording(const std::string& folder, const std::string& name, std::int64_t messages) {
  std::filesystem::path newest;
  std::uintmax_t bytes = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (!entry.path().filename().string().starts_with(name + ".0")) continue;
    bytes += entry.file_size();
    newest = std::max(newest, entry.path());
  }
  if (bytes > FILES << 20U) throw std::runtime_error(name + " has outgrown its bound");
  std::ifstream file(newest);
  std::string last;
  for (std::string line; std::getline(file, line);) last.swap(line);
  const data_t line = JsonReader().parseValue(last);
  const data_t* const about = line.get<map_t>().find_value(data_t("recording"));
  const data_t* const foot =
      about == nullptr ? nullptr : about->get<map_t>().find_value(data_t("foot"));
  const std::int64_t sum =
      numberAt(foot, "recorded") + numberAt(foot, "filtered") + numberAt(foot, "lost");
  if (numberAt(foot, "seen") != messages || sum != messages) {
    throw std::runtime_error(name + " ends with " + last + " after " + std::to_string(messages) +
                             " messages");
  }
}

Message copyOf(const Message& message) {
  return Message(data_t(message.getPayload()), message.getMetadataMap().copy());
}

} // namespace

Traffic::chain_t::chain_t(Traffic& traffic, const data_t& recorder_settings)
    : before(traffic.recorders_, "before", "soak", recorder_settings),
      codec(traffic.codecs_, "codec", "soak", configuration()),
      after(traffic.recorders_, "after", "soak", recorder_settings) {
  before.link({&codec, PASS_TO_HOST}, {&traffic, &Traffic::takeTowardsTransport});
  codec.link({&after, PASS_TO_HOST}, {&before, PASS_TO_TRANSPORT});
  after.link({&traffic, &Traffic::takeTowardsHost}, {&codec, PASS_TO_TRANSPORT});
  for (tools::HostedPlugin* const plugin : {&before, &codec, &after}) plugin->start();
}

Traffic::Traffic(const tools::PluginLibrary& codecs, const tools::PluginLibrary& recorders,
                 std::vector<Message>&& messages)
    : codecs_(codecs), recorders_(recorders), messages_(std::move(messages)) {
  batch_.reserve(BATCH_SIZES.back());
}

figures_t Traffic::run(std::int64_t round) {
  figures_ = {};
  const bool traced = isTraced(round);
  if (!chain_ || round % NEW_CHAIN_EVERY == 0 || traced != chain_traces_) renewChain(traced);
  for (const std::size_t batch_size : BATCH_SIZES) {
    send(tools::Direction::TOWARDS_HOST, batch_size);
    send(tools::Direction::TOWARDS_TRANSPORT, batch_size);
  }
  before_ += figures_.sent_towards_host + figures_.reached_transport;
  after_ += figures_.sent_towards_transport + figures_.reached_host;
  return figures_;
}

// A plug-in reads its level at its creation.
void Traffic::renewChain(bool traced) {
  if (chain_) endChain();
  standin_set_default_log_level(traced ? TRACE : QUIET);
  chain_.emplace(*this, recorderConfiguration(folder_.path("")));
  chain_traces_ = traced;
}

void Traffic::endChain() {
  if (!chain_->shutdown()) throw std::runtime_error("a plug-in failed to shut down");
  chain_.reset();
  judgeRecording(folder_.path(""), "before-soak", std::exchange(before_, 0));
  judgeRecording(folder_.path(""), "after-soak", std::exchange(after_, 0));
}

void Traffic::send(tools::Direction direction, std::size_t batch_size) {
  for (std::size_t first = 0; first < messages_.size(); first += batch_size) {
    const std::size_t end = std::min(first + batch_size, messages_.size());
    for (std::size_t i = first; i < end; ++i) batch_.push_back(copyOf(messages_[i]));
    const auto sent = static_cast<std::int64_t>(batch_.size());
    (direction == tools::Direction::TOWARDS_HOST ? figures_.sent_towards_host
                                                 : figures_.sent_towards_transport) += sent;
    tools::HostedPlugin& nearest =
        direction == tools::Direction::TOWARDS_HOST ? chain_->before : chain_->after;
    if (!nearest.send(direction, batch_)) throw std::runtime_error("a plug-in failed to send");
    batch_.clear();
    addLog();
  }
}

void Traffic::add(const Message* start, const Message* end, std::int64_t& reached) {
  for (const Message* message = start; message != end; ++message) {
    figures_.digest = mixed(figures_.digest, toJson(*message));
    ++reached;
  }
}

void Traffic::takeTowardsHost(void* handle, vlt_underlying_message_t* start,
                              vlt_underlying_message_t* end) noexcept {
  auto& traffic = *static_cast<Traffic*>(handle);
  traffic.add(reinterpret_cast<const Message*>(start), reinterpret_cast<const Message*>(end),
              traffic.figures_.reached_host);
}

void Traffic::takeTowardsTransport(void* handle, vlt_underlying_message_t* start,
                                   vlt_underlying_message_t* end) noexcept {
  auto& traffic = *static_cast<Traffic*>(handle);
  traffic.add(reinterpret_cast<const Message*>(start), reinterpret_cast<const Message*>(end),
              traffic.figures_.reached_transport);
}

void Traffic::addLog() {
  for (const tools::log_line_t& line : lines_) {
    if (line.level == TRACE) {
      ++figures_.traced;
    } else {
      ++figures_.dropped;
      figures_.digest = mixed(figures_.digest, line.text);
    }
  }
  lines_.clear();
}

} // namespace com::velanto::connectivity::soak
