// A run as a file to compare later runs with: a line of JSON for each record, in order.
//
//   {"at":"in.ndjson:6","outcome":"dropped","log":[{"level":3,"text":"<…> Error …"}]}
//   {"at":"in.ndjson:7","outcome":"converted","event":{"metadata":{…},"payload":{…}}}
//   {"at":"in.ndjson:8","outcome":"malformed","reason":"…"}
//   {"at":"","outcome":"no message","log":[…]}      logged at creation, start or end
//   {"made by":"…","plug-in":"…"}                   the builds of tool and plug-in, the last line
//
// The last line and "at" are for people: comparisons ignore the builds and the place of a message.
#ifndef VLT_TOOLS_REPLAY_WRITING_GOLDEN_HPP
#define VLT_TOOLS_REPLAY_WRITING_GOLDEN_HPP

#include <string>
#include <string_view>
#include <utility>

#include "tools/host/file_identity.hpp"
#include "tools/record/output_file.hpp"
#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

// The line of a record or of lines logged without one, without a line end.
[[nodiscard]] std::string goldenLineOf(const record_t& record);
[[nodiscard]] std::string goldenLineOf(std::span<const log_line_t> lines);

// Whether `line` is such a line, judged by its beginning.
[[nodiscard]] bool isGoldenLine(std::string_view line) noexcept;

// The part of such a line that comparisons read: all after "at".
[[nodiscard]] std::string_view contentOf(std::string_view golden_line) noexcept;

// The last line.
[[nodiscard]] std::string goldenRemark(const std::string& plugin_build);
[[nodiscard]] bool isGoldenRemark(std::string_view golden_line) noexcept;

// Writes the file.
class GoldenWriter final : public Consumer {
 public:
  // Throws ReplayError with EXIT_IO.
  GoldenWriter(const std::string& path, std::string plugin_path)
      : file_(path), plugin_path_(std::move(plugin_path)) {}

  void take(const record_t& record) override { file_.write(goldenLineOf(record) + "\n"); }
  void takeLog(std::span<const log_line_t> lines) override {
    if (!lines.empty()) file_.write(goldenLineOf(lines) + "\n");
  }
  void pause() override { file_.flush(); }
  void commit() override {
    file_.write(goldenRemark(buildText(identityOf(plugin_path_))) + "\n");
    file_.commit();
  }

 private:
  OutputFile file_;
  std::string plugin_path_;
};

} // namespace com::velanto::connectivity::tools

#endif
