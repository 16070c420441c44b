// A built plug-in library as a host uses it, under the names that tests give it.
#ifndef VLT_TESTS_SUPPORT_PLUGIN_LIBRARY_HPP
#define VLT_TESTS_SUPPORT_PLUGIN_LIBRARY_HPP

#include "tools/host/plugin_library.hpp"
#include "tools/host/received.hpp"

namespace com::velanto::connectivity::test {

using tools::PluginLibrary;
using tools::Received;

} // namespace com::velanto::connectivity::test

#endif
