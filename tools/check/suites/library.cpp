// The facts that the library's file tells without loading it.
#include <algorithm>
#include <string>
#include <vector>

#include "tools/check/suites/suites.hpp"
#include "tools/host/elf_file.hpp"
#include "tools/host/interface_names.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr const char* CLIENT_LIBRARY = "libtvclient.so.10.15";

// Runtimes of the compilers and of the C library, which every system has that runs a host.
const names_t RUNTIMES = {CLIENT_LIBRARY, "libstdc++.so.6",  "libgcc_s.so.1",
                          "libc.so.6",    "libm.so.6",       "ld-linux-x86-64.so.2",
                          "libdl.so.2",   "libpthread.so.0", "ld-linux-aarch64.so.1"};

bool has(const names_t& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool startsWith(const std::string& text, const char* beginning) {
  return text.rfind(beginning, 0) == 0;
}

// The reader throws on a damaged file and on one of another kind.
void readable(Trial& trial) { static_cast<void>(readElfFile(trial.path())); }

void exactExports(Trial& trial) {
  names_t exported;
  for (const exported_t& symbol : readElfFile(trial.path()).exported) {
    exported.push_back(symbol.name);
  }
  const names_t entry_points = entryPoints(trial.className());
  for (const std::string& name : entry_points) {
    trial.holds(has(exported, name), "exported names", name, "no such name");
  }
  for (const std::string& name : exported) {
    trial.holds(has(entry_points, name), "exported names", "the twelve of the interface", name);
  }
}

void exportsAreFunctions(Trial& trial) {
  for (const exported_t& symbol : readElfFile(trial.path()).exported) {
    trial.holds(symbol.function, symbol.name, "a function", "something else");
  }
}

void needsTheClientLibrary(Trial& trial) {
  const names_t needed = readElfFile(trial.path()).needed;
  trial.holds(has(needed, CLIENT_LIBRARY), "needed libraries", CLIENT_LIBRARY, "no such library");
}

void needsNothingUnusual(Trial& trial) {
  for (const std::string& name : readElfFile(trial.path()).needed) {
    if (startsWith(name, "libasan.") || startsWith(name, "libubsan.")) {
      trial.skip("a build with sanitizers needs their runtimes");
    }
    trial.holds(has(RUNTIMES, name), "needed libraries", "the client library and runtimes", name);
  }
}

void noRunPath(Trial& trial) {
  for (const std::string& path : readElfFile(trial.path()).run_paths) {
    trial.holds(false, "run path", "none", path);
  }
}

void callsHostFunctionsOnly(Trial& trial) {
  int host_functions = 0;
  for (const std::string& name : readElfFile(trial.path()).undefined) {
    const bool host_like =
        startsWith(name, "vlt_") || startsWith(name, "_vlt_") || startsWith(name, "standin_");
    if (!host_like) continue;
    ++host_functions;
    trial.holds(has(HOST_FUNCTIONS, name), "names asked of the host", "its fourteen functions",
                name);
  }
  trial.holds(host_functions > 0, "names asked of the host", "some of its functions", "none");
}

const check_t LIBRARY_CHECKS[] = {
    {"library.is-a-shared-object", "the file is a whole shared object for this machine",
     "Two libraries", readable, Use::READ},
    {"library.exports-the-twelve", "the exported names are the twelve entry points and no others",
     "Two libraries", exactExports, Use::READ},
    {"library.exports-functions", "everything that is exported is a function", "Two libraries",
     exportsAreFunctions, Use::READ},
    {"library.needs-the-client", "libtvclient.so.10.15 is named as needed", "Two libraries",
     needsTheClientLibrary, Use::READ},
    {"library.needs-no-others", "beyond the client library, only common runtimes are needed",
     ADVISED_ONLY, needsNothingUnusual, Use::READ},
    {"library.has-no-run-path", "no path of a build machine decides which libraries are loaded",
     ADVISED_ONLY, noRunPath, Use::READ},
    {"library.asks-the-host-only",
     "of the host, only the fourteen functions of docs/host-interface.md are used",
     "What the host offers", callsHostFunctionsOnly, Use::READ},
};

} // namespace

suite_t libraryChecks() { return LIBRARY_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
