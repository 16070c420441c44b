#include "tools/replay/input/inputs.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/support/values.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::input_t;
using tools::inputsFrom;

std::string errorFrom(const std::vector<std::string>& paths) {
  return errorOf([&] { static_cast<void>(inputsFrom(paths)); });
}

std::string contentOf(const input_t& input) {
  return {std::istreambuf_iterator<char>(*input.open()), {}};
}

} // namespace

TEST(InputsTest, FilesKeepTheirOrder) {
  const TemporaryFolder folder;
  const std::string first = folder.write("first", "1\n");
  const std::string second = folder.write("second", "2\n");
  const std::vector<input_t> inputs = inputsFrom({second, first});
  ASSERT_EQ(inputs.size(), 2u);
  EXPECT_EQ(inputs[0].name, second);
  EXPECT_EQ(contentOf(inputs[0]), "2\n");
  EXPECT_EQ(contentOf(inputs[1]), "1\n");
}

TEST(InputsTest, DashAndNothingAreStandardInput) {
  EXPECT_EQ(inputsFrom({"-"}).at(0).name, "<stdin>");
  const std::vector<input_t> inputs = inputsFrom({});
  ASSERT_EQ(inputs.size(), 1u);
  EXPECT_EQ(inputs[0].name, "<stdin>");
  EXPECT_NE(inputs[0].open(), nullptr);
}

TEST(InputsTest, UnreadableInputIsRefusedBeforeAnyOpens) {
  const TemporaryFolder folder;
  const std::string file = folder.write("file", "");
  const std::string missing = folder.path("missing");
  EXPECT_EQ(errorFrom({file, missing}), missing + ": No such file or directory");
  EXPECT_EQ(errorFrom({folder.path("")}),
            folder.path("") + " has no recording, no file NAME.000001.ndjson");
  EXPECT_EQ(errorFrom({""}), ": No such file or directory");
}

TEST(InputsTest, VanishedFileIsRefusedAtItsTurn) {
  const TemporaryFolder folder;
  const std::string file = folder.write("file", "");
  const std::vector<input_t> inputs = inputsFrom({file});
  std::filesystem::remove(file);
  EXPECT_EQ(errorOf([&] { static_cast<void>(inputs[0].open()); }),
            file + ": No such file or directory");
}

TEST(InputsTest, ManyFilesNeedFewDescriptors) {
  const TemporaryFolder folder;
  const std::string file = folder.write("file", "x");
  const std::vector<input_t> inputs = inputsFrom(std::vector<std::string>(70000, file));
  EXPECT_EQ(contentOf(inputs.back()), "x");
}

} // namespace com::velanto::connectivity::test
