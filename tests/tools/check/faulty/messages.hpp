// The effects of faults of content and storage on messages on their way to the host.
#ifndef VLT_TESTS_TOOLS_CHECK_FAULTY_MESSAGES_HPP
#define VLT_TESTS_TOOLS_CHECK_FAULTY_MESSAGES_HPP

#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "host/logging.h"
#include "host/status.h"
#include "host/storage.h"
#include "tests/tools/check/faulty/faults.hpp"

using com::velanto::connectivity::test::Fault;
using com::velanto::connectivity::test::has;
using message_t = vlt_underlying_message_t;

namespace {

bool isText(const vlt_underlying_data_t* value) {
  return value != nullptr && value->tag == VLT_TAG_STRING && value->value.string != nullptr;
}

// The value under a string key, or null. Tables of messages are small: no need for hashes.
vlt_underlying_data_t* find(vlt_underlying_map_table_t* table, const char* key) {
  if (table == nullptr) return nullptr;
  auto* const slots = reinterpret_cast<vlt_underlying_map_table_entry_t*>(table + 1);
  for (std::int64_t i = 0; i < table->capacity; ++i) {
    const vlt_underlying_data_t& own = slots[i].key;
    if (isText(&own) && std::strcmp(own.value.string, key) == 0) return &slots[i].value;
  }
  return nullptr;
}

vlt_underlying_data_t* findInPayload(const message_t& message, const char* key) {
  return message.payload.tag == VLT_TAG_MAP ? find(message.payload.value.map, key) : nullptr;
}

void replaceText(vlt_underlying_data_t& value, const char* text) {
  vlt_free_string(const_cast<char*>(value.value.string));
  value.value.string = vlt_copy_string(text);
}

// Each level takes as much of the stack as a careless function does.
std::size_t depthOf(const vlt_underlying_data_t& value) {
  volatile unsigned char frame[256]; // NOLINT(modernize-avoid-c-arrays)
  frame[0] = 0;
  std::size_t depth = frame[0];
  if (value.tag != VLT_TAG_MAP || value.value.map == nullptr) return depth;
  const auto* const slots =
      reinterpret_cast<const vlt_underlying_map_table_entry_t*>(value.value.map + 1);
  for (std::int64_t i = 0; i < value.value.map->capacity; ++i) {
    depth += depthOf(slots[i].value);
  }
  return depth + 1;
}

// Two codecs of two threads write it at once.
std::array<char, 64> static_buffer;

void raceThrough(message_t* start, message_t* end) {
  for (message_t* m = start; m != end; ++m) {
    vlt_underlying_data_t* const id = findInPayload(*m, "id");
    if (!isText(id) || std::strlen(id->value.string) >= static_buffer.size()) continue;
    std::strcpy(static_buffer.data(), id->value.string);
    usleep(20);
    replaceText(*id, static_buffer.data());
  }
}

// Spoils a string in place; an empty one has no character to overwrite.
inline void overwriteFirst(const vlt_underlying_data_t& text, char first) {
  if (*text.value.string != '\0') const_cast<char*>(text.value.string)[0] = first;
}

// Faults of single messages that go to the host.
void spoil(message_t& message) {
  if (has(Fault::wrong_channel)) {
    vlt_underlying_data_t* const channel = find(message.metadata, "vlt.channel");
    if (isText(channel)) overwriteFirst(*channel, 'O');
  }
  if (has(Fault::loses_milliseconds)) {
    vlt_underlying_data_t* const time = findInPayload(message, "creationTime");
    if (time != nullptr && time->tag == VLT_TAG_DOUBLE) {
      time->value.real = std::floor(time->value.real);
    }
  }
  if (has(Fault::changes_passing) && message.payload.tag == VLT_TAG_INTEGER) {
    ++message.payload.value.integer;
  }
  if (has(Fault::recurses_into_payload)) static_cast<void>(depthOf(message.payload));
  if (has(Fault::copies_containers) && message.payload.tag == VLT_TAG_MAP) {
    const vlt_underlying_data_t copy = vlt_copy_data(&message.payload);
    if (copy.tag == VLT_TAG_MAP) vlt_free_map(std::exchange(message.payload, copy).value.map);
  }
}

// Faults of whole batches that go to the host.
void spoil(message_t* start, message_t* end) {
  if (has(Fault::leaks_in_batch)) static_cast<void>(vlt_copy_string("leak"));
  if (has(Fault::leaks_heap) && std::malloc(64) == nullptr) std::abort();
  if (has(Fault::frees_twice)) {
    char* const text = vlt_copy_string("twice");
    vlt_free_string(text);
    vlt_free_string(text);
  }
  if (has(Fault::shares_block) && end - start >= 2) {
    vlt_underlying_data_t* const first = findInPayload(start[0], "id");
    vlt_underlying_data_t* const second = findInPayload(start[1], "id");
    if (isText(first) && isText(second)) {
      vlt_free_string(const_cast<char*>(second->value.string));
      second->value.string = first->value.string;
    }
  }
  if (has(Fault::depends_on_batch) && end - start > 5) {
    vlt_underlying_data_t* const id = findInPayload(start[5], "id");
    if (isText(id)) overwriteFirst(*id, 'x');
  }
  if (has(Fault::swaps_order) && end - start >= 2) std::swap(start[0], start[1]);
  if (has(Fault::asks_level_in_batch)) static_cast<void>(vlt_get_log_level("any"));
  if (has(Fault::sets_status_in_batch)) vlt_set_user_status_map(nullptr, nullptr);
  if (has(Fault::prints_in_batch)) static_cast<void>(write(STDERR_FILENO, "batch\n", 6) == 6);
  if (has(Fault::races_in_static_buffer)) raceThrough(start, end);
  for (message_t* m = start; m != end; ++m) spoil(*m);
}

} // namespace

#endif
