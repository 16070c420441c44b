// Both plug-ins as the loader sees them: exports, needs, and hardening; and the run paths of all
// built files. Reads the built files and loads nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/end_to_end/built_file.hpp"
#include "tests/support/pattern.hpp"
#include "tools/host/interface_names.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSubsetOf;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAreArray;
using tools::entryPoints;
using tools::HOST_FUNCTIONS;
using tools::names_t;

struct built_t {
  const char* class_name;
  const char* path;
  std::vector<int> c_library; // the newest version that it may ask for
};

const built_t BUILT[] = {
#ifdef __aarch64__ // the C library's first release for it
    {"OstroviaNotifications2Codec", VLT_PLUGIN_PATH, {2, 17}},
#else
    {"OstroviaNotifications2Codec", VLT_PLUGIN_PATH, {2, 14}},
#endif
    {"OstroviaNotificationsRecorder", VLT_RECORDER_PATH, {2, 17}},
};

void PrintTo(const built_t& built, std::ostream* out) { *out << built.class_name; }

bool belongsToTheHost(const std::string& name) {
  return name.starts_with("vlt_") || name.starts_with("_vlt_") || name.starts_with("standin_");
}

// Executables and shared libraries below the build folder.
names_t builtFiles() {
  namespace fs = std::filesystem;
  names_t files;
  for (fs::recursive_directory_iterator at(VLT_BUILD_FOLDER), end; at != end; ++at) {
    if (at->path().filename() == "CMakeFiles") at.disable_recursion_pending(); // objects
    if (!at->is_regular_file() || at->is_symlink()) continue;
    char magic[4] = {};
    std::ifstream(at->path(), std::ios::binary).read(magic, sizeof magic);
    if (std::string_view(magic, sizeof magic) == "\177ELF") files.push_back(at->path());
  }
  return files;
}

// The folders of a run path, in which ':' separates them.
names_t foldersOf(const std::string& run_path) {
  names_t folders;
  for (std::size_t begin = 0; begin <= run_path.size();) {
    const std::size_t end = std::min(run_path.find(':', begin), run_path.size());
    folders.push_back(run_path.substr(begin, end - begin));
    begin = end + 1;
  }
  return folders;
}

class BuiltLibraryTest : public ::testing::TestWithParam<built_t> {
 protected:
  template <class Selection>
  names_t namesOf(const Selection& selected) const {
    names_t names;
    for (const symbol_t& symbol : file_.symbols()) {
      if (selected(symbol)) names.push_back(symbol.name);
    }
    return names;
  }

  const BuiltFile file_{GetParam().path};
};

// ---- exports and needs

TEST_P(BuiltLibraryTest, IsNamedAfterItsClass) {
  EXPECT_THAT(file_.dynamicEntries("SONAME"),
              ElementsAre(std::string("lib") + GetParam().class_name + ".so"));
}

TEST_P(BuiltLibraryTest, NamesTheHostsClientLibraryAsNeeded) {
  EXPECT_THAT(file_.dynamicEntries("NEEDED"), Contains("libtvclient.so.10.15"));
}

// The host has its client library loaded; a path of the build machine must not lead elsewhere.
TEST_P(BuiltLibraryTest, HasNoRunPath) {
  EXPECT_THAT(file_.dynamicEntries("RPATH"), IsEmpty());
  EXPECT_THAT(file_.dynamicEntries("RUNPATH"), IsEmpty());
}

// The loader takes an empty folder for the current one. Whoever supplies a recording could put a
// library there, too.
TEST(BuiltFilesTest, SearchNoFolderRelativeToTheCurrentOne) {
  const names_t files = builtFiles();
  EXPECT_THAT(files, Contains(VLT_PLUGIN_PATH));
  for (const std::string& file : files) {
    for (const char* const type : {"RPATH", "RUNPATH"}) {
      for (const std::string& run_path : BuiltFile(file).dynamicEntries(type)) {
        EXPECT_THAT(foldersOf(run_path), Each(AnyOf(StartsWith("/"), StartsWith("$ORIGIN"))))
            << file;
      }
    }
  }
}

// No name of the C++ library either: a definition here would not be the host's, and the host's
// could not replace it.
TEST_P(BuiltLibraryTest, ExportsTheTwelveEntryPointsAndNothingElse) {
  EXPECT_THAT(namesOf([](const auto& symbol) { return symbol.defined; }),
              UnorderedElementsAreArray(entryPoints(GetParam().class_name)));
}

TEST_P(BuiltLibraryTest, AsksTheHostForItsFunctionsOnly) {
  const names_t asked =
      namesOf([](const auto& symbol) { return !symbol.defined && belongsToTheHost(symbol.name); });
  EXPECT_THAT(asked, Not(IsEmpty()));
  EXPECT_THAT(asked, IsSubsetOf(HOST_FUNCTIONS));
}

// Data that no batch writes needs no lock; see docs/scaling.md. Guards of static variables are
// another matter: clang makes constants with them, while the library is loading.
TEST_P(BuiltLibraryTest, CodecAsksForNoLockAndNoThread) {
  if (GetParam().path != std::string(VLT_PLUGIN_PATH)) GTEST_SKIP() << "a recorder has both";
  const names_t asked = namesOf([](const auto& symbol) {
    static const Pattern WAITS("pthread|thrd_|mtx_|cnd_|sem_|call_once|condition_variable");
    return !symbol.defined && WAITS.isIn(symbol.name);
  });
  EXPECT_THAT(asked, IsEmpty());
}

// ---- loaded for good

TEST_P(BuiltLibraryTest, NamesItsBuildOnceInANote) {
  EXPECT_THAT(file_.readelf("--string-dump=.note.ostrovia"), HasSubstr("ostrovia-notifications "));
  std::ifstream file(GetParam().path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  static const Pattern NAME("ostrovia-notifications [0-9.]+, (unknown commit|commit [0-9a-f]{12})");
  EXPECT_THAT(NAME.allIn(content), SizeIs(1));
}

TEST_P(BuiltLibraryTest, CanBeUnloaded) {
  EXPECT_THAT(file_.dynamicEntries("FLAGS_1"), Not(Contains(HasSubstr("NODELETE"))));
  EXPECT_THAT(namesOf([](const auto& symbol) { return symbol.binding == "UNIQUE"; }), IsEmpty());
}

// ---- probes; see docs/operating.md

// A note without the address of a semaphore would have tracers listen to silence.
TEST(BuiltCodecTest, NamesItsProbesAndSemaphoresInNotes) {
  names_t probes;
  const Pattern note(R"(Provider: (\w+)\n +Name: (\w+)\n.*Semaphore: (0x\w+)\n +Arguments: (.*))");
  for (const auto& found : note.allIn(BuiltFile(VLT_PLUGIN_PATH).readelf("--notes"))) {
    EXPECT_NE(std::stoull(found[3], nullptr, 16), 0U) << found[2];
    const auto arguments = std::count(found[4].begin(), found[4].end(), '@');
    probes.push_back(found[1] + ':' + found[2] + '/' + std::to_string(arguments));
  }
  EXPECT_THAT(probes, UnorderedElementsAreArray({"ostrovia:batch/4", "ostrovia:dropped/2"}));
}

// ---- hardening

TEST_P(BuiltLibraryTest, BindsAllItsAddressesWhenItIsLoaded) {
  EXPECT_THAT(file_.dynamicEntries("FLAGS"), ElementsAre(HasSubstr("BIND_NOW")));
}

TEST_P(BuiltLibraryTest, MakesBoundAddressesOfFunctionsReadOnly) {
  const std::vector<segment_t> read_only = file_.segments("GNU_RELRO");
  ASSERT_THAT(read_only, SizeIs(1));
  std::size_t addresses = 0;
  const Pattern line(R"((\w{16}) +\w+ +R_(?:X86_64|AARCH64)_(?:JUMP_SLOT|GLOB_DAT))");
  for (const auto& found : line.allIn(file_.readelf("--relocs"))) {
    const std::uint64_t place = std::stoull(found[1], nullptr, 16);
    ++addresses;
    EXPECT_GE(place, read_only[0].address);
    EXPECT_LT(place, read_only[0].address + read_only[0].size);
  }
  EXPECT_GT(addresses, HOST_FUNCTIONS.size() / 2);
}

TEST_P(BuiltLibraryTest, AsksForAStackThatIsNotExecutable) {
  const std::vector<segment_t> stack = file_.segments("GNU_STACK");
  ASSERT_THAT(stack, SizeIs(1));
  EXPECT_THAT(stack[0].flags, Not(HasSubstr("E")));
}

TEST_P(BuiltLibraryTest, HasNoWritableExecutableMemory) {
  EXPECT_THAT(file_.segments("LOAD"), SizeIs(::testing::Ge(2)));
  for (const segment_t& segment : file_.segments("LOAD")) EXPECT_NE(segment.flags, "RWE");
  EXPECT_THAT(file_.dynamicEntries("TEXTREL"), IsEmpty());
}

TEST_P(BuiltLibraryTest, GuardsArraysOnTheStack) {
  EXPECT_THAT(namesOf([](const auto&) { return true; }), Contains("__stack_chk_fail"));
}

#ifdef VLT_FORTIFIED
// Functions of the C library that write into memory of a size that the compiler knows.
TEST_P(BuiltLibraryTest, UsesTheCheckedFunctionsOfTheCLibrary) {
  const names_t names = namesOf([](const auto&) { return true; });
  EXPECT_THAT(names, Contains(AnyOf("__snprintf_chk", "__memcpy_chk")));
#ifndef __clang__ // for which the C library checks no variable arguments
  EXPECT_THAT(names, Not(Contains("snprintf")));
#endif
}

// ---- systems that it runs on; see docs/reliability.md

TEST_P(BuiltLibraryTest, RunsOnOldCLibraries) {
  EXPECT_LE(file_.highest("GLIBC_").first, GetParam().c_library);
}

TEST_P(BuiltLibraryTest, RunsOnTheCppLibraryFromGcc5) {
  EXPECT_LE(file_.highest("GLIBCXX_").first, (std::vector{3, 4, 21}));
  EXPECT_LE(file_.highest("CXXABI_").first, (std::vector{1, 3, 9}));
}
#endif

INSTANTIATE_TEST_SUITE_P(PlugIns, BuiltLibraryTest, ::testing::ValuesIn(BUILT),
                         [](const auto& built) { return std::string(built.param.class_name); });

} // namespace
} // namespace com::velanto::connectivity::test
