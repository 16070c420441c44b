#include "tests/end_to_end/machine_code.hpp"

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace com::velanto::connectivity::test {

namespace {

std::string outputOf(const std::string& command) {
  std::string output;
  // NOLINTNEXTLINE(cert-env33-c): a command of this test's own
  std::FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  char part[4096];
  for (std::size_t n = 0; (n = std::fread(part, 1, sizeof part, pipe)) > 0;) output.append(part, n);
  if (pclose(pipe) != 0) throw std::runtime_error(command + " failed");
  return output;
}

bool isCall(const std::string& instruction) {
  return instruction.starts_with("call") || instruction.find("jmp    *") != std::string::npos;
}

// Of "je     393f <name>": 0x393f.
std::uint64_t targetOf(const std::string& instruction) {
  return std::stoull(instruction.substr(instruction.find(' ')), nullptr, 16);
}

} // namespace

// A line of it is "    c8c4:<tab>je     393f <name>".
MachineCode::MachineCode(const std::string& path) {
  const std::string text = outputOf("objdump --disassemble --no-show-raw-insn '" + path + "'");
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    const std::size_t mark = text.find(":\t", begin);
    if (mark < end) {
      std::string instruction = text.substr(mark + 2, end - mark - 2);
      for (const char* const prefix : {"bnd ", "notrack "}) {
        if (instruction.starts_with(prefix)) instruction.erase(0, std::string(prefix).size());
      }
      if (instruction.starts_with("call") || instruction.starts_with("j")) {
        branches_[std::stoull(text.substr(begin, mark - begin), nullptr, 16)] = instruction;
      }
    }
    begin = end + 1;
  }
  if (branches_.empty()) throw std::runtime_error("objdump shows no branch in " + path);
}

std::vector<std::string> MachineCode::callsIn(std::uint64_t start, std::uint64_t size) const {
  std::vector<std::string> calls;
  for (auto at = branches_.lower_bound(start), end = branches_.lower_bound(start + size); at != end;
       ++at) {
    if (isCall(at->second)) calls.push_back(at->second);
  }
  return calls;
}

std::vector<std::uint64_t> MachineCode::jumpsOutOf(std::uint64_t start, std::uint64_t size) const {
  std::vector<std::uint64_t> targets;
  for (auto at = branches_.lower_bound(start), end = branches_.lower_bound(start + size); at != end;
       ++at) {
    if (isCall(at->second)) continue;
    const std::uint64_t target = targetOf(at->second);
    if (target < start || target >= start + size) targets.push_back(target);
  }
  return targets;
}

} // namespace com::velanto::connectivity::test
