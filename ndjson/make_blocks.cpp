#include "ndjson/make_blocks.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "value/get_visitor.hpp"

namespace com::velanto::connectivity {

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

buffer_t makeBuffer(std::string_view bytes) {
  if (bytes.empty()) return {};
  std::vector<std::byte> block(sizeof(vlt_underlying_buffer_t) + bytes.size());
  vlt_underlying_data_t source{};
  source.value.buffer =
      new (block.data()) vlt_underlying_buffer_t{static_cast<std::uint32_t>(bytes.size()), 0};
  std::memcpy(source.value.buffer + 1, bytes.data(), bytes.size());
  source.tag = VLT_TAG_BUFFER;
  data_t copied = data_t::adopt(vlt_copy_data(&source));
  if (copied.empty()) throw std::bad_alloc();
  return std::move(copied.get<buffer_t>());
}

} // namespace com::velanto::connectivity
