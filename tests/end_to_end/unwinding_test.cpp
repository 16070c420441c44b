// No exception leaves an entry point, read from the built files of the plug-in and of one whose
// codec may throw anywhere. An entry point is all code that it jumps to, since compilers move parts
// of a function away. Each part either has a call table in which no exception passes through, or
// calls nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

#include "tests/end_to_end/machine_code.hpp"
#include "tests/end_to_end/unwind_table.hpp"
#include "tools/host/interface_names.hpp"

namespace com::velanto::connectivity::test {
namespace {

using names_t = std::vector<std::string>;

const std::string CODEC = "OstroviaNotifications2Codec";

class Library {
 public:
  explicit Library(const char* path) : file_(path), frames_(readFrames(file_)), code_(path) {}

  // The frames of an entry point: the one that it begins with, and those that it jumps into.
  [[nodiscard]] std::vector<frame_t> partsOf(const std::string& entry_point) const {
    std::vector<frame_t> parts;
    std::vector<std::uint64_t> ahead = {addressOf(entry_point)};
    std::set<std::uint64_t> seen;
    while (!ahead.empty()) {
      const frame_t& frame = frameAt(ahead.back());
      ahead.pop_back();
      if (!seen.insert(frame.start).second) continue;
      parts.push_back(frame);
      for (const std::uint64_t target : code_.jumpsOutOf(frame.start, frame.size)) {
        ahead.push_back(target);
      }
    }
    return parts;
  }

  // Why an exception could leave `part`, or the empty text.
  [[nodiscard]] std::string leakIn(const frame_t& part) const {
    if (part.calls) {
      const bool leaks = std::any_of(part.calls->begin(), part.calls->end(), passesThrough);
      return leaks ? "a call that it passes through" : "";
    }
    const names_t calls = code_.callsIn(part.start, part.size);
    return calls.empty() ? "" : "no call table, but " + calls.front();
  }

 private:
  static bool passesThrough(const guarded_call_t& call) {
    return call.landing_pad == 0 || call.action == 0;
  }

  [[nodiscard]] std::uint64_t addressOf(const std::string& name) const {
    for (const ElfFile::symbol_t& symbol : file_.dynamicSymbols()) {
      if (symbol.defined() && symbol.name == name) return symbol.entry.st_value;
    }
    throw std::runtime_error("no function " + name);
  }

  [[nodiscard]] const frame_t& frameAt(std::uint64_t address) const {
    const auto found = std::find_if(frames_.begin(), frames_.end(), [&](const frame_t& frame) {
      return address >= frame.start && address < frame.start + frame.size;
    });
    if (found == frames_.end()) throw std::runtime_error("code without a frame description");
    return *found;
  }

  ElfFile file_;
  std::vector<frame_t> frames_;
  MachineCode code_;
};

// "FUNCTION: REASON" for each entry point of `codec` that an exception could leave.
names_t leaksOf(const Library& library, const std::string& codec) {
  names_t leaks;
  for (const std::string& name : tools::ENTRY_POINTS) {
    const std::string function = name.substr(0, name.size() - CODEC.size());
    for (const frame_t& part : library.partsOf(function + codec)) {
      const std::string leak = library.leakIn(part);
      if (!leak.empty()) leaks.push_back(std::string(function).append(": ").append(leak));
    }
  }
  return leaks;
}

class Unwinding : public ::testing::Test {
 protected:
  void SetUp() override {
#ifndef VLT_OPTIMISED_WHEN_LINKED
    GTEST_SKIP() << "only of the build that is delivered: in others the guards are functions of "
                    "their own, or tables also name calls that cannot throw";
#endif
  }
};

} // namespace

TEST_F(Unwinding, NoExceptionLeavesAnEntryPointWhateverTheCodecThrows) {
  const Library library(VLT_THROWING_CODEC_PATH);
  EXPECT_EQ(leaksOf(library, "ThrowingCodec"), names_t());
}

// All that it calls are destructors, which do not throw: so it needs no table.
TEST_F(Unwinding, NoExceptionLeavesAnEntryPointOfThePlugin) {
  const Library library(VLT_PLUGIN_PATH);
  for (const std::string& leak : leaksOf(library, CODEC)) {
    EXPECT_TRUE(leak.starts_with("vlt_destroy_plugin_: no call table")) << leak;
  }
}

// Or else it would show nothing of those that it is there for.
TEST_F(Unwinding, CodecThatThrowsNeedsATableForEachEntryPointThatCallsIt) {
  const Library library(VLT_THROWING_CODEC_PATH);
  for (const std::string& name : tools::ENTRY_POINTS) {
    const std::string function = name.substr(0, name.size() - CODEC.size());
    const bool answers_at_once = function.find("version") != std::string::npos ||
                                 function.find("checkIsCodec") != std::string::npos;
    EXPECT_EQ(library.partsOf(function + "ThrowingCodec").front().calls.has_value(),
              !answers_at_once)
        << function;
  }
}

} // namespace com::velanto::connectivity::test
