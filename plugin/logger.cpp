#include "plugin/logger.hpp"

#include <exception>

namespace com::velanto::connectivity {

Logger::Logger(const std::string& name)
    : category_(name), prefix_(name), level_(vlt_get_log_level(name.c_str())) {}

// The formats come from the callers in this code base, never from messages.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

void Logger::emit(vlt_log_level_t level, const char* line_format, const char* text) const noexcept {
  vlt_log_at(category_.c_str(), level, line_format, prefix_.c_str(), text);
}

void Logger::emit(vlt_log_level_t level, const char* line_format, const char* first,
                  const char* second) const noexcept {
  vlt_log_at(category_.c_str(), level, line_format, prefix_.c_str(), first, second);
}

#pragma GCC diagnostic pop

std::string loggerCategory(const std::string& plugin_name, const std::string& chain_id) {
  return "connectivity." + plugin_name + "." + chain_id;
}

void handleException(const Logger& logger, vlt_log_level_t level, const char* where) noexcept {
  try {
    throw;
  } catch (const std::exception& e) {
    logger.log(level, "Exception from %s: %s", where, e.what());
  } catch (...) {
    logger.log(level, "Unknown exception from %s", where);
  }
}

} // namespace com::velanto::connectivity
