#include "tests/exhaustion/batch_outcome.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr std::size_t SAMPLE = 1; // its position in the batch

bool sameMessage(const Message& left, const Message& right) {
  return left.getPayload() == right.getPayload() && left.getMetadataMap() == right.getMetadataMap();
}

// The "id" if it is a string, else null.
const data_t* idOf(const Message& message) {
  if (message.getPayload().type_tag() != VLT_TAG_MAP) return nullptr;
  const data_t* const id = message.getPayload().get<map_t>().find_value(text("id"));
  return id != nullptr && id->is_string() ? id : nullptr;
}

// The positions in the batch of the messages that did not arrive; fails when something arrived
// that does not arrive with memory.
std::vector<std::size_t> droppedPositions(const batch_outcome_t& reference,
                                          const batch_outcome_t& outcome) {
  const bool sample_is_bad = reference.kept < reference.batch.size();
  std::vector<std::size_t> dropped;
  std::size_t matched = 0;
  std::size_t place = 0; // among the reference's kept messages
  for (std::size_t position = 0; position < reference.batch.size(); ++position) {
    const bool arrives = !(sample_is_bad && position == SAMPLE);
    const bool arrived = arrives && matched < outcome.kept &&
                         sameMessage(outcome.batch[matched], reference.batch[place]);
    if (arrives) ++place;
    if (arrived) {
      ++matched;
    } else {
      dropped.push_back(position);
    }
  }
  EXPECT_EQ(matched, outcome.kept) << "what arrived is not what arrives with memory";
  return dropped;
}

bool isLeftOver(const Message& left, const Message& sent) {
  if (sameMessage(left, sent)) return true;
  if (left.getMetadataMap().table() != nullptr) return false;
  const data_t* const id = idOf(sent);
  return left.getPayload().empty() ||
         (id != nullptr && left.getPayload() == data_t(mapOf("id", data_t(*id))));
}

// The reason in a report: its line without label, beginning and id, which it must have. Empty for
// the report of another message.
std::string reasonOf(const log_line_t& report, const std::string& label, const data_t* id) {
  std::string beginning = label + "Error when transforming message towards host";
  if (id != nullptr) {
    beginning += std::string(" ('id' = '") + text_or_empty(id->get<const char*>()) + "')";
  }
  return report.text.starts_with(beginning) ? report.text.substr(beginning.size()) : "";
}

bool isOfNoMemory(const std::string& reason) {
  // Some failures become part of another's message, which names the place: the last reason counts.
  return reason.ends_with(": " + NO_MEMORY) || reason == ": " + NO_TEXT;
}

void expectReports(const exhaustion_t& how, const std::vector<Message>& sent,
                   const batch_outcome_t& reference, const batch_outcome_t& outcome,
                   const std::vector<std::size_t>& dropped, const std::string& label) {
  std::size_t of_no_memory = 0;
  auto position = dropped.begin();
  for (const log_line_t& report : outcome.reports) {
    EXPECT_EQ(report.level, 3);
    const auto explains = [&](std::size_t candidate) {
      const std::string reason = reasonOf(report, label, idOf(sent[candidate]));
      if (isOfNoMemory(reason)) return true;
      return candidate == SAMPLE && !reference.reports.empty() &&
             reason == reasonOf(reference.reports[0], label, idOf(sent[SAMPLE]));
    };
    position = std::find_if(position, dropped.end(), explains);
    ASSERT_NE(position, dropped.end()) << "reports no dropped message: " << report;
    if (isOfNoMemory(reasonOf(report, label, idOf(sent[*position])))) ++of_no_memory;
    ++position;
  }
  EXPECT_EQ(outcome.reports.size(), dropped.size()) << "reports need no memory";
  if (!how.for_good) {
    EXPECT_LE(of_no_memory, 1U) << "one refusal has one consequence";
  }
}

void expectTraces(const batch_outcome_t& reference, const batch_outcome_t& outcome,
                  std::size_t dropped) {
  auto expected = reference.traces.begin();
  for (const log_line_t& trace : outcome.traces) {
    expected = std::find(expected, reference.traces.end(), trace);
    ASSERT_NE(expected, reference.traces.end()) << trace;
    ++expected;
  }
  EXPECT_GE(outcome.traces.size() + dropped, reference.traces.size());
}

} // namespace

bool isSame(const batch_outcome_t& left, const batch_outcome_t& right) {
  return left.result == right.result && left.calls == right.calls && left.kept == right.kept &&
         left.reports == right.reports && left.traces == right.traces &&
         std::equal(left.batch.begin(), left.batch.end(), right.batch.begin(), right.batch.end(),
                    sameMessage);
}

void expectLossReported(const exhaustion_t& how, const std::vector<Message>& sent,
                        const batch_outcome_t& reference, const batch_outcome_t& outcome,
                        const std::string& label) {
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.calls, 1) << "of the link, with the front of the batch";
  const std::vector<std::size_t> dropped = droppedPositions(reference, outcome);
  const std::size_t hit = reference.kept - outcome.kept;
  const bool sample_is_good = reference.kept == reference.batch.size();
  if (how.for_good) {
    EXPECT_EQ(dropped.empty() ? SAMPLE : dropped.back(), SAMPLE + 1) << "the last one is hit";
  } else if (sample_is_good) {
    EXPECT_EQ(hit, 1U);
  } else {
    EXPECT_LE(hit, 1U);
  }
  for (std::size_t i = outcome.kept; i < outcome.batch.size(); ++i) {
    EXPECT_TRUE(std::any_of(sent.begin(), sent.end(), [&](const Message& message) {
      return isLeftOver(outcome.batch[i], message);
    })) << to_string(outcome.batch[i], false);
  }
  expectReports(how, sent, reference, outcome, dropped, label);
  expectTraces(reference, outcome, dropped.size());
}

} // namespace com::velanto::connectivity::test
