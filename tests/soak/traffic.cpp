#include "tests/soak/traffic.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "ndjson/json_writer.hpp"
#include "standin/standin.h"

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

Message copyOf(const Message& message) {
  return Message(data_t(message.getPayload()), message.getMetadataMap().copy());
}

} // namespace

Traffic::Traffic(const tools::PluginLibrary& library, std::vector<Message>&& messages)
    : library_(library), messages_(std::move(messages)) {
  batch_.reserve(BATCH_SIZES.back());
}

figures_t Traffic::run(std::int64_t round) {
  figures_ = {};
  const bool traced = isTraced(round);
  if (!codec_ || round % NEW_CODEC_EVERY == 0 || traced != codec_traces_) renewCodec(traced);
  for (const std::size_t batch_size : BATCH_SIZES) {
    send(tools::Direction::TOWARDS_HOST, batch_size);
    send(tools::Direction::TOWARDS_TRANSPORT, batch_size);
  }
  return figures_;
}

// A codec reads its level at its creation.
void Traffic::renewCodec(bool traced) {
  if (codec_ && !codec_->shutdown()) throw std::runtime_error("the plug-in failed to shut down");
  codec_.reset();
  standin_set_default_log_level(traced ? TRACE : QUIET);
  codec_.emplace(library_, "codec", "soak", configuration());
  codec_->link({this, &Traffic::takeTowardsHost}, {this, &Traffic::takeTowardsTransport});
  codec_->start();
  codec_traces_ = traced;
}

void Traffic::send(tools::Direction direction, std::size_t batch_size) {
  for (std::size_t first = 0; first < messages_.size(); first += batch_size) {
    const std::size_t end = std::min(first + batch_size, messages_.size());
    for (std::size_t i = first; i < end; ++i) batch_.push_back(copyOf(messages_[i]));
    const auto sent = static_cast<std::int64_t>(batch_.size());
    (direction == tools::Direction::TOWARDS_HOST ? figures_.sent_towards_host
                                                 : figures_.sent_towards_transport) += sent;
    if (!codec_->send(direction, batch_)) throw std::runtime_error("the plug-in failed to send");
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
