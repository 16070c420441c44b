// The facts that a host asks before it creates anything.
#include "standin/standin.h"
#include "tools/check/check_fixture.hpp"
#include "tools/check/suites/suites.hpp"
#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

void apiVersion(Trial& trial) {
  const PluginLibrary library = load(trial);
  trial.equal("interface version", 4, library.apiVersion());
}

void productVersion(Trial& trial) {
  const PluginLibrary library = load(trial);
  trial.equal("product version", "10.15.4.1", library.productVersion());
}

void productVersionIsStatic(Trial& trial) {
  const PluginLibrary library = load(trial);
  const char* const before = library.productVersion();
  { const Codec codec(trial, library, configured(trial)); }
  trial.holds(before == library.productVersion(), "product version", "the same string each time",
              "another address");
  trial.equal("product version after a codec's life", "10.15.4.1", before);
}

void markDoesNothing(Trial& trial) {
  const PluginLibrary library = load(trial);
  standin_reset_calls();
  library.checkIsCodec();
  static_cast<void>(library.apiVersion());
  static_cast<void>(library.productVersion());
  trial.equal("calls of host functions", 0, standin_calls_total());
}

const check_t VERSIONS_CHECKS[] = {
    {"versions.interface", "the interface version is 4, before any codec is made", "Versions",
     apiVersion},
    {"versions.product", "the product version is 10.15.4.1, before any codec is made", "Versions",
     productVersion},
    {"versions.product-text-stays", "the string of the product version is static",
     "What the plug-in offers", productVersionIsStatic},
    {"versions.call-no-host", "versions and codec mark call no host function", "Versions",
     markDoesNothing},
};

} // namespace

suite_t versionsChecks() { return VERSIONS_CHECKS; }

} // namespace com::velanto::connectivity::tools::check
