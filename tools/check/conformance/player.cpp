#include "tools/check/conformance/player.hpp"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "tools/check/blocks.hpp"
#include "tools/check/check_fixture.hpp"
#include "tools/check/comparison.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

// The messages of a case, with the bytes that they had before they were sent.
struct batch_t {
  std::vector<Message> messages;
  std::vector<std::string> bytes;
};

bool same(Trial& trial, const std::string& where, const Message& expected, const Message& actual) {
  const auto found = findMismatch(expected, actual, where);
  return !found || trial.holds(false, found->where, found->expected, found->actual);
}

void expectArrived(Trial& trial, const std::string& place, const case_t& played,
                   const std::vector<Message>& actual) {
  trial.equal(place + ", messages at the next link", played.out.size(), actual.size());
  for (std::size_t i = 0; i < std::min(played.out.size(), actual.size()); ++i) {
    same(trial, place + ", out " + std::to_string(i + 1), played.out[i], actual[i]);
  }
}

// A message that passes is the same down to its blocks.
void expectPassed(Trial& trial, const std::string& place, const std::vector<std::string>& before,
                  const std::vector<Message>& actual) {
  for (std::size_t i = 0; i < std::min(before.size(), actual.size()); ++i) {
    trial.holds(bytesOf(actual[i]) == before[i], place + ", out " + std::to_string(i + 1),
                "the same bytes as before", "other bytes");
  }
}

// The link has moved the front of the batch out; anything else there was not handed on.
void expectTaken(Trial& trial, const std::string& place, std::span<const Message> taken) {
  const Message moved_from;
  for (const Message& message : taken) {
    same(trial, place + ", a message handed on", moved_from, message);
  }
}

// Dropped messages have no order: each expected message is matched with one of those left.
void expectDropped(Trial& trial, const std::string& place, const std::vector<Message>& expected,
                   std::span<const Message> actual) {
  std::vector<const Message*> left;
  for (const Message& message : actual) left.push_back(&message);
  trial.equal(place + ", messages dropped", expected.size(), left.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto match = std::find_if(left.begin(), left.end(), [&](const Message* message) {
      return !findMismatch(expected[i], *message, "");
    });
    if (match != left.end()) {
      left.erase(match);
    } else if (!left.empty()) {
      same(trial, place + ", dropped " + std::to_string(i + 1), expected[i], *left.front());
    }
  }
}

void playBatch(Trial& trial, const std::string& place, Codec& codec, case_t& played) {
  codec.link();
  trial.equal(place + ", start", 0, codec.start());
  trial.equal(place + ", hostReady", 0, codec.hostReady());

  std::vector<Message>& batch = played.in;
  std::vector<std::string> before;
  before.reserve(batch.size());
  for (const Message& message : batch) before.push_back(bytesOf(message));
  trial.equal(place + ", send", 0,
              played.towards_transport ? codec.towardsTransport(batch) : codec.towardsHost(batch));
  trial.equal(place + ", shutdown", 0, codec.shutdown());

  const Link& reached = played.towards_transport ? codec.transport : codec.host;
  trial.equal(place + ", batches at both links", 1,
              codec.host.calls.size() + codec.transport.calls.size());
  if (!trial.equal(place + ", batches at the next link", 1, reached.calls.size())) return;
  trial.holds(
      batch.empty() || reinterpret_cast<const Message*>(reached.calls[0].start) == batch.data(),
      place + ", start of the range", "the front of the batch", "another address");
  expectArrived(trial, place, played, reached.messages);
  if (played.passes) expectPassed(trial, place, before, reached.messages);
  const std::size_t kept = std::min(reached.messages.size(), batch.size());
  expectTaken(trial, place, std::span(batch).first(kept));
  if (played.dropped) expectDropped(trial, place, *played.dropped, std::span(batch).subspan(kept));
}

// What the plug-in wrote to standard error. The types that a line names are the build's own.
void expectPrinted(Trial& trial, const std::string& place, const lines_t& expected,
                   std::string_view printed, Demand demand) {
  lines_t actual;
  for (std::size_t end = 0; (end = printed.find('\n')) != std::string_view::npos;) {
    actual.emplace_back(printed.substr(0, end));
    printed.remove_prefix(end + 1);
  }
  if (!printed.empty()) actual.emplace_back(printed);
  if (demand == Demand::REQUIRED) {
    for (std::string& each : actual) {
      if (each.starts_with("GetVisitor<")) each = "GetVisitor";
    }
    trial.equal(place + ", standard error", lines_t(expected.size(), "GetVisitor"), actual);
  } else {
    trial.equal(place + ", standard error", expected, actual);
  }
}

} // namespace

void play(Trial& trial, const PluginLibrary& library, const line_t& line, Demand demand) {
  const std::string place = line.place();
  const BlockBalance balance;
  {
    case_t played = readCase(line.json);
    if (played.advised && demand == Demand::REQUIRED) return;
    const case_t again = readCase(line.json);
    const std::size_t printed = trial.printed().size();
    Log log(played.log_level);
    {
      Codec codec(trial, library,
                  played.null_configuration ? nullptr : played.configuration.underlying());
      if (const auto found =
              findMismatch(again.configuration, played.configuration, place + ", configuration")) {
        trial.holds(false, found->where, found->expected, found->actual);
      }
      played.configuration = data_t(); // the caller's to free once create has returned
      if (trial.equal(place + ", created", played.created, codec.made()) && played.created) {
        playBatch(trial, place, codec, played);
      }
      trial.equal(place + ", destroy", 0, codec.destroy());
    }
    trial.equal(place + ", log", played.log, log.take());
    expectPrinted(trial, place, played.standard_error, trial.printed().substr(printed), demand);
  }
  balance.expectBack(trial, place);
}

} // namespace com::velanto::connectivity::tools::check
