// Writes log lines through the host, and turns the exception in flight into one.
//
// Every line reads "<PREFIX> TEXT". The host formats: a call passes "<%s> " and its own format, the
// prefix as first argument and then its strings. So a string from a message is never a format.
//
//   level  2  creation and lifecycle failures
//          3  batch failures and dropped messages
//          6  the per-message trace
#ifndef VLT_PLUGIN_LOGGER_HPP
#define VLT_PLUGIN_LOGGER_HPP

#include <algorithm>
#include <cstddef>
#include <string>

#include "host/logging.h"

namespace com::velanto::connectivity {

class Logger {
 public:
  // Asks the host for the level of the category `name`, this once: a level that the host changes
  // later is not seen.
  explicit Logger(const std::string& name);

  // True when the log takes a line of `level`. For callers with costly strings.
  [[nodiscard]] bool enabled(vlt_log_level_t level) const noexcept { return level <= level_; }

  // Writes one line, or does nothing at all below the level. `format` is a printf format for the
  // strings (one or two, none of them null); it is a literal, so the line takes no memory.
  template <std::size_t SIZE, class... Texts>
  void log(vlt_log_level_t level, const char (&format)[SIZE],
           const Texts*... texts) const noexcept {
    if (!enabled(level)) return;
    constexpr char LABEL[] = "<%s> ";
    char line_format[sizeof LABEL - 1 + SIZE];
    std::copy_n(format, SIZE, std::copy_n(LABEL, sizeof LABEL - 1, line_format));
    emit(level, line_format, texts...);
  }
  template <vlt_log_level_t LEVEL, std::size_t SIZE>
  void log(const char (&format)[SIZE], const char* text) const noexcept {
    log(LEVEL, format, text);
  }

 private:
  // The calls that reach the host: one string or two.
  void emit(vlt_log_level_t level, const char* line_format, const char* text) const noexcept;
  void emit(vlt_log_level_t level, const char* line_format, const char* first,
            const char* second) const noexcept;

  std::string category_;
  std::string prefix_;
  vlt_log_level_t level_;
};

// The category of a plug-in's logger: "connectivity." + plug-in name + "." + chain identifier.
[[nodiscard]] std::string loggerCategory(const std::string& plugin_name,
                                         const std::string& chain_id);

// Logs the exception in flight: "Exception from WHERE: WHAT", or "Unknown exception from WHERE" for
// anything that is no std::exception. Only inside a catch clause.
void handleException(const Logger& logger, vlt_log_level_t level, const char* where) noexcept;

} // namespace com::velanto::connectivity

#endif
