// The lines of a recording, as a recorder writes them.
#ifndef VLT_TESTS_TOOLS_RECORDED_LINES_HPP
#define VLT_TESTS_TOOLS_RECORDED_LINES_HPP

#include <cstdint>
#include <string>

namespace com::velanto::connectivity::test {

struct head_t {
  std::string plugin;
  unsigned file = 1;
  std::string run = "00000000000000a1";
  unsigned one_in = 1;
  std::string omitted{};       // elements of a list
  std::string configuration{}; // members
};

struct remark_t {
  unsigned number = 1;
  unsigned batch = 1;
  unsigned place = 0;
  unsigned of = 1;
  std::string direction = "host";
};

inline constexpr std::uint64_t STARTED = 1'700'000'000'000'000'000; // nanoseconds since the epoch
inline constexpr std::uint64_t SECOND = 1'000'000'000;
inline constexpr std::uint64_t ENDED = STARTED + 1'000'000 * SECOND;

inline std::string headLine(const head_t& head) {
  return R"({"recording":{"head":{"format":1,"recorder":"0.1.0","plugin":")" + head.plugin +
         R"(","chain":"site","productVersion":"10.15.4.1","run":")" + head.run + R"(","file":)" +
         std::to_string(head.file) + ",\"started\":" + std::to_string(STARTED) +
         ",\"oneIn\":" + std::to_string(head.one_in) + ",\"omit\":[" + head.omitted +
         "],\"configuration\":{" + head.configuration + "}}}}\n";
}

// `message` is a line without a remark. A batch takes a second.
inline std::string recordedLine(const remark_t& remark, const std::string& message) {
  return R"({"recorded":{"time":)" + std::to_string(STARTED + remark.batch * SECOND) +
         ",\"number\":" + std::to_string(remark.number) +
         ",\"batch\":" + std::to_string(remark.batch) +
         ",\"place\":" + std::to_string(remark.place) + ",\"of\":" + std::to_string(remark.of) +
         R"(,"direction":")" + remark.direction + "\"}," + message.substr(1);
}

inline std::string gapLine(unsigned first, unsigned last, unsigned lost) {
  return R"({"recording":{"gap":{"first":)" + std::to_string(first) +
         ",\"last\":" + std::to_string(last) + ",\"lost\":" + std::to_string(lost) +
         ",\"reason\":\"buffer\"}}}\n";
}

inline std::string footLine(unsigned seen, unsigned recorded, unsigned filtered, unsigned lost,
                            bool has_next = false) {
  return R"({"recording":{"foot":{"ended":)" + std::to_string(ENDED) +
         ",\"seen\":" + std::to_string(seen) + ",\"recorded\":" + std::to_string(recorded) +
         ",\"filtered\":" + std::to_string(filtered) + ",\"lost\":" + std::to_string(lost) +
         (has_next ? ",\"next\":true}}}\n" : "}}}\n");
}

} // namespace com::velanto::connectivity::test

#endif
