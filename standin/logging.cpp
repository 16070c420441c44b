// The log: a level per category, and lines handed to a sink. One lock protects levels and sink. It
// is free while the sink runs, so a sink may log.
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "standin/accounting.hpp"
#include "standin/interface.hpp"
#include "standin/stderr_line.hpp"

namespace standin {

namespace {

struct category_t {
  category_t* next;
  vlt_log_level_t level;
  char name[1]; // as long as it needs to be
};

struct log_sink_t {
  standin_log_sink_t function; // null: standard error
  void* context;
};

constexpr vlt_log_level_t INITIAL_LEVEL = 3;

std::mutex log_lock; // guards all that follows up to the functions
category_t* categories = nullptr;
vlt_log_level_t default_level = INITIAL_LEVEL;
log_sink_t current_log_sink{};

// The caller holds the lock. Null: no level of its own. A plain list: a process has few categories,
// and a plug-in asks once for each.
category_t* findCategory(const char* name) noexcept {
  category_t* category = categories;
  while (category != nullptr && std::strcmp(category->name, name) != 0) category = category->next;
  return category;
}

log_sink_t logSinkInUse() noexcept {
  const std::lock_guard guard(log_lock);
  return current_log_sink;
}

void deliver(const char* category, vlt_log_level_t level, char* text, std::size_t length) noexcept {
  const log_sink_t sink = logSinkInUse();
  if (sink.function == nullptr) return writeStderrLine(text, length);
  sink.function(sink.context, category == nullptr ? "" : category, level, text);
}

struct free_t {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

// Most lines fit a buffer on the stack. The heap holds a longer one, formatted again. Without
// memory for that, the beginning of the line is worth more than nothing.
void formatAndDeliver(const char* category, vlt_log_level_t level, const char* format,
                      va_list arguments) noexcept {
  va_list again;
  va_copy(again, arguments);
  std::array<char, 1024> short_text;
  // The caller has started the list; the analyzer loses sight of that across the call.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int result = std::vsnprintf(short_text.data(), short_text.size(), format, arguments);
  const std::size_t length = result < 0 ? 0 : static_cast<std::size_t>(result);
  if (length < short_text.size()) {
    short_text[length] = '\0'; // after an error the contents are anyone's guess
    deliver(category, level, short_text.data(), length);
  } else {
    const std::unique_ptr<char, free_t> long_text(static_cast<char*>(std::malloc(length + 1)));
    if (long_text != nullptr) {
      std::vsnprintf(long_text.get(), length + 1, format, again);
      deliver(category, level, long_text.get(), length);
    } else {
      deliver(category, level, short_text.data(), short_text.size() - 1);
    }
  }
  va_end(again);
}

} // namespace

} // namespace standin

using namespace standin;

vlt_log_level_t vlt_get_log_level(const char* category) {
  countCall(STANDIN_GET_LOG_LEVEL);
  const std::lock_guard guard(log_lock);
  const category_t* found = findCategory(category == nullptr ? "" : category);
  return found == nullptr ? default_level : found->level;
}

void vlt_log_at(const char* category, vlt_log_level_t level, const char* format, ...) {
  countCall(STANDIN_LOG_AT);
  va_list arguments;
  va_start(arguments, format);
  formatAndDeliver(category, level, format, arguments);
  va_end(arguments);
}

bool standin_set_log_level(const char* category, vlt_log_level_t level) {
  const std::lock_guard guard(log_lock);
  if (category_t* found = findCategory(category); found != nullptr) {
    found->level = level;
    return true;
  }
  const std::size_t length = std::strlen(category);
  void* memory = std::malloc(sizeof(category_t) + length);
  if (memory == nullptr) return false;
  auto* added = new (memory) category_t{categories, level, {}};
  std::memcpy(static_cast<char*>(memory) + offsetof(category_t, name), category, length + 1);
  categories = added;
  return true;
}

void standin_set_default_log_level(vlt_log_level_t level) {
  const std::lock_guard guard(log_lock);
  default_level = level;
}

void standin_set_log_sink(standin_log_sink_t sink, void* context) {
  const std::lock_guard guard(log_lock);
  current_log_sink = {sink, context};
}

void standin_reset_logging(void) {
  const std::lock_guard guard(log_lock);
  while (categories != nullptr) std::free(std::exchange(categories, categories->next));
  default_level = INITIAL_LEVEL;
  current_log_sink = {};
}
