#include "tests/end_to_end/built_file.hpp"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <stdexcept>

#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {

BuiltFile::BuiltFile(std::string path) : path_(std::move(path)) {
  const Pattern line(R"( (GLOBAL|WEAK|UNIQUE) +\w+ +(\w+) (\w+)(?:@+(\w[\w.]*))?(?: \(\d+\))?\n)");
  for (const auto& found : line.allIn(readelf("--dyn-syms"))) {
    symbols_.push_back({found[1], found[2] != "UND", found[3], found[4]});
  }
}

std::string BuiltFile::readelf(const std::string& options) const {
  const std::string command = "LC_ALL=C readelf --wide " + options + " '" + path_ + "'";
  // NOLINTNEXTLINE(cert-env33-c): a command of this test's own
  std::FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  char part[4096];
  for (std::size_t n = 0; (n = std::fread(part, 1, sizeof part, pipe)) > 0;) output.append(part, n);
  if (pclose(pipe) != 0) throw std::runtime_error(command + " failed");
  return output;
}

std::vector<std::string> BuiltFile::dynamicEntries(const std::string& type) const {
  std::vector<std::string> entries;
  const Pattern line("\\(" + type + R"(\) +(?:[^\[\n]*\[(.*)\]|(.*)))");
  for (const auto& found : line.allIn(readelf("--dynamic"))) {
    entries.push_back(found[1] + found[2]);
  }
  return entries;
}

std::vector<segment_t> BuiltFile::segments(const std::string& type) const {
  std::vector<segment_t> segments;
  const Pattern line(type + R"( +\S+ (0x\w+) \S+ \S+ (0x\w+) ([RWE ]{3}))");
  for (const auto& found : line.allIn(readelf("--segments"))) {
    segments.push_back(
        {std::stoull(found[1], nullptr, 16), std::stoull(found[2], nullptr, 16), found[3]});
  }
  return segments;
}

std::pair<std::vector<int>, std::string> BuiltFile::highest(const std::string& family) const {
  std::pair<std::vector<int>, std::string> found;
  for (const symbol_t& symbol : symbols_) {
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

} // namespace com::velanto::connectivity::test
