// Batches write nothing into the memory that the library and the codec have for themselves. Data
// that is only read needs no lock, with any number of chains and threads, and cannot carry anything
// from one message to another.
#include <gtest/gtest.h>
#include <link.h>
#include <malloc.h>

#include <cstdint>
#include <stdexcept>
#include <vector>

#include "tests/end_to_end/loaded_codec.hpp"
#include "tests/support/samples.hpp"

namespace com::velanto::connectivity::test {
namespace {

struct range_t {
  const std::uint8_t* begin;
  std::size_t size;
  // Byte by byte and unwatched: AddressSanitizer forbids its own bytes between variables.
  [[nodiscard, gnu::no_sanitize_address]] std::vector<std::uint8_t> content() const {
    std::vector<std::uint8_t> bytes(size);
    const volatile std::uint8_t* const from = begin;
    for (std::size_t i = 0; i < size; ++i) bytes[i] = from[i];
    return bytes;
  }
};

struct search_t {
  std::uintptr_t address; // somewhere in the library
  std::vector<range_t> writable;
};

bool contains(const dl_phdr_info& library, std::uintptr_t address) {
  for (int i = 0; i < library.dlpi_phnum; ++i) {
    const ElfW(Phdr)& segment = library.dlpi_phdr[i];
    const std::uintptr_t start = library.dlpi_addr + segment.p_vaddr;
    if (segment.p_type == PT_LOAD && address >= start && address < start + segment.p_memsz) {
      return true;
    }
  }
  return false;
}

int collect(dl_phdr_info* library, std::size_t, void* context) {
  auto& search = *static_cast<search_t*>(context);
  if (!contains(*library, search.address)) return 0;
  for (int i = 0; i < library->dlpi_phnum; ++i) {
    const ElfW(Phdr)& segment = library->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) == 0) continue;
    const std::uintptr_t start = library->dlpi_addr + segment.p_vaddr;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader gives addresses as numbers
    search.writable.push_back({reinterpret_cast<const std::uint8_t*>(start), segment.p_memsz});
  }
  return 1;
}

class OwnMemory : public EndToEnd {
 protected:
  // The places of the library's variables.
  [[nodiscard]] std::vector<range_t> variables() const {
    search_t search{reinterpret_cast<std::uintptr_t>(library_.create), {}};
    dl_iterate_phdr(collect, &search);
    if (search.writable.empty()) throw std::runtime_error("the library is not among the loaded");
    return search.writable;
  }

  // Creation hands out the very block that it has made.
  static range_t fieldsOf(const LoadedCodec& codec) {
    return {static_cast<const std::uint8_t*>(codec.plugin()), malloc_usable_size(codec.plugin())};
  }

  // All samples, good and bad, in both directions.
  static void sendSamples(LoadedCodec& codec) {
    for (const bool towards_host : {false, true}) {
      std::vector<Message> batch;
      for (const sample_t& sample : readSamples()) batch.push_back(copyOf(sample.message));
      EXPECT_EQ(towards_host ? codec.sendTowardsHost(batch) : codec.sendTowardsTransport(batch), 0);
    }
  }
};

TEST_F(OwnMemory, NoBatchWritesThere) {
#ifdef VLT_COUNTS_COVERAGE
  GTEST_SKIP() << "the counters of this build lie there";
#endif
  LoadedCodec codec(library_, mapOf("tenantId", text("t4100")));
  std::vector<range_t> places = variables();
  places.push_back(fieldsOf(codec));
  std::vector<std::vector<std::uint8_t>> before;
  before.reserve(places.size());
  for (const range_t& place : places) before.push_back(place.content());
  static_cast<void>(stderrOf([&] { sendSamples(codec); }));
  for (std::size_t i = 0; i < places.size(); ++i) {
    EXPECT_TRUE(places[i].content() == before[i]) << "range " << i << " of " << places.size();
  }
  EXPECT_GT(codec.host.messages.size(), 400U);
  EXPECT_GT(takeLog().size(), 70U) << "dropped messages, too";
}

// Proves that these are the right bytes: they contain links and constants.
TEST_F(OwnMemory, IsWhereLinksAndConstantsLie) {
  LoadedCodec codec(library_, mapOf("tenantId", text("t4100")));
  const range_t fields = fieldsOf(codec);
  const std::vector<std::uint8_t> before = fields.content();
  library_.setNextTowardsHost(codec.plugin(), nullptr, Received::take);
  EXPECT_FALSE(fields.content() == before) << "a link has been replaced";
  std::size_t bytes = 0;
  for (const range_t& place : variables()) bytes += place.size;
  constexpr std::size_t CONSTANTS = 50;
  EXPECT_GT(bytes, CONSTANTS * 2 * sizeof(data_t)) << "fifty constants, each with its hash";
}

} // namespace
} // namespace com::velanto::connectivity::test
