#include "tools/replay/writing/junit.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "identity/build_name.hpp"
#include "ndjson/utf8.hpp"
#include "tools/options/replay_options.hpp"
#include "tools/record/output_file.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD"; // for characters that XML lacks

// `text` escaped for content or attributes.
std::string escaped(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t valid = std::min(findInvalidUtf8(text.substr(i)), text.size() - i);
    for (const char c : text.substr(i, valid)) {
      const bool control = static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t';
      switch (c) {
        case '&':
          out += "&amp;";
          break;
        case '<':
          out += "&lt;";
          break;
        case '>':
          out += "&gt;";
          break;
        case '"':
          out += "&quot;";
          break;
        default:
          control ? out += REPLACEMENT : out += c;
      }
    }
    i += valid;
    if (i < text.size()) {
      out += REPLACEMENT;
      ++i;
    }
  }
  return out;
}

std::string secondsOf(double seconds) {
  std::array<char, 400> digits{}; // room for any double
  const auto end =
      std::to_chars(digits.begin(), digits.end(), seconds, std::chars_format::fixed, 6);
  return {digits.begin(), end.ptr};
}

// The last line of the complaint, which sums it up.
std::string verdictOf(const case_result_t& result) {
  std::string_view text = result.complaint;
  if (text.ends_with('\n')) text.remove_suffix(1);
  text.remove_prefix(text.rfind('\n') + 1);
  const std::string name = std::string(REPLAY_NAME) + ": ";
  if (text.starts_with(name)) text.remove_prefix(name.size());
  return std::string(text);
}

std::string caseOf(const std::string& suite, const case_result_t& result) {
  std::string xml = "  <testcase classname=\"" + escaped(suite) + "\" name=\"" +
                    escaped(result.name) + "\" time=\"" + secondsOf(result.seconds) + "\"";
  if (result.status == EXIT_FINE) return xml + "/>\n";
  const std::string element = result.status == EXIT_DIFFERENT ? "failure" : "error";
  return xml + ">\n    <" + element + " message=\"" + escaped(verdictOf(result)) + "\">" +
         escaped(result.complaint) + "</" + element + ">\n  </testcase>\n";
}

} // namespace

void writeJunit(const std::string& path, const std::string& suite, const std::string& plugin_build,
                const std::vector<case_result_t>& results) {
  std::size_t failures = 0;
  std::size_t errors = 0;
  double seconds = 0;
  std::string cases;
  for (const case_result_t& result : results) {
    if (result.status != EXIT_FINE) ++(result.status == EXIT_DIFFERENT ? failures : errors);
    seconds += result.seconds;
    cases += caseOf(suite, result);
  }
  OutputFile out(path);
  out.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"" + escaped(suite) +
            "\" tests=\"" + std::to_string(results.size()) + "\" failures=\"" +
            std::to_string(failures) + "\" errors=\"" + std::to_string(errors) + "\" time=\"" +
            secondsOf(seconds) + "\">\n");
  out.write("  <properties>\n    <property name=\"tool\" value=\"" + escaped(VLT_BUILD_NAME) +
            "\"/>\n    <property name=\"plug-in\" value=\"" + escaped(plugin_build) +
            "\"/>\n  </properties>\n");
  out.write(cases);
  out.write("</testsuite>\n");
  out.commit();
}

} // namespace com::velanto::connectivity::tools
