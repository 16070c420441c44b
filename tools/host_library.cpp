#include "tools/host_library.hpp"

#include <dlfcn.h>

#include <cstddef>
#include <new>
#include <utility>

#include "standin/standin.h"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// Null when no loaded library has a function of that name. The type comes from the declaration,
// which alone does not make the linker ask for the function.
template <class Function>
Function* find(const char* name) noexcept {
  return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

} // namespace

list_t makeList(std::vector<data_t>&& elements) {
  if (elements.empty()) return {};
  const std::size_t size = sizeof(vlt_underlying_vector_t) + elements.size() * sizeof(data_t);
  std::vector<std::byte> block(size); // zero bytes are empty elements
  const auto count = static_cast<std::int64_t>(elements.size());
  vlt_underlying_data_t source{};
  source.value.list = new (block.data()) vlt_underlying_vector_t{count, count};
  source.tag = VLT_TAG_LIST;
  data_t copied = data_t::adopt(vlt_copy_data(&source));
  if (copied.empty()) throw std::bad_alloc();
  list_t list = std::move(copied.get<list_t>());
  for (std::size_t i = 0; i < elements.size(); ++i) list[i] = std::move(elements[i]);
  return list;
}

std::optional<std::int64_t> liveBlocks() noexcept {
  using function_t = decltype(standin_live_blocks_total);
  auto* const function = find<function_t>("standin_live_blocks_total");
  if (function == nullptr) return std::nullopt;
  return function();
}

bool setLogLevel(vlt_log_level_t level) noexcept {
  using function_t = decltype(standin_set_default_log_level);
  auto* const function = find<function_t>("standin_set_default_log_level");
  if (function == nullptr) return false;
  function(level);
  return true;
}

bool setLogSink(log_sink_t sink, void* context) noexcept {
  using function_t = decltype(standin_set_log_sink);
  auto* const function = find<function_t>("standin_set_log_sink");
  if (function == nullptr) return false;
  function(sink, context);
  return true;
}

} // namespace com::velanto::connectivity::tools
