#include "bench/comparison.hpp"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tools/host/log_capture.hpp"

namespace com::velanto::connectivity::bench {

namespace {

struct outcome_t {
  lines_t messages;
  lines_t log;
};

outcome_t outcomeOf(Contender& contender) {
  outcome_t outcome;
  std::vector<tools::log_line_t> log;
  {
    const tools::LogScope scope(log);
    outcome.messages = contender.outcome();
  }
  for (const tools::log_line_t& line : log) {
    outcome.log.push_back(std::to_string(line.level) + ' ' + line.text);
  }
  return outcome;
}

// Members sorted by name, numbers in their shortest form: 5 and 5.0 stay different.
std::string canonical(const std::string& json) { return nlohmann::json::parse(json).dump(); }

std::string difference(const lines_t& expected, const lines_t& actual) {
  for (std::size_t i = 0; i < expected.size() && i < actual.size(); ++i) {
    if (expected[i] != actual[i]) {
      return "number " + std::to_string(i) + "\n  plug-in: " + expected[i] +
             "\n  other:   " + actual[i];
    }
  }
  if (expected.size() == actual.size()) return {};
  return "the plug-in has " + std::to_string(expected.size()) + ", the other " +
         std::to_string(actual.size());
}

} // namespace

void requireSame(const std::string& what, Contender& reference, const std::string& name,
                 Contender& other, sameness_t sameness) {
  outcome_t expected = outcomeOf(reference);
  outcome_t actual = outcomeOf(other);
  if (sameness == sameness_t::CONTENT) {
    for (std::string& message : expected.messages) message = canonical(message);
    for (std::string& message : actual.messages) message = canonical(message);
  }
  std::string differs = difference(expected.messages, actual.messages);
  if (differs.empty()) differs = difference(expected.log, actual.log);
  if (!differs.empty()) throw std::runtime_error(what + ": " + name + " differs: " + differs);
}

} // namespace com::velanto::connectivity::bench
