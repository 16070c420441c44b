// Both tools, and the stand-in that they load, as the loader sees them: they need nothing but the C
// library, not a new one, and are hardened. Reads the built files and runs nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/end_to_end/built_file.hpp"
#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using texts_t = std::vector<std::string>;

const char* const WITH_STANDIN[] = {VLT_REPLAY_PATH, VLT_CHECK_PLUGIN_PATH, VLT_STANDIN_PATH};
const char* const TOOLS[] = {VLT_REPLAY_PATH, VLT_CHECK_PLUGIN_PATH};

class StaticFileTest : public ::testing::TestWithParam<const char*> {
 protected:
  const BuiltFile file_{GetParam()};
};
class BuiltToolTest : public StaticFileTest {};

std::string nameOf(const ::testing::TestParamInfo<const char*>& info) {
  std::string name = info.param;
  name.erase(0, name.rfind('/') + 1);
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
  return name;
}

} // namespace

// The parts of the C library, the loader included.
TEST_P(StaticFileTest, NeedsTheCLibraryAndTheClientLibraryOnly) {
  const Pattern allowed(R"(libtvclient\.so\.10\.15|lib[cm]\.so\.6|ld-linux-[a-z0-9-]+\.so\.[12])");
  for (const std::string& name : file_.dynamicEntries("NEEDED")) {
    EXPECT_TRUE(allowed.isAllOf(name)) << name;
  }
}

// 2.34 has the threads and the loader's functions in the C library itself, and the start of a
// program. A program that is built with a later one cannot ask for less.
TEST_P(StaticFileTest, RunsOnTheCLibraryOf2021) {
  EXPECT_LE(file_.highest("GLIBC_").first, (std::vector{2, 34}));
  EXPECT_THAT(file_.highest("GLIBCXX_").first, IsEmpty());
  EXPECT_THAT(file_.highest("CXXABI_").first, IsEmpty());
  EXPECT_THAT(file_.highest("GCC_").first, IsEmpty());
}

// A plug-in that the tool loads has the shared C++ library; two must not mix.
TEST_P(StaticFileTest, KeepsItsCppLibraryToItself) {
  for (const symbol_t& symbol : file_.symbols()) {
    EXPECT_FALSE(symbol.defined && symbol.name.starts_with("_Z")) << symbol.name;
    EXPECT_NE(symbol.binding, "UNIQUE") << symbol.name;
  }
}

TEST_P(BuiltToolTest, IsLoadedAtAnyAddress) {
  EXPECT_THAT(file_.readelf("--file-header"), HasSubstr("DYN (Position-Independent Executable"));
  EXPECT_THAT(file_.dynamicEntries("TEXTREL"), IsEmpty());
}

TEST_P(BuiltToolTest, BindsItsAddressesAndMakesThemReadOnly) {
  EXPECT_THAT(file_.dynamicEntries("FLAGS_1"), ElementsAre(HasSubstr("NOW")));
  EXPECT_THAT(file_.segments("GNU_RELRO"), ::testing::SizeIs(1));
}

TEST_P(BuiltToolTest, HasNoWritableExecutableMemory) {
  for (const char* const type : {"LOAD", "GNU_STACK"}) {
    for (const segment_t& segment : file_.segments(type)) EXPECT_NE(segment.flags, "RWE") << type;
  }
}

// The failing sides of the checks. Only code compiled with them asks for these functions: Debian's
// own libraries have no bounds of containers.
TEST_P(BuiltToolTest, ChecksStackBufferSizesAndContainerBounds) {
  const std::string names = file_.readelf("--syms");
  EXPECT_THAT(names, HasSubstr(" __stack_chk_fail"));
  EXPECT_THAT(names, HasSubstr("_chk@GLIBC_"));
  EXPECT_THAT(names, HasSubstr("__glibcxx_assert_fail"));
}

INSTANTIATE_TEST_SUITE_P(Tools, StaticFileTest, ::testing::ValuesIn(WITH_STANDIN), nameOf);
INSTANTIATE_TEST_SUITE_P(Tools, BuiltToolTest, ::testing::ValuesIn(TOOLS), nameOf);

} // namespace com::velanto::connectivity::test
