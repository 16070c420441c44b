// The plug-in as the loader sees it: what it offers, what it asks for, and that it is hardened. Reads
// the built file and loads nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <utility>

#include "tests/end_to_end/elf_file.hpp"
#include "tests/support/pattern.hpp"
#include "tools/host/interface_names.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSubsetOf;
using ::testing::Not;
using ::testing::UnorderedElementsAreArray;
using tools::ENTRY_POINTS;
using tools::HOST_FUNCTIONS;
using tools::names_t;

bool belongsToTheHost(const std::string& name) {
  return name.starts_with("vlt_") || name.starts_with("_vlt_") || name.starts_with("standin_");
}

class BuiltLibraryTest : public ::testing::Test {
 protected:
  template <class Selection>
  names_t namesOf(const Selection& selected) const {
    names_t names;
    for (const ElfFile::symbol_t& symbol : library_.dynamicSymbols()) {
      if (selected(symbol)) names.push_back(symbol.name);
    }
    return names;
  }

  // The highest version of a family, "GLIBC_", that the library asks for, with the symbol.
  std::pair<std::vector<int>, std::string> highest(const std::string& family) const {
    std::pair<std::vector<int>, std::string> found;
    for (const ElfFile::symbol_t& symbol : library_.dynamicSymbols()) {
      if (!symbol.version.starts_with(family)) continue;
      std::vector<int> numbers;
      for (std::size_t at = family.size() - 1; at != std::string::npos;
           at = symbol.version.find('.', at + 1)) {
        numbers.push_back(std::stoi(symbol.version.substr(at + 1)));
      }
      found = std::max(found, {numbers, symbol.version + " (" + symbol.name + ")"});
    }
    std::cout << "highest of " << family << "*: " << found.second << '\n';
    return found;
  }

  // Where the loader writes addresses that other libraries supply.
  std::vector<std::uint64_t> placesOfAddresses(int table, int table_size) const {
    std::vector<std::uint64_t> places;
    for (const std::uint64_t start : library_.dynamicValues(table)) {
      const std::vector<std::uint8_t> bytes = library_.bytesAt(start);
      const std::uint64_t size = library_.dynamicValues(table_size).at(0);
      for (std::uint64_t at = 0; at < size; at += sizeof(Elf64_Rela)) {
        Elf64_Rela relocation;
        std::memcpy(&relocation, bytes.data() + at, sizeof relocation);
        const auto kind = ELF64_R_TYPE(relocation.r_info);
        if (kind == R_X86_64_JUMP_SLOT || kind == R_X86_64_GLOB_DAT) {
          places.push_back(relocation.r_offset);
        }
      }
    }
    return places;
  }

  const ElfFile library_{VLT_PLUGIN_PATH};
};

// ---- what it offers and asks for

TEST_F(BuiltLibraryTest, IsNamedAfterItsCodec) {
  EXPECT_THAT(library_.dynamicTexts(DT_SONAME), ElementsAre("libOstroviaNotifications2Codec.so"));
}

TEST_F(BuiltLibraryTest, NamesTheHostsClientLibraryAsNeeded) {
  EXPECT_THAT(library_.dynamicTexts(DT_NEEDED), Contains("libtvclient.so.10.15"));
}

// The host has its client library loaded; a path of the build machine must not lead elsewhere.
TEST_F(BuiltLibraryTest, HasNoRunPath) {
  EXPECT_THAT(library_.dynamicTexts(DT_RPATH), IsEmpty());
  EXPECT_THAT(library_.dynamicTexts(DT_RUNPATH), IsEmpty());
}

// Nothing of the C++ library either: whatever is defined here is out of the host's way, and the
// host's definitions cannot take its place.
TEST_F(BuiltLibraryTest, ExportsTheTwelveEntryPointsAndNothingElse) {
  EXPECT_THAT(namesOf([](const auto& symbol) { return symbol.defined(); }),
              UnorderedElementsAreArray(ENTRY_POINTS));
}

TEST_F(BuiltLibraryTest, AsksTheHostForItsFunctionsOnly) {
  const names_t asked = namesOf(
      [](const auto& symbol) { return !symbol.defined() && belongsToTheHost(symbol.name); });
  EXPECT_THAT(asked, Not(IsEmpty()));
  EXPECT_THAT(asked, IsSubsetOf(HOST_FUNCTIONS));
}

// What no batch writes needs no lock; see docs/scaling.md. Guards of static variables are another
// matter: clang makes the constants behind them, while the library is loaded.
TEST_F(BuiltLibraryTest, AsksForNoLockAndNoThread) {
  const names_t asked = namesOf([](const auto& symbol) {
    static const Pattern WAITS("pthread|thrd_|mtx_|cnd_|sem_|call_once|condition_variable");
    return !symbol.defined() && WAITS.isIn(symbol.name);
  });
  EXPECT_THAT(asked, IsEmpty());
}

// ---- what stays loaded

TEST_F(BuiltLibraryTest, CanBeUnloaded) {
  const std::vector<std::uint64_t> flags = library_.dynamicValues(DT_FLAGS_1);
  for (const std::uint64_t value : flags) EXPECT_EQ(value & DF_1_NODELETE, 0U);
  EXPECT_THAT(namesOf([](const auto& symbol) {
                return ELF64_ST_BIND(symbol.entry.st_info) == STB_GNU_UNIQUE;
              }),
              IsEmpty());
}

// ---- hardening

TEST_F(BuiltLibraryTest, BindsAllItsAddressesWhenItIsLoaded) {
  ASSERT_EQ(library_.dynamicValues(DT_FLAGS).size(), 1U);
  EXPECT_NE(library_.dynamicValues(DT_FLAGS)[0] & DF_BIND_NOW, 0U);
}

TEST_F(BuiltLibraryTest, MakesTheAddressesOfFunctionsReadOnlyOnceTheyAreBound) {
  const auto read_only = library_.segment(PT_GNU_RELRO);
  ASSERT_TRUE(read_only);
  std::size_t addresses = 0;
  for (const auto& [table, size] : {std::pair{DT_JMPREL, DT_PLTRELSZ}, {DT_RELA, DT_RELASZ}}) {
    for (const std::uint64_t place : placesOfAddresses(table, size)) {
      ++addresses;
      EXPECT_GE(place, read_only->p_vaddr);
      EXPECT_LT(place, read_only->p_vaddr + read_only->p_memsz);
    }
  }
  EXPECT_GT(addresses, HOST_FUNCTIONS.size() / 2);
}

TEST_F(BuiltLibraryTest, AsksForAStackThatIsNotExecutable) {
  const auto stack = library_.segment(PT_GNU_STACK);
  ASSERT_TRUE(stack);
  EXPECT_EQ(stack->p_flags & PF_X, 0U);
}

TEST_F(BuiltLibraryTest, HasNoMemoryThatIsBothWritableAndExecutable) {
  for (const Elf64_Phdr& segment : library_.segments()) {
    EXPECT_NE(segment.p_flags & (PF_W | PF_X), std::uint32_t{PF_W | PF_X});
  }
  EXPECT_THAT(library_.dynamicValues(DT_TEXTREL), IsEmpty());
}

TEST_F(BuiltLibraryTest, GuardsArraysOnTheStack) {
  EXPECT_THAT(namesOf([](const auto&) { return true; }), Contains("__stack_chk_fail"));
}

#ifdef VLT_FORTIFIED
// Functions of the C library that write into memory whose size the compiler knows.
TEST_F(BuiltLibraryTest, UsesTheCheckedFunctionsOfTheCLibrary) {
  const names_t names = namesOf([](const auto&) { return true; });
  EXPECT_THAT(names, Contains(AnyOf("__snprintf_chk", "__memcpy_chk")));
#ifndef __clang__ // for which the C library checks no variable arguments
  EXPECT_THAT(names, Not(Contains("snprintf")));
#endif
}

// ---- what it runs on; see docs/reliability.md

TEST_F(BuiltLibraryTest, RunsOnTheCLibraryFromVersion214On) {
  EXPECT_LE(highest("GLIBC_").first, (std::vector{2, 14}));
}

TEST_F(BuiltLibraryTest, RunsOnTheCppLibraryOfGcc5AndLater) {
  EXPECT_LE(highest("GLIBCXX_").first, (std::vector{3, 4, 21}));
  EXPECT_LE(highest("CXXABI_").first, (std::vector{1, 3, 9}));
}
#endif

} // namespace
} // namespace com::velanto::connectivity::test
