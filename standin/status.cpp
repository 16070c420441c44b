// User status: handed to a sink, or shown on standard error.
#include <cstring>
#include <mutex>

#include "standin/accounting.hpp"
#include "standin/blocks.hpp"
#include "standin/interface.hpp"
#include "standin/render.hpp"
#include "standin/stderr_line.hpp"
#include "standin/text_builder.hpp"

namespace standin {

namespace {

struct status_sink_t {
  standin_status_sink_t function; // null: standard error
  void* context;
};

std::mutex status_lock; // guards the sink; not held while it runs
status_sink_t current_status_sink{};

status_sink_t statusSinkInUse() noexcept {
  const std::lock_guard guard(status_lock);
  return current_status_sink;
}

// Renders the table in place, without a copy. Without memory the line is lost.
void show(const vlt_underlying_map_table_t* table) noexcept {
  vlt_underlying_data_t view{};
  view.tag = VLT_TAG_MAP;
  view.value.map = const_cast<vlt_underlying_map_table_t*>(table);
  char* rendered = renderValue(view);
  if (rendered == nullptr) return;
  TextBuilder builder;
  builder.append("status: ");
  builder.append(rendered);
  release(STANDIN_BLOCK_STRING, rendered);
  char* line = builder.take();
  if (line == nullptr) return;
  writeStderrLine(line, std::strlen(line));
  release(STANDIN_BLOCK_STRING, line);
}

} // namespace

} // namespace standin

using namespace standin;

void vlt_set_user_status_map(void* handle, const vlt_underlying_map_table_t* table) {
  countCall(STANDIN_SET_USER_STATUS_MAP);
  const status_sink_t sink = statusSinkInUse();
  if (sink.function == nullptr) return show(table);
  sink.function(sink.context, handle, table);
}

void standin_set_status_sink(standin_status_sink_t sink, void* context) {
  const std::lock_guard guard(status_lock);
  current_status_sink = {sink, context};
}
